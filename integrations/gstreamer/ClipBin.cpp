#include "ClipBin.h"

#include "AudioSource.h"
#include "StreamSource.h"
#include "VideoCaps.h"
#include "VideoSource.h"

#include <gst/base/gstflowcombiner.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace tessel::gstreamer {
namespace {

/// A stream of the clip: the source inside the bin, and the pad that shows it.
struct Stream {
    TesselClipBin* bin = nullptr;
    GstElement* source = nullptr; ///< owned by the bin
    GstPad* pad = nullptr;        ///< the bin's; owned by the bin
    GstStream* description = nullptr;
    GstEvent* start = nullptr;            ///< its stream-start
    std::atomic<bool> hasBuffers = false; ///< one has left the bin

    Stream() = default;
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
    ~Stream()
    {
        gst_clear_event(&start);
        gst_clear_object(&description);
    }

    [[nodiscard]] TesselStreamSource* Source() const { return AsStreamSource(source); }
};

} // namespace

struct ClipBinState {
    std::vector<std::unique_ptr<Stream>> streams; ///< changes while no data flows
    GstStreamCollection* collection = nullptr;

    std::mutex flowMutex;
    GstFlowCombiner* flows = gst_flow_combiner_new();

    std::mutex seekMutex;
    guint32 lastSeek = GST_SEQNUM_INVALID;
    bool wasLastSeekDone = false;

    ClipBinState() = default;
    ClipBinState(const ClipBinState&) = delete;
    ClipBinState& operator=(const ClipBinState&) = delete;
    ~ClipBinState() { gst_flow_combiner_free(flows); }
};

