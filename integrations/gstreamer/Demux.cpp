#include "Demux.h"

#include "ClipBin.h"
#include "TypeFinder.h"

#include <string>

namespace tessel::gstreamer {
namespace {

struct DemuxState {
    std::string text; ///< the document, as far as it has come
    guint groupId = GST_GROUP_ID_INVALID;
};

struct TesselDemux {
    TesselClipBin parent;
    GstPad* sink; ///< owned by the element
    DemuxState* state;
};

struct TesselDemuxClass {
    TesselClipBinClass parent;
};

G_DEFINE_TYPE(TesselDemux, tessel_demux, ClipBinType())

TesselDemux* AsDemux(gpointer object)
{
    return reinterpret_cast<TesselDemux*>(object);
}

/// The document's own place, where upstream knows it.
std::string UriOf(GstPad* sink)
{
    std::string uri;
    GstQuery* const query = gst_query_new_uri();
    if (gst_pad_peer_query(sink, query) != FALSE) {
        gchar* text = nullptr;
        gst_query_parse_uri(query, &text);
        uri = text != nullptr ? text : "";
        g_free(text);
    }
    gst_query_unref(query);
    return uri;
}

/// The file of a URI like file:///clips/bars.tessel; empty for a URI of another kind.
std::string FileOf(const std::string& uri)
{
    gchar* const path = uri.empty() ? nullptr : g_filename_from_uri(uri.c_str(), nullptr, nullptr);
    std::string file = path != nullptr && g_file_test(path, G_FILE_TEST_IS_REGULAR) != FALSE ? path : "";
    g_free(path);
    return file;
}

/// Opens the document from its own place where that is a file, so that what it names relative to itself is
/// found; else from the bytes that came.
OpenedClip OpenDocument(const TesselDemux* demux)
{
    const std::string uri = UriOf(demux->sink);
    const std::string file = FileOf(uri);
    if (!file.empty()) {
        return OpenFile(file);
    }
    return OpenText(demux->state->text, uri.empty() ? "the document" : uri);
}

void ShowDocument(TesselDemux* demux)
{
    TesselClipBin* const bin = &demux->parent;
    const OpenedClip opened = OpenDocument(demux);
    demux->state->text.clear();
    if (!opened.clip) {
        FailOpening(bin, opened.error);
        return;
    }
    guint& groupId = demux->state->groupId;
    ShowClip(bin, opened.clip, groupId != GST_GROUP_ID_INVALID ? groupId : gst_util_group_id_next());
    StartStreams(bin);
}

GstFlowReturn Chain(GstPad* /*pad*/, GstObject* parent, GstBuffer* buffer)
{
    constexpr std::size_t kMostBytes = 128'000'000; // of a document; see docs/file-format.md
    TesselDemux* const demux = AsDemux(parent);
    std::string& text = demux->state->text;
    GstFlowReturn flow = GST_FLOW_OK;
    GstMapInfo map;
    if (HasClip(&demux->parent)) {
        flow = GST_FLOW_EOS;
    } else if (text.size() + gst_buffer_get_size(buffer) > kMostBytes) {
        FailOpening(&demux->parent, "a document has 128 000 000 bytes at most: this one is longer");
        flow = GST_FLOW_ERROR;
    } else if (gst_buffer_map(buffer, &map, GST_MAP_READ) != FALSE) {
        text.append(reinterpret_cast<const char*>(map.data), map.size);
        gst_buffer_unmap(buffer, &map);
    } else {
        flow = GST_FLOW_ERROR;
    }
    gst_buffer_unref(buffer);
    return flow;
}

/// The document's events end here: the streams have their own.
gboolean HandleSinkEvent(GstPad* /*pad*/, GstObject* parent, GstEvent* event)
{
    TesselDemux* const demux = AsDemux(parent);
    switch (GST_EVENT_TYPE(event)) {
    case GST_EVENT_STREAM_START:
        if (gst_event_parse_group_id(event, &demux->state->groupId) == FALSE) {
            demux->state->groupId = GST_GROUP_ID_INVALID;
        }
        break;
    case GST_EVENT_FLUSH_STOP:
        demux->state->text.clear();
        break;
    case GST_EVENT_EOS:
        if (!HasClip(&demux->parent)) {
            ShowDocument(demux);
        }
        break;
    default:
        break;
    }
    gst_event_unref(event);
    return TRUE;
}

GstStateChangeReturn ChangeState(GstElement* element, GstStateChange change)
{
    const GstStateChangeReturn result =
        GST_ELEMENT_CLASS(tessel_demux_parent_class)->change_state(element, change);
    if (change == GST_STATE_CHANGE_PAUSED_TO_READY) {
        *AsDemux(element)->state = {};
    }
    return result;
}

void Finalize(GObject* object)
{
    delete AsDemux(object)->state;
    G_OBJECT_CLASS(tessel_demux_parent_class)->finalize(object);
}

void tessel_demux_init(TesselDemux* demux)
{
    demux->state = new DemuxState;
    GstPadTemplate* const shape = gst_element_class_get_pad_template(GST_ELEMENT_GET_CLASS(demux), "sink");
    demux->sink = gst_pad_new_from_template(shape, "sink");
    gst_pad_set_chain_function(demux->sink, &Chain);
    gst_pad_set_event_function(demux->sink, &HandleSinkEvent);
    gst_element_add_pad(GST_ELEMENT(demux), demux->sink);
}

void tessel_demux_class_init(TesselDemuxClass* kind)
{
    G_OBJECT_CLASS(kind)->finalize = &Finalize;
    GstElementClass* const element = GST_ELEMENT_CLASS(kind);
    element->change_state = &ChangeState;
    GstCaps* const caps = gst_caps_new_empty_simple(kDocumentType);
    gst_element_class_add_pad_template(element,
                                       gst_pad_template_new("sink", GST_PAD_SINK, GST_PAD_ALWAYS, caps));
    gst_caps_unref(caps);
    gst_element_class_set_static_metadata(
        element, "Tessel demuxer", "Codec/Demux",
        "Exact test signals: the picture and the sound of a .tessel document that comes as bytes", "Tessel");
}

} // namespace

GType DemuxType()
{
    return tessel_demux_get_type();
}

} // namespace tessel::gstreamer
