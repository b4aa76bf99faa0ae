/// The field of DNxHR pictures (SMPTE ST 2019-1, VC-3) that FFmpeg's encoder fills in alike for every clip.
#pragma once

#include <tessel/export/plan/ColorTags.h>

#include <cstddef>
#include <span>

namespace tessel::exporting {

/// Writes the colour volume into a coded picture; FFmpeg writes "BT.709", and decoders believe that rather than
/// the container. A matrix that VC-3 has no code for becomes "out of band": the container's counts.
void PatchDnxhrColorVolume(std::span<std::byte> picture, const ColorTags& tags) noexcept;

} // namespace tessel::exporting
