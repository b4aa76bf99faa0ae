/// A small picture of frame 0 of settings that are no clip yet.
#pragma once

#include <kestrel/importhost/Importer.h>
#include <kestrel/qelui/dialogs/PreviewPicture.h>

#include <string>

namespace importhost {

/// Largest side of a preview, in pixels.
inline constexpr int kPreviewWidth = 480;
inline constexpr int kPreviewHeight = 270;

/// Has the plug-in paint frame 0 of a settings document, through the same requests as any clip's, and makes
/// it small: within `kPreviewWidth` by `kPreviewHeight`, with square pixels.
///
/// The frame is painted in 8-bit BGRA, whatever the document's format: the picture is to show content, not
/// code values. Only a document in BGRA float stays in it, because the swatch chart is painted in no other.
/// @return a picture without size where the plug-in paints none, and for frames of more than 64 megapixels.
/// Threads: [any-thread]. Never throws. Costs as much as a frame.
[[nodiscard]] qelui::PreviewPicture RenderSettingsPreview(const Importer& importer,
                                                          const std::string& settingsText) noexcept;

} // namespace importhost
