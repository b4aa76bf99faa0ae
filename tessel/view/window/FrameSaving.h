/// One frame as a picture file.
#pragma once

#include <tessel/export/SignalSource.h>

#include <cstdint>
#include <filesystem>

namespace tessel::view {

/// Writes a PNG or, where the name says so, an OpenEXR file, as `tessel render` does.
/// @throws exporting::ExportError  for another ending, or where it cannot be written
/// @throws importhost::HostError
void SaveFrameAs(const exporting::SignalSource& clip, std::int64_t frame, const std::filesystem::path& file);

} // namespace tessel::view
