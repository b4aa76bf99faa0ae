/// The element `tesselsrc`.
#pragma once

#include <gst/gst.h>

namespace tessel::gstreamer {

[[nodiscard]] GType SourceType();

} // namespace tessel::gstreamer
