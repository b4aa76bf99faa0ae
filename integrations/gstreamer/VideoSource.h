/// The picture of a clip as a stream.
#pragma once

#include "Clip.h"

#include <gst/gst.h>

namespace tessel::gstreamer {

/// A source of the clip's pictures; a floating reference.
/// @param clip  one with pictures
[[nodiscard]] GstElement* NewVideoSource(const ClipPointer& clip);

} // namespace tessel::gstreamer
