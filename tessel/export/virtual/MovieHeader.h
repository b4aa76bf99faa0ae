/// The beginning of a QuickTime movie whose packets follow it: its type, its index, and the packets' atom.
#pragma once

#include "PacketPlaces.h"

#include <tessel/export/plan/OutputPlan.h>

#include <cstddef>
#include <vector>

namespace tessel::exporting {

/// Streams, times, tags and the places of packets, as FFmpeg's muxer writes them for `render`.
/// Costs some 16 bytes for each picture.
[[nodiscard]] std::vector<std::byte> MovieHeader(const OutputPlan& plan, const PacketPlaces& places);

} // namespace tessel::exporting
