/// `tessel verify`: what became of a clip on its way.

#include "CommandLine.h"
#include "Commands.h"
#include "WholeText.h"

#include <tessel/export/Progress.h>
#include <tessel/export/SignalSource.h>
#include <tessel/export/files/OutputFile.h>
#include <tessel/verify/Verify.h>
#include <tessel/verify/report/Writers.h>

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace tessel::cli {
namespace {

using verify::Report;

/// The command line as typed.
struct Options {
    std::string clip;
    std::string movie;
    std::vector<std::string> only;
    std::vector<std::string> accept;
    std::vector<std::string> tolerances;
    std::string fidelity = "some";
    std::string junit;
    std::string html;
    bool asJson = false;
    bool isQuiet = false;
    bool isStrict = false;
    bool printList = false;
    bool printSchema = false;
    std::string visible;
    bool allowDefault = false;
    bool noProgress = false;
    int threads = 0;
};

const verify::CheckInfo& CheckNamed(const std::string& option, const std::string& name)
{
    const verify::CheckInfo* check = verify::FindCheck(name);
    if (check == nullptr) {
        throw UsageError(
            fmt::format("{} {}: there is no such check; tessel verify --list names all", option, name));
    }
    return *check;
}

/// "color.gain=0.05".
void AddTolerance(const std::string& text, verify::VerifyJob& job)
{
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) {
        throw UsageError(fmt::format("--tolerance {}: expected NAME=VALUE, as in color.gain=0.05", text));
    }
    const verify::CheckInfo& check = CheckNamed("--tolerance", text.substr(0, equals));
    if (!check.tolerance) {
        throw UsageError(fmt::format("--tolerance {}: this check compares no number", text));
    }
    double value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + equals + 1, end, value);
    if (error != std::errc() || stop != end || !std::isfinite(value)) {
        throw UsageError(fmt::format("--tolerance {}: expected a number behind the equals sign", text));
    }
    job.tolerances.insert_or_assign(std::string(check.id), value);
}

verify::VerifyJob JobOf(const Options& options)
{
    verify::VerifyJob job;
    job.clipName = options.clip;
    job.movieName = options.movie;
    for (const std::string& name : options.only) {
        job.choice.only.emplace(CheckNamed("--only", name).id);
    }
    for (const std::string& name : options.accept) {
        job.choice.accept.emplace(CheckNamed("--accept", name).id);
    }
    for (const std::string& text : options.tolerances) {
        AddTolerance(text, job);
    }
    job.isStrict = options.isStrict;
    job.measuresAll = options.fidelity == "all";
    job.threadCount = options.threads > 0 ? options.threads
                                          : std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
    return job;
}

/// Starts a report before the movie is read: a folder that is not there is told at once, and what cannot be
/// finished leaves an earlier report as it was.
std::optional<exporting::OutputFile> StartReport(const char* option, const std::string& name,
                                                 const Options& options)
{
    if (name.empty()) {
        return std::nullopt;
    }
    for (const std::string& input : {options.clip, options.movie}) {
        std::error_code ignored;
        if (std::filesystem::equivalent(name, input, ignored)) {
            throw UsageError(fmt::format("{} {}: the report would replace what it is about; name another file",
                                         option, name));
        }
    }
    return std::optional<exporting::OutputFile>(std::in_place, name);
}

int ExitCodeOf(verify::Verdict verdict)
{
    switch (verdict) {
    case verify::Verdict::AsExpected:
        return kDone;
    case verify::Verdict::NotAsExpected:
        return kNotAsExpected;
    case verify::Verdict::Undecided:
        break;
    }
    return kUndecided;
}

void RunComparison(const Options& options, Context& context)
{
    verify::VerifyJob job = JobOf(options);
    std::optional<exporting::OutputFile> junit = StartReport("--junit", options.junit, options);
    std::optional<exporting::OutputFile> html = StartReport("--html", options.html, options);
    const document::OpenedClip clip = context.OpenClip(options.clip, {.allowDefault = options.allowDefault});
    const exporting::ClipSource source(clip);
    std::optional<exporting::ProgressBar> bar;
    if (!options.noProgress && !options.isQuiet && exporting::StandardErrorIsTerminal()) {
        bar.emplace(options.movie);
        const std::int64_t frames = clip.facts.frameCount;
        job.progress = [&bar, frames](std::int64_t pictures) {
            bar->Report(std::min(pictures, frames), frames, "frames");
        };
    }
    job.keepsPictures = html.has_value();
    const Report report = verify::Verify(source, job);
    bar.reset();
    if (junit) {
        WriteAndCommit(*junit, verify::ReportAsJUnit(report));
    }
    if (html) {
        WriteAndCommit(*html, verify::ReportAsHtml(report));
    }
    if (options.asJson) {
        WriteOut(verify::ReportAsJson(report));
    } else if (!options.isQuiet) {
        WriteOut(verify::ReportAsText(report, exporting::StandardOutputIsTerminal()
                                                  ? verify::TextColors::Terminal
                                                  : verify::TextColors::Plain));
    }
    context.exitCode = ExitCodeOf(report.verdict);
}

