/// Which files `tessel render` writes.
#pragma once

#include <tessel/export/plan/Container.h>

#include <filesystem>
#include <string>
#include <vector>

namespace tessel::cli {

/// The options that say so, as typed.
struct TargetOptions {
    std::vector<std::string> clips;
    std::string output;
    std::string format; ///< of `OutputOptions`
};

/// One clip and the file it becomes.
struct RenderTarget {
    std::filesystem::path clip;
    std::filesystem::path output; ///< "-": standard output; empty: nothing is written
    const exporting::Container* container = nullptr;
};

/// Whether the output is a folder for the files.
[[nodiscard]] bool NamesFolder(const TargetOptions& options);

/// All of one format. @throws UsageError  where clips, output and format do not go together; says what would
[[nodiscard]] std::vector<RenderTarget> TargetsOf(const TargetOptions& options);

} // namespace tessel::cli
