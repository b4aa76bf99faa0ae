/// `tessel verify`: what became of a clip on its way.

#include "Commands.h"
#include "WholeText.h"
#include "movies/MovieCommands.h"

#include <tessel/export/Progress.h>
#include <tessel/export/SignalSource.h>
#include <tessel/export/files/OutputFile.h>
#include <tessel/typed/NearMisses.h>
#include <tessel/verify/Verify.h>
#include <tessel/verify/report/Writers.h>

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace tessel::cli {
namespace {

using verify::Report;

const verify::CheckInfo& CheckNamed(const std::string& option, const std::string& name)
{
    const verify::CheckInfo* check = verify::FindCheck(name);
    if (check == nullptr) {
        std::vector<std::string> names;
        for (const verify::CheckInfo& known : verify::Catalogue()) {
            names.emplace_back(known.id);
        }
        throw UsageError(fmt::format("{} {}: there is no such check; tessel verify --list names all{}", option,
                                     name, typed::DidYouMean(name, names)));
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
    // Levels in dB and likeness are limits; all others are distances from what is right.
    const bool isDistance = check.unit.substr(0, 2) != "dB";
    if (isDistance && value < 0) {
        throw UsageError(fmt::format("--tolerance {}: a tolerance is 0 or more", text));
    }
    job.tolerances.insert_or_assign(std::string(check.id), value);
}

verify::VerifyJob JobOf(const VerifyOptions& options)
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
                                                 const VerifyOptions& options)
{
    if (name.empty()) {
        return std::nullopt;
    }
    if (name == "-") {
        throw UsageError(fmt::format("{} -: expected a file's name; --json prints to standard output", option));
    }
    for (const std::string& input : {options.clip, options.movie}) {
        if (IsSameFile(name, input)) {
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

/// Terminals have colours, unless they are dumb ones or their owner wants none (https://no-color.org).
verify::TextColors WantedColors()
{
    const auto valueOf = [](const char* name) {
        const char* value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): only read
        return value == nullptr ? std::string_view() : std::string_view(value);
    };
    const bool isPlain = !valueOf("NO_COLOR").empty() || valueOf("TERM") == "dumb";
    return exporting::StandardOutputIsTerminal() && !isPlain ? verify::TextColors::Terminal
                                                             : verify::TextColors::Plain;
}

void RunComparison(const VerifyOptions& options, Context& context)
{
    verify::VerifyJob job = JobOf(options);
    if (options.asJson && options.isQuiet) {
        throw UsageError("--quiet prints nothing and --json prints the report: give one of them");
    }
    if (!options.junit.empty() && IsSameFile(options.junit, options.html)) {
        throw UsageError(fmt::format("--html {}: --junit writes to this file; name another one", options.html));
    }
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
        WriteOut(verify::ReportAsText(report, WantedColors()));
    }
    context.exitCode = ExitCodeOf(report.verdict);
}

/// Lists what the clip shows and what it does not.
void PrintVisible(const VerifyOptions& options, Context& context)
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

/// The option that asks for a text instead of a comparison; empty: none.
std::string_view TextAskedFor(const VerifyOptions& options)
{
    const std::pair<bool, std::string_view> texts[] = {{options.printList, "--list"},
                                                       {options.printSchema, "--schema"},
                                                       {!options.visible.empty(), "--visible"}};
    std::string_view asked;
    for (const auto& [isAsked, option] : texts) {
        if (isAsked && !asked.empty()) {
            throw UsageError(fmt::format("{} and {}: give one of them", asked, option));
        }
        asked = isAsked ? option : asked;
    }
    return asked;
}

/// @throws UsageError  where an option of comparisons would be left unheard
void RefuseComparison(std::string_view asked, const VerifyOptions& options)
{
    const std::pair<bool, std::string_view> given[] = {
        {!options.junit.empty(), "--junit"},
        {!options.html.empty(), "--html"},
        {!options.only.empty(), "--only"},
        {!options.accept.empty(), "--accept"},
        {!options.tolerances.empty(), "--tolerance"},
        {options.isStrict, "--strict"},
        {options.isQuiet, "--quiet"},
    };
    for (const auto& [isGiven, option] : given) {
        if (isGiven) {
            throw UsageError(fmt::format("{} compares nothing: leave out {}", asked, option));
        }
    }
}

} // namespace

void RunVerify(const VerifyOptions& options, Context& context)
{
    const std::string_view asked = TextAskedFor(options);
    if (!asked.empty()) {
        RefuseComparison(asked, options);
    }
    if (options.printList || options.printSchema) {
        if (!options.clip.empty()) {
            throw UsageError("--list and --schema take no clip");
        }
        WriteOut(options.printSchema ? verify::ReportSchema()
                 : options.asJson    ? verify::CatalogueAsJson()
                                     : verify::CatalogueAsText());
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

} // namespace tessel::cli
