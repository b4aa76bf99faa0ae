/// What GStreamer loads: two elements and a type finder.

#include "Demux.h"
#include "Source.h"
#include "TypeFinder.h"

namespace {

gboolean Register(GstPlugin* plugin)
{
    namespace elements = tessel::gstreamer;
    const bool isDone =
        gst_element_register(plugin, "tesselsrc", GST_RANK_PRIMARY, elements::SourceType()) != FALSE &&
        gst_element_register(plugin, "tesseldemux", GST_RANK_PRIMARY, elements::DemuxType()) != FALSE &&
        elements::RegisterTypeFinder(plugin);
    return isDone ? TRUE : FALSE;
}

} // namespace

#define PACKAGE "tessel"
GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, tessel, "Exact test signals from .tessel documents",
                  Register, TESSEL_VERSION, "Proprietary", "Tessel", "https://tessel.example")
