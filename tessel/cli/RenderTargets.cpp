#include "RenderTargets.h"

#include "Commands.h"
#include "OutputOptions.h"

#include <kestrel/qelcore/text/PathText.h>
#include <tessel/export/ExportError.h>
#include <tessel/export/files/SequenceWriter.h>

#include <fmt/format.h>

#include <set>
#include <system_error>

namespace tessel::cli {
namespace {

namespace fs = std::filesystem;
using exporting::Container;
using exporting::ExportError;
using qelcore::text::UTF8Text;

/// The file that a clip becomes inside a folder.
fs::path FileInFolder(const fs::path& folder, const fs::path& clip, const Container& container)
{
    std::string name;
    for (const char letter : UTF8Text(clip.stem())) {
        // In the name of a sequence a lone percent sign would be a number's place.
        name += letter == '%' && container.kind == exporting::ContainerKind::Sequence ? "%%"
                                                                                      : std::string(1, letter);
    }
    const char* number = container.kind == exporting::ContainerKind::Sequence ? "_%06d" : "";
    return folder / fmt::format("{}{}.{}", name, number, container.name);
}

/// Several clips do not fit into one file: what reads like a file's name is not taken for a folder's.
void RequireFolderName(const TargetOptions& options)
{
    std::error_code ignored;
    const fs::path path = options.output;
    const bool isNumbered = UTF8Text(path.filename()).find('%') != std::string::npos;
    if ((!path.has_extension() && !isNumbered) || fs::is_directory(path, ignored)) {
        return;
    }
    const std::string extension = path.has_extension() ? UTF8Text(path.extension()).substr(1) : "";
    const fs::path folder = path.parent_path() / (isNumbered ? fs::path("out") : path.stem());
    throw UsageError(fmt::format(
        "several clips cannot all become '{}'; name a folder, as in -o {}/{}", options.output, UTF8Text(folder),
        exporting::ContainerNamed(extension) != nullptr ? " --format " + extension : ""));
}

void RequireSequenceName(const fs::path& file)
{
    try {
        static_cast<void>(exporting::NumberedName::Parse(UTF8Text(file.filename())));
    } catch (const ExportError& error) {
        throw UsageError(error.what());
    }
}

bool WritesNothing(const TargetOptions& options)
{
    return !options.format.empty() && FormatNamed(options.format).takesEveryCodec;
}

} // namespace

bool NamesFolder(const TargetOptions& options)
{
    if (options.output.empty()) {
        return false;
    }
    std::error_code ignored;
    const char last = options.output.back();
    return options.output != "-" &&
           (options.clips.size() > 1 || last == '/' || fs::is_directory(options.output, ignored));
}

std::vector<RenderTarget> TargetsOf(const TargetOptions& options)
{
    if (WritesNothing(options)) {
        if (!options.output.empty()) {
            throw UsageError("--format null writes no file: remove -o");
        }
        std::vector<RenderTarget> targets;
        for (const std::string& clip : options.clips) {
            targets.push_back({clip, {}, exporting::ContainerNamed(options.format)});
        }
        return targets;
    }
    if (options.output.empty()) {
        throw UsageError("-o is missing: a file, a folder, or - for standard output");
    }
    if (options.clips.size() > 1 && options.output == "-") {
        throw UsageError("several clips cannot share standard output; name a folder");
    }
    if (!NamesFolder(options)) {
        const RenderTarget target{options.clips.front(), options.output,
                                  &ContainerFor(options.format, options.output)};
        if (target.container->kind == exporting::ContainerKind::Sequence) {
            RequireSequenceName(target.output);
        }
        return {target};
    }
    RequireFolderName(options);
    const Container& container = FormatNamed(options.format.empty() ? "mkv" : options.format);
    std::vector<RenderTarget> targets;
    std::set<fs::path> names;
    for (const std::string& clip : options.clips) {
        targets.push_back({clip, FileInFolder(options.output, clip, container), &container});
        if (!names.insert(targets.back().output).second) {
            throw UsageError(fmt::format("two clips would become '{}'; render them one by one",
                                         UTF8Text(targets.back().output)));
        }
    }
    return targets;
}

} // namespace tessel::cli
