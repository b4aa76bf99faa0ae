/// The options of commands that write a clip into a file.
#pragma once

#include "CommandLine.h"

#include <tessel/document/OpenClip.h>
#include <tessel/export/Render.h>
#include <tessel/export/plan/OutputPlan.h>

#include <cstdint>
#include <optional>
#include <string>

namespace tessel::cli {

/// As typed.
struct OutputOptions {
    std::string format;
    std::string videoCodec;
    std::string audioCodec;
    std::optional<std::int64_t> from;
    std::optional<std::int64_t> to;
    std::optional<std::int64_t> frames;
    std::optional<std::int64_t> quality;
    bool audioOnly = false;
    bool videoOnly = false;
    bool dither = false;
    int threads = 0;
};

/// Declares them. The struct must live until the command has run.
void AddOutputOptions(const Command& command, OutputOptions& options);

/// Declares `--threads`; the number stays as it is where the option is not given.
void AddThreadsOption(const Command& command, int& threads);

/// @throws UsageError  where options exclude each other
void CheckOutputOptions(const OutputOptions& options);

/// The container that `format` or, where that is empty, the extension of `output` names; `-` is standard
/// output.
/// @throws UsageError
[[nodiscard]] const exporting::Container& ContainerFor(const std::string& format, const std::string& output);

/// The container of that name. @throws UsageError
[[nodiscard]] const exporting::Container& FormatNamed(const std::string& name);

/// @throws UsageError  for an unknown codec, one that the container does not carry, or a malformed timecode
[[nodiscard]] exporting::OutputRequest RequestFor(const OutputOptions& options,
                                                  const exporting::Container& container,
                                                  const std::string& timecode = {});

/// @throws exporting::ExportError  for frames that the clip does not have
[[nodiscard]] exporting::FrameRange FramesFor(const OutputOptions& options, const document::ClipFacts& clip);

/// As given, else as many as the machine has cores.
[[nodiscard]] int ThreadCount(const OutputOptions& options);

} // namespace tessel::cli