/// Lists what the clip shows and what it does not.
void PrintVisible(const Options& options, Context& context)
{
    document::OpenOptions open;
    open.allowDefault = options.allowDefault;
    const document::OpenedClip clip = context.OpenClip(options.visible, open);
    const Report report = verify::TellVisible(exporting::ClipSource(clip), options.visible);
    std::string text;
    for (const std::string& id : report.asExpected) {
        text += fmt::format("shows      {}\n", id);
    }
    for (const verify::NotVisible& check : report.notVisible) {
        text += fmt::format("not shown  {} (use {})\n", check.id, check.use);
    }
    for (const std::string& id : report.notChecked) {
        text += fmt::format("unchecked  {}\n", id);
    }
    WriteOut(options.asJson ? verify::ReportAsJson(report) : text);
}

void RunVerify(const Options& options, Context& context)
{
    if (options.printList || options.printSchema) {
        if (!options.clip.empty()) {
            throw UsageError("--list and --schema take no clip");
        }
        WriteOut(options.printList ? verify::CatalogueAsText() : verify::ReportSchema());
        return;
    }
    if (!options.visible.empty()) {
        if (!options.clip.empty()) {
            throw UsageError(
                "--visible takes the clip itself and no movie: tessel verify --visible clip.tessel");
        }
        PrintVisible(options, context);
        return;
    }
    if (options.clip.empty() || options.movie.empty()) {
        throw UsageError("verify needs a clip and a movie: tessel verify clip.tessel movie.mp4");
    }
    RunComparison(options, context);
}

} // namespace

void AddVerifyCommand(CommandLine& commandLine, Context& context)
{
    const auto options = std::make_shared<Options>();
    const Command command =
        commandLine.AddCommand("verify", "Compare a movie that came back with its clip, and name what differs");
    command.AddOption("CLIP", options->clip, "The clip that was sent").TakesFile(FileKind::Clip);
    command
        .AddOption("MOVIE", options->movie,
                   "What came back: a movie, a sound file, - for standard input, or pictures with a number in "
                   "their name, as in out/%06d.png")
        .TakesFile(FileKind::Any);
    command.AddFlag("--json", options->asJson, "Print the report as JSON (see --schema)");
    command.AddOption("--junit", options->junit, "Also write the report as JUnit's XML")
        .ValueName("FILE")
        .TakesFile(FileKind::Any);
    command.AddOption("--html", options->html, "Also write the report as one page with pictures")
        .ValueName("FILE")
        .TakesFile(FileKind::Any);
    command.AddFlag("-q,--quiet", options->isQuiet, "Print nothing; the exit code tells");
    command.AddOption("--only", options->only, "Judge this check alone; may be given several times")
        .OneEach()
        .ValueName("ID");
    command.AddOption("--accept", options->accept, "This fault is fine; may be given several times")
        .OneEach()
        .ValueName("ID");
    command
        .AddOption("--tolerance", options->tolerances,
                   "What is still fine, instead of the codec's default, as in color.gain=0.05")
        .OneEach()
        .ValueName("NAME=VALUE");
    command.AddFlag("--strict", options->isStrict,
                    "What the container or codec cannot say or carry is a fault too");
    command
        .AddChoice("--fidelity", options->fidelity, {"some", "all"},
                   "Measure PSNR and SSIM of some pictures or of all")
        .ShowDefault();
    command.AddFlag("--list", options->printList, "Print all checks: name, severity, what makes it visible");
    command.AddOption("--visible", options->visible, "Print what this clip can show and what it cannot")
        .ValueName("CLIP")
        .TakesFile(FileKind::Clip);
    command.AddFlag("--schema", options->printSchema, "Print the JSON schema of --json");
    command.AddFlag("--allow-default", options->allowDefault,
                    "Compare with the default clip where the document cannot be read");
    command.AddFlag("--no-progress", options->noProgress, "No progress bar");
    command.AddNumber("--threads", options->threads, 1, "Threads to use; all cores where not said");
    command.SetDescription(
        "Exit code: 0 as expected, 3 not as expected, 4 undecided or nothing could be compared, 1 the "
        "work failed, 2 the command line is wrong.");
    command.AddExample("tessel render clip.tessel -o clip.mov && tessel verify clip.tessel clip.mov",
                       "A clip and what became of it");
    command.AddExample("tessel verify --list", "All checks");
    command.OnRun([options, &context] { RunVerify(*options, context); });
}

} // namespace tessel::cli
