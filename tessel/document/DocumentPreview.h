/// What the settings dialog's preview paints.
#pragma once

#include <string>

namespace tessel::document {

/// The settings text as the preview paints it, so that two texts which look alike give the same one:
/// - in 8-bit BGRA, because the preview is to show content, not code values; a document in BGRA float stays
///   in that, because a swatch chart is painted in no other format;
/// - without sound, color space and paths of files, which no picture shows;
/// - a frame of more than 4 megapixels reduced to a half, a third, ... of its size in each direction; a chart
///   keeps its size, which is fixed.
/// A text that is no JSON object is given back as it is. Threads: [any-thread].
[[nodiscard]] std::string PreviewDocument(const std::string& settingsText);

} // namespace tessel::document
