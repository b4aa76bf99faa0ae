/// The pixel format in which the settings dialog's preview paints a document.
#pragma once

#include <string>

namespace tessel::document {

/// The settings text with 8-bit BGRA as its pixel format: the preview is to show content, not code values.
/// Only a document in BGRA float stays in it, because a swatch chart is painted in no other format. A text
/// that is no JSON object is given back as it is. Threads: [any-thread].
[[nodiscard]] std::string InPreviewFormat(const std::string& settingsText);

} // namespace tessel::document