namespace {

G_DEFINE_ABSTRACT_TYPE(TesselClipBin, tessel_clip_bin, GST_TYPE_BIN)

TesselClipBin* AsClipBin(gpointer object)
{
    return reinterpret_cast<TesselClipBin*>(object);
}

// ---- Events that go downstream ----

GstEvent* NewStreamStart(const Stream& stream, guint groupId)
{
    GstEvent* const event = gst_event_new_stream_start(gst_stream_get_stream_id(stream.description));
    gst_event_set_stream(event, stream.description);
    gst_event_set_stream_flags(event, gst_stream_get_stream_flags(stream.description));
    gst_event_set_group_id(event, groupId);
    return event;
}

/// The source's own stream-start lacks the group that both streams share: the pad's replaces it.
GstPadProbeReturn CompleteEvent(GstPad* /*pad*/, GstPadProbeInfo* info, gpointer data)
{
    const Stream& stream = *static_cast<const Stream*>(data);
    GstEvent* const event = GST_PAD_PROBE_INFO_EVENT(info);
    if (GST_EVENT_TYPE(event) == GST_EVENT_STREAM_START) {
        GST_PAD_PROBE_INFO_DATA(info) = gst_event_ref(stream.start);
        gst_event_unref(event);
    } else if (GST_EVENT_TYPE(event) == GST_EVENT_CAPS) {
        GstCaps* caps = nullptr;
        gst_event_parse_caps(event, &caps);
        gst_stream_set_caps(stream.description, caps);
    }
    return GST_PAD_PROBE_OK;
}

// ---- Buffers ----

/// A stream that is not linked is an error only where no other one is linked.
GstFlowReturn PassBuffer(GstPad* pad, GstObject* parent, GstBuffer* buffer)
{
    Stream& stream = *static_cast<Stream*>(gst_pad_get_element_private(pad));
    ClipBinState& state = *stream.bin->state;
    stream.hasBuffers = true;
    NoteBuffer(stream.Source());
    const GstFlowReturn flow = gst_proxy_pad_chain_default(pad, parent, buffer);
    std::unique_lock lock(state.flowMutex);
    const GstFlowReturn combined = gst_flow_combiner_update_pad_flow(state.flows, stream.pad, flow);
    lock.unlock();
    NoteFlow(stream.Source(), flow);
    return combined;
}

/// A stream asks for memory only before its first buffer; afterwards it allocates by itself. decodebin3 changes
/// links while buffers flow, after which the source asks again. A multiqueue of GStreamer 1.22 that finds the
/// stream unlinked at that moment keeps a pointer to the query after it is freed.
gboolean PassQuery(GstPad* pad, GstObject* parent, GstQuery* query)
{
    const Stream& stream = *static_cast<const Stream*>(gst_pad_get_element_private(pad));
    if (GST_QUERY_TYPE(query) == GST_QUERY_ALLOCATION && stream.hasBuffers) {
        return FALSE;
    }
    return gst_pad_query_default(pad, parent, query);
}

// ---- Seeks ----

/// A seek, as the application asked for it.
struct SeekRequest {
    gdouble rate = 1;
    GstFormat format = GST_FORMAT_UNDEFINED;
    GstSeekFlags flags = GST_SEEK_FLAG_NONE;
    GstSeekType startType = GST_SEEK_TYPE_NONE;
    gint64 start = 0;
    GstSeekType stopType = GST_SEEK_TYPE_NONE;
    gint64 stop = 0;
};

SeekRequest ParseSeek(GstEvent* event)
{
    SeekRequest seek;
    gst_event_parse_seek(event, &seek.rate, &seek.format, &seek.flags, &seek.startType, &seek.start,
                         &seek.stopType, &seek.stop);
    return seek;
}

/// Frames or samples become time: the streams count different things.
bool ConvertToTime(SeekRequest& seek, const Stream& stream)
{
    if (seek.format == GST_FORMAT_TIME) {
        return true;
    }
    if (seek.format != GST_FORMAT_DEFAULT) {
        return false;
    }
    for (gint64* const place : {&seek.start, &seek.stop}) {
        if (*place >= 0) {
            *place = static_cast<gint64>(UnitTime(stream.Source(), static_cast<guint64>(*place)));
        }
    }
    seek.format = GST_FORMAT_TIME;
    return true;
}

/// Every picture is a key unit: such a seek starts where the picture starts that is shown at the time.
void SnapToPicture(SeekRequest& seek, const Stream& first)
{
    const bool snaps = (seek.flags & GST_SEEK_FLAG_KEY_UNIT) != 0 && (seek.flags & GST_SEEK_FLAG_ACCURATE) == 0;
    if (snaps && seek.rate > 0 && seek.startType == GST_SEEK_TYPE_SET && seek.start >= 0) {
        seek.start = static_cast<gint64>(StartOfUnitAt(first.Source(), static_cast<guint64>(seek.start)));
    }
}

/// Every sink of a pipeline forwards a seek of the application: the first to arrive moves both streams.
/// @param stream  whose pad it came to
bool SeekStreams(ClipBinState& state, GstEvent* event, const Stream& stream)
{
    const std::lock_guard lock(state.seekMutex);
    const guint32 number = gst_event_get_seqnum(event);
    if (number == state.lastSeek) {
        return state.wasLastSeekDone;
    }
    SeekRequest seek = ParseSeek(event);
    if (!ConvertToTime(seek, stream)) {
        return false;
    }
    SnapToPicture(seek, *state.streams.front());
    if ((seek.flags & GST_SEEK_FLAG_FLUSH) != 0) {
        const std::lock_guard flowLock(state.flowMutex);
        gst_flow_combiner_reset(state.flows);
    }
    bool isDone = true;
    for (const auto& each : state.streams) {
        GstEvent* const forwarded = gst_event_new_seek(seek.rate, seek.format, seek.flags, seek.startType,
                                                       seek.start, seek.stopType, seek.stop);
        gst_event_set_seqnum(forwarded, number);
        isDone = gst_element_send_event(each->source, forwarded) != FALSE && isDone;
    }
    state.lastSeek = number;
    state.wasLastSeekDone = isDone;
    return isDone;
}

gboolean HandlePadEvent(GstPad* pad, GstObject* parent, GstEvent* event)
{
    if (GST_EVENT_TYPE(event) != GST_EVENT_SEEK) {
        return gst_pad_event_default(pad, parent, event);
    }
    const Stream& stream = *static_cast<const Stream*>(gst_pad_get_element_private(pad));
    const bool isDone = SeekStreams(*stream.bin->state, event, stream);
    gst_event_unref(event);
    return isDone ? TRUE : FALSE;
}

gboolean SendEvent(GstElement* element, GstEvent* event)
{
    ClipBinState& state = *AsClipBin(element)->state;
    if (GST_EVENT_TYPE(event) != GST_EVENT_SEEK || state.streams.empty()) {
        return GST_ELEMENT_CLASS(tessel_clip_bin_parent_class)->send_event(element, event);
    }
    const bool isDone = SeekStreams(state, event, *state.streams.front());
    gst_event_unref(event);
    return isDone ? TRUE : FALSE;
}

/// The streams answer what is asked of the element itself.
gboolean Query(GstElement* element, GstQuery* query)
{
    const ClipBinState& state = *AsClipBin(element)->state;
    switch (GST_QUERY_TYPE(query)) {
    case GST_QUERY_DURATION:
    case GST_QUERY_POSITION:
    case GST_QUERY_SEEKING:
    case GST_QUERY_CONVERT:
    case GST_QUERY_SEGMENT:
        return !state.streams.empty() ? gst_element_query(state.streams.front()->source, query) : FALSE;
    default:
        return GST_ELEMENT_CLASS(tessel_clip_bin_parent_class)->query(element, query);
    }
}

// ---- Streams ----

/// What a pad of the bin shows.
struct StreamKind {
    const char* name; ///< of pad template and pad
    GstStreamType type;
    guint groupId;
};

void AddStream(TesselClipBin* bin, GstElement* source, const std::shared_ptr<Pace>& pace,
               const StreamKind& kind)
{
    ClipBinState& state = *bin->state;
    auto stream = std::make_unique<Stream>();
    stream->bin = bin;
    stream->source = source;
    SetPace(stream->Source(), pace);
    gst_bin_add(GST_BIN(bin), source);

    GstPad* const inner = gst_element_get_static_pad(source, "src");
    gst_pad_add_probe(inner, GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM, &CompleteEvent, stream.get(), nullptr);
    GstPadTemplate* const shape = gst_element_class_get_pad_template(GST_ELEMENT_GET_CLASS(bin), kind.name);
    stream->pad = gst_ghost_pad_new_from_template(kind.name, inner, shape);
    gst_object_unref(inner);
    gst_pad_set_element_private(stream->pad, stream.get());
    gst_pad_set_event_function(stream->pad, &HandlePadEvent);
    GstProxyPad* const entrance = gst_proxy_pad_get_internal(GST_PROXY_PAD(stream->pad));
    gst_pad_set_element_private(GST_PAD(entrance), stream.get());
    gst_pad_set_chain_function(GST_PAD(entrance), &PassBuffer);
    gst_pad_set_query_function(GST_PAD(entrance), &PassQuery);
    gst_object_unref(entrance);

    gchar* const id = gst_pad_create_stream_id(stream->pad, GST_ELEMENT(bin), kind.name);
    stream->description = gst_stream_new(id, nullptr, kind.type, GST_STREAM_FLAG_SELECT);
    g_free(id);
    stream->start = NewStreamStart(*stream, kind.groupId);
    gst_flow_combiner_add_pad(state.flows, stream->pad);
    state.streams.push_back(std::move(stream));
}

void RemoveStreams(TesselClipBin* bin)
{
    ClipBinState& state = *bin->state;
    for (const auto& stream : state.streams) {
        gst_element_set_state(stream->source, GST_STATE_NULL);
    }
    for (const auto& stream : state.streams) {
        gst_flow_combiner_remove_pad(state.flows, stream->pad);
        gst_pad_set_active(stream->pad, FALSE);
        gst_element_remove_pad(GST_ELEMENT(bin), stream->pad);
        gst_bin_remove(GST_BIN(bin), stream->source);
    }
    state.streams.clear();
    gst_clear_object(&state.collection);
    state.lastSeek = GST_SEQNUM_INVALID;
}

GstStateChangeReturn ChangeState(GstElement* element, GstStateChange change)
{
    const GstStateChangeReturn result =
        GST_ELEMENT_CLASS(tessel_clip_bin_parent_class)->change_state(element, change);
    const bool isStopping = change == GST_STATE_CHANGE_PAUSED_TO_READY;
    if (isStopping || (result == GST_STATE_CHANGE_FAILURE && change == GST_STATE_CHANGE_READY_TO_PAUSED)) {
        RemoveStreams(AsClipBin(element));
    }
    return result;
}

void Dispose(GObject* object)
{
    RemoveStreams(AsClipBin(object));
    G_OBJECT_CLASS(tessel_clip_bin_parent_class)->dispose(object);
}

void Finalize(GObject* object)
{
    delete AsClipBin(object)->state;
    G_OBJECT_CLASS(tessel_clip_bin_parent_class)->finalize(object);
}

void tessel_clip_bin_init(TesselClipBin* bin)
{
    bin->state = new ClipBinState;
}

void tessel_clip_bin_class_init(TesselClipBinClass* kind)
{
    G_OBJECT_CLASS(kind)->dispose = &Dispose;
    G_OBJECT_CLASS(kind)->finalize = &Finalize;
    GstElementClass* const element = GST_ELEMENT_CLASS(kind);
    element->change_state = &ChangeState;
    element->send_event = &SendEvent;
    element->query = &Query;
    GstCaps* const video = VideoTemplateCaps();
    GstCaps* const audio = AudioTemplateCaps();
    gst_element_class_add_pad_template(element,
                                       gst_pad_template_new("video", GST_PAD_SRC, GST_PAD_SOMETIMES, video));
    gst_element_class_add_pad_template(element,
                                       gst_pad_template_new("audio", GST_PAD_SRC, GST_PAD_SOMETIMES, audio));
    gst_caps_unref(video);
    gst_caps_unref(audio);
}

} // namespace

