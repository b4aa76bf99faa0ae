#include "StreamSource.h"

#include <algorithm>
#include <utility>

namespace tessel::gstreamer {

struct StreamSourceState {
    ClipPointer clip;
    StreamShape shape;

    // Of the streaming thread, and of seeks, which GstBaseSrc makes while that thread stands still.
    guint64 first = 0; ///< first unit of the segment
    guint64 end = 0;   ///< behind the last unit of the segment
    guint64 next = 0;  ///< forward: the next unit; reverse: behind it
    bool isReverse = false;

    std::shared_ptr<Pace> pace;
    Pace::Id place = 0;
};

namespace {

G_DEFINE_ABSTRACT_TYPE(TesselStreamSource, tessel_stream_source, GST_TYPE_PUSH_SRC)

StreamSourceState& StateOf(gpointer object)
{
    return *AsStreamSource(object)->state;
}

void Finalize(GObject* object)
{
    delete AsStreamSource(object)->state;
    G_OBJECT_CLASS(tessel_stream_source_parent_class)->finalize(object);
}

gboolean Start(GstBaseSrc* base)
{
    const StreamShape& shape = StateOf(base).shape;
    base->segment.duration = StartOf(shape.rate, shape.unitCount);
    return TRUE;
}

gboolean IsSeekable(GstBaseSrc* /*base*/)
{
    return TRUE;
}

gboolean Seek(GstBaseSrc* base, GstSegment* segment)
{
    StreamSourceState& state = StateOf(base);
    const StreamShape& shape = state.shape;
    const GstClockTime length = StartOf(shape.rate, shape.unitCount);
    const GstClockTime from = std::min<guint64>(segment->start, length);
    const GstClockTime to = GST_CLOCK_TIME_IS_VALID(segment->stop) ? std::min(segment->stop, length) : length;
    state.isReverse = segment->rate < 0;
    state.first = std::min(UnitAt(shape.rate, from), shape.unitCount);
    state.end = std::min(UnitsBefore(shape.rate, to), shape.unitCount);
    state.next = state.isReverse ? state.end : state.first;
    state.pace->Begin(state.place);
    segment->time = segment->start;
    segment->position = state.isReverse ? to : segment->start;
    return TRUE;
}

/// Where downstream wants none of the formats, the best one is announced all the same, as demuxers do:
/// decodebin3 answers with the formats of its decoders, which raw formats are not, and then takes raw ones.
/// Where downstream really refuses them, setting the caps fails.
gboolean Negotiate(GstBaseSrc* base)
{
    GstBaseSrcClass* const parent = GST_BASE_SRC_CLASS(tessel_stream_source_parent_class);
    if (parent->negotiate(base) != FALSE) {
        return TRUE;
    }
    GstCaps* const caps = gst_caps_fixate(gst_pad_query_caps(GST_BASE_SRC_PAD(base), nullptr));
    const gboolean isSet = gst_base_src_set_caps(base, caps);
    gst_caps_unref(caps);
    return isSet;
}

gboolean Unlock(GstBaseSrc* base)
{
    StreamSourceState& state = StateOf(base);
    state.pace->SetFlushing(state.place, true);
    return TRUE;
}

gboolean UnlockStop(GstBaseSrc* base)
{
    StreamSourceState& state = StateOf(base);
    state.pace->SetFlushing(state.place, false);
    return TRUE;
}

gboolean HandleEvent(GstBaseSrc* base, GstEvent* event)
{
    if (GST_EVENT_TYPE(event) == GST_EVENT_RECONFIGURE) {
        const StreamSourceState& state = StateOf(base);
        state.pace->Reconfigure(state.place);
    }
    return GST_BASE_SRC_CLASS(tessel_stream_source_parent_class)->event(base, event);
}

gboolean Convert(const StreamShape& shape, GstQuery* query)
{
    GstFormat from = GST_FORMAT_UNDEFINED;
    GstFormat to = GST_FORMAT_UNDEFINED;
    gint64 value = 0;
    gst_query_parse_convert(query, &from, &value, &to, nullptr);
    if (value < 0 && value != -1) {
        return FALSE;
    }
    gint64 converted = value;
    if (from != to && value != -1) {
        if (from == GST_FORMAT_DEFAULT && to == GST_FORMAT_TIME) {
            converted = static_cast<gint64>(StartOf(shape.rate, static_cast<guint64>(value)));
        } else if (from == GST_FORMAT_TIME && to == GST_FORMAT_DEFAULT) {
            converted = static_cast<gint64>(UnitAt(shape.rate, static_cast<guint64>(value)));
        } else {
            return FALSE;
        }
    }
    gst_query_set_convert(query, from, value, to, converted);
    return TRUE;
}

/// The value of a length or place that is counted in units, in a format that a query asks for.
bool InFormat(const StreamShape& shape, guint64 unit, GstFormat format, gint64& value)
{
    if (format == GST_FORMAT_TIME) {
        value = static_cast<gint64>(StartOf(shape.rate, unit));
    } else if (format == GST_FORMAT_DEFAULT) {
        value = static_cast<gint64>(unit);
    } else {
        return false;
    }
    return true;
}

gboolean HandleQuery(GstBaseSrc* base, GstQuery* query)
{
    const StreamShape& shape = StateOf(base).shape;
    GstFormat format = GST_FORMAT_UNDEFINED;
    gint64 length = 0;
    switch (GST_QUERY_TYPE(query)) {
    case GST_QUERY_DURATION:
        gst_query_parse_duration(query, &format, nullptr);
        if (InFormat(shape, shape.unitCount, format, length)) {
            gst_query_set_duration(query, format, length);
            return TRUE;
        }
        break;
    case GST_QUERY_SEEKING:
        gst_query_parse_seeking(query, &format, nullptr, nullptr, nullptr);
        if (InFormat(shape, shape.unitCount, format, length)) {
            gst_query_set_seeking(query, format, TRUE, 0, length);
            return TRUE;
        }
        break;
    case GST_QUERY_CONVERT:
        return Convert(shape, query);
    default:
        break;
    }
    return GST_BASE_SRC_CLASS(tessel_stream_source_parent_class)->query(base, query);
}

GstFlowReturn Create(GstPushSrc* push, GstBuffer** buffer)
{
    TesselStreamSource* const source = AsStreamSource(push);
    StreamSourceState& state = *source->state;
    const StreamShape& shape = state.shape;
    if (!state.pace->WaitForTurn(state.place)) {
        return GST_FLOW_FLUSHING;
    }
    const guint64 block = shape.unitsPerBuffer;
    guint64 first = state.next;
    guint64 end = state.next;
    if (state.isReverse && state.next > state.first) {
        first = std::max(state.first, (end - 1) / block * block);
        state.next = first;
    } else if (!state.isReverse && state.next < state.end) {
        end = std::min(state.end, (first / block + 1) * block);
        state.next = end;
    } else {
        state.pace->End(state.place);
        return state.pace->WaitForOthersToStart(state.place) ? GST_FLOW_EOS : GST_FLOW_FLUSHING;
    }
    const guint64 done = state.isReverse ? state.end - first : end - state.first;
    state.pace->Advance(state.place, StartOf(shape.rate, done));
    if (state.next == (state.isReverse ? state.first : state.end)) {
        state.pace->End(state.place);
    }
    auto* const kind = reinterpret_cast<TesselStreamSourceClass*>(G_OBJECT_GET_CLASS(source));
    const GstFlowReturn flow = kind->make(source, first, end - first, buffer);
    if (flow != GST_FLOW_OK) {
        state.pace->End(state.place);
        return flow;
    }
    GST_BUFFER_PTS(*buffer) = StartOf(shape.rate, first);
    GST_BUFFER_DTS(*buffer) = GST_CLOCK_TIME_NONE;
    GST_BUFFER_DURATION(*buffer) = StartOf(shape.rate, end) - StartOf(shape.rate, first);
    GST_BUFFER_OFFSET(*buffer) = first;
    GST_BUFFER_OFFSET_END(*buffer) = end;
    return GST_FLOW_OK;
}

void tessel_stream_source_init(TesselStreamSource* source)
{
    source->state = new StreamSourceState;
    gst_base_src_set_format(GST_BASE_SRC(source), GST_FORMAT_TIME);
    gst_base_src_set_automatic_eos(GST_BASE_SRC(source), FALSE); // `Create` says when the stream ends
}

void tessel_stream_source_class_init(TesselStreamSourceClass* kind)
{
    G_OBJECT_CLASS(kind)->finalize = &Finalize;
    GstBaseSrcClass* const base = GST_BASE_SRC_CLASS(kind);
    base->start = &Start;
    base->is_seekable = &IsSeekable;
    base->do_seek = &Seek;
    base->negotiate = &Negotiate;
    base->unlock = &Unlock;
    base->unlock_stop = &UnlockStop;
    base->event = &HandleEvent;
    base->query = &HandleQuery;
    GST_PUSH_SRC_CLASS(kind)->create = &Create;
}

} // namespace

GType StreamSourceType()
{
    return tessel_stream_source_get_type();
}

void SetClip(TesselStreamSource* source, ClipPointer clip, const StreamShape& shape)
{
    source->state->clip = std::move(clip);
    source->state->shape = shape;
}

void SetPace(TesselStreamSource* source, std::shared_ptr<Pace> pace)
{
    source->state->place = pace->Add();
    source->state->pace = std::move(pace);
}

const Clip& ClipOf(const TesselStreamSource* source)
{
    return *source->state->clip;
}

GstClockTime UnitTime(const TesselStreamSource* source, guint64 unit)
{
    return StartOf(source->state->shape.rate, unit);
}

GstClockTime StartOfUnitAt(const TesselStreamSource* source, GstClockTime time)
{
    const UnitRate& rate = source->state->shape.rate;
    return StartOf(rate, UnitAt(rate, time));
}

void NoteBuffer(TesselStreamSource* source)
{
    source->state->pace->Start(source->state->place);
}

void NoteFlow(TesselStreamSource* source, GstFlowReturn flow)
{
    const StreamSourceState& state = *source->state;
    state.pace->SetLinked(state.place, flow != GST_FLOW_NOT_LINKED);
    if (flow != GST_FLOW_NOT_LINKED && flow != GST_FLOW_OK) {
        state.pace->End(state.place);
    }
}

GstFlowReturn FailRequest(TesselStreamSource* source)
{
    GST_ELEMENT_ERROR(source, STREAM, FAILED, ("%s", tessel_error_text()), (nullptr));
    return GST_FLOW_ERROR;
}

} // namespace tessel::gstreamer
