/// The sound of a clip as a stream.
#pragma once

#include "Clip.h"

#include <gst/gst.h>

namespace tessel::gstreamer {

/// The formats of all clips' sound, for pad templates. The caller owns the caps.
[[nodiscard]] GstCaps* AudioTemplateCaps();

/// A source of the clip's sound; a floating reference.
/// @param clip  one with sound
[[nodiscard]] GstElement* NewAudioSource(const ClipPointer& clip);

} // namespace tessel::gstreamer