GType ClipBinType()
{
    return tessel_clip_bin_get_type();
}

void ShowClip(TesselClipBin* bin, const ClipPointer& clip, guint groupId)
{
    ClipBinState& state = *bin->state;
    if (!clip->remark.empty()) {
        GST_ELEMENT_WARNING(bin, STREAM, FORMAT, ("%s", clip->remark.c_str()), (nullptr));
    }
    const auto pace = std::make_shared<Pace>();
    if (clip->own) {
        AddStream(bin, NewVideoSource(clip), pace, {"video", GST_STREAM_TYPE_VIDEO, groupId});
    }
    if (clip->HasSound()) {
        AddStream(bin, NewAudioSource(clip), pace, {"audio", GST_STREAM_TYPE_AUDIO, groupId});
    }
    state.collection = gst_stream_collection_new(nullptr);
    for (const auto& stream : state.streams) {
        gst_stream_collection_add_stream(state.collection, GST_STREAM(gst_object_ref(stream->description)));
    }
    gst_element_post_message(GST_ELEMENT(bin),
                             gst_message_new_stream_collection(GST_OBJECT(bin), state.collection));
    for (const auto& stream : state.streams) {
        gst_pad_set_active(stream->pad, TRUE);
        // Before a buffer flows on any pad: who takes the streams wants to know all of them by then.
        gst_pad_push_event(stream->pad, gst_event_ref(stream->start));
        gst_pad_push_event(stream->pad, gst_event_new_stream_collection(state.collection));
    }
    for (const auto& stream : state.streams) {
        gst_element_add_pad(GST_ELEMENT(bin), stream->pad);
    }
    gst_element_no_more_pads(GST_ELEMENT(bin));
}

void StartStreams(TesselClipBin* bin)
{
    for (const auto& stream : bin->state->streams) {
        gst_element_sync_state_with_parent(stream->source);
    }
}

bool HasClip(const TesselClipBin* bin)
{
    return !bin->state->streams.empty();
}

void FailOpening(TesselClipBin* bin, const std::string& error)
{
    GST_ELEMENT_ERROR(bin, RESOURCE, OPEN_READ, ("%s", error.c_str()), (nullptr));
}

} // namespace tessel::gstreamer
