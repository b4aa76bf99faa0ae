/// What `tesselsrc` and `tesseldemux` share: a bin whose pads give the picture and the sound of one clip.
#pragma once

#include "Clip.h"

#include <gst/gst.h>

namespace tessel::gstreamer {

struct ClipBinState;

struct TesselClipBin {
    GstBin parent;
    ClipBinState* state;
};

struct TesselClipBinClass {
    GstBinClass parent;
};

/// An abstract type with the pad templates `video` and `audio`. Seeks on any pad, or sent to the element, reach
/// both streams, each seek once. On the way to READY the pads go.
GType ClipBinType();

/// Adds a pad for each stream that the clip has, posts the collection of the streams, and says that there will
/// be no more pads. The sources are brought to the bin's state by the caller, or with the bin's change of
/// state.
/// @param groupId  of the streams, as `gst_util_group_id_next` gives one
void ShowClip(TesselClipBin* bin, const ClipPointer& clip, guint groupId);

/// Starts what `ShowClip` added, outside of a change of the bin's state.
void StartStreams(TesselClipBin* bin);

[[nodiscard]] bool HasClip(const TesselClipBin* bin);

/// Posts why a document cannot be opened.
void FailOpening(TesselClipBin* bin, const std::string& error);

} // namespace tessel::gstreamer
