/// What the sources of picture and sound share: units (frames or samples) at an exact rate, seeking, reverse
/// playback, queries.
#pragma once

#include "Clip.h"
#include "Pace.h"
#include "Timing.h"

#include <gst/base/gstpushsrc.h>

#include <memory>

namespace tessel::gstreamer {

/// What a stream consists of.
struct StreamShape {
    UnitRate rate;
    guint64 unitCount = 0;
    guint64 unitsPerBuffer = 1; ///< buffers start at multiples of it
};

struct StreamSourceState;

/// A source that is given a clip once, before it starts.
struct TesselStreamSource {
    GstPushSrc parent;
    StreamSourceState* state;
};

struct TesselStreamSourceClass {
    GstPushSrcClass parent;
    /// Makes a buffer of units `first` to `first + count`; its times are set by the caller.
    GstFlowReturn (*make)(TesselStreamSource* source, guint64 first, guint64 count, GstBuffer** buffer);
};

GType StreamSourceType();
inline TesselStreamSource* AsStreamSource(gpointer object)
{
    return reinterpret_cast<TesselStreamSource*>(object);
}

/// Both before the source starts.
void SetClip(TesselStreamSource* source, ClipPointer clip, const StreamShape& shape);
void SetPace(TesselStreamSource* source, std::shared_ptr<Pace> pace);
[[nodiscard]] const Clip& ClipOf(const TesselStreamSource* source);

/// The unit's time as `GST_QUERY_CONVERT` gives it, and the start of the unit that a time lies in.
[[nodiscard]] GstClockTime UnitTime(const TesselStreamSource* source, guint64 unit);
[[nodiscard]] GstClockTime StartOfUnitAt(const TesselStreamSource* source, GstClockTime time);

/// A buffer leaves the bin, and what became of it; on the streaming thread.
void NoteBuffer(TesselStreamSource* source);
void NoteFlow(TesselStreamSource* source, GstFlowReturn flow);

/// Posts why a request on the clip failed.
[[nodiscard]] GstFlowReturn FailRequest(TesselStreamSource* source);

} // namespace tessel::gstreamer
