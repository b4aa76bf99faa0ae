/// The formats that pictures of a clip can have in GStreamer, and what its caps say of them.
#pragma once

#include "Clip.h"

#include <gst/video/video.h>

namespace tessel::gstreamer {

/// All formats that `VideoCapsOf` may offer, for pad templates. The caller owns the caps.
[[nodiscard]] GstCaps* VideoTemplateCaps();

/// The formats of a clip's pictures, the best first: the one whose samples lie as the clip's own, then those of
/// the same family and depth, then others. The caller owns the caps.
[[nodiscard]] GstCaps* VideoCapsOf(const Clip& clip);

/// The layout of the C interface that has the samples of a format which `VideoCapsOf` offers. The layout's
/// planes are the format's components Y', Cb, Cr, A, in whatever plane each of them lies.
[[nodiscard]] tessel_layout LayoutOf(GstVideoFormat format) noexcept;

} // namespace tessel::gstreamer
