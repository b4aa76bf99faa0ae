/// Recognises documents by what they hold.
#pragma once

#include <gst/gst.h>

namespace tessel::gstreamer {

inline constexpr const char* kDocumentType = "application/x-tessel";

[[nodiscard]] bool RegisterTypeFinder(GstPlugin* plugin);

} // namespace tessel::gstreamer
