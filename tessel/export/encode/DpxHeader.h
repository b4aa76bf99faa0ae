/// The fields of DPX files (SMPTE 268M) that FFmpeg's encoder fills in alike for every picture.
#pragma once

#include <tessel/export/plan/ColorTags.h>

#include <cstddef>
#include <span>

namespace tessel::exporting {

/// Writes transfer characteristic and colorimetry into a whole DPX file; FFmpeg writes "linear" for both.
/// What 268M has no code for becomes "user-defined".
void PatchDpxColors(std::span<std::byte> file, const ColorTags& tags) noexcept;

} // namespace tessel::exporting
