/// The element `tesseldemux`.
#pragma once

#include <gst/gst.h>

namespace tessel::gstreamer {

[[nodiscard]] GType DemuxType();

} // namespace tessel::gstreamer
