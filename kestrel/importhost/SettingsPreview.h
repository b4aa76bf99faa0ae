/// Small pictures of settings that are not a clip yet.
#pragma once

#include <kestrel/Export.h>
#include <kestrel/importhost/Importer.h>
#include <kestrel/qelui/dialogs/PreviewPicture.h>

#include <string>

namespace importhost {

/// Largest side of a preview, in pixels.
inline constexpr int kPreviewWidth = 480;
inline constexpr int kPreviewHeight = 270;

/// Has the plug-in paint the first and the last frame of the settings, through the same requests as any clip's,
/// and makes them small: within `kPreviewWidth` by `kPreviewHeight`, with square pixels. The host does not look
/// into the text.
///
/// @return pictures without size where the plug-in paints none, paints in another format than 8-bit or float
///         BGRA, or describes a frame of more than 64 megapixels or of another size than it makes.
/// Threads: [any-thread]. Never throws. Costs as much as two frames.
[[nodiscard]] KESTRELHOST_API qelui::PreviewPictures
RenderSettingsPreview(const Importer& importer, const std::string& settingsText) noexcept;

} // namespace importhost
