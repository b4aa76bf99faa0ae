/// The gradient that runs down the picture and moves through the clip.
#pragma once

#include "FrameView.h"

#include <ImporterTessel/settings/TesselInfo.h>

#include <cstdint>

namespace ImporterTessel {

/// The colours between which one frame's rows run.
struct RowRamp {
    FloatColor top;
    FloatColor bottom;

    /// The colour of a row. Never the bottom colour itself: the last row is (height - 1) / height of the
    /// way to it. @param height  Rows; not 0.
    [[nodiscard]] FloatColor ColorOfRow(std::uint32_t row, std::uint32_t height) const noexcept;
};

/// The ramp of frame `frame` of `frameCount`: start and end colours mixed by frame / frameCount. The end
/// is never reached either: the last frame is (frameCount - 1) / frameCount of the way to it.
///
/// Intended: a clip of 0 frames divides by zero and gets the infinite or undefined colours that this yields;
/// and a frame before the clip counts as a number near 2^32.
[[nodiscard]] RowRamp RampOfFrame(const TesselInfo& info, std::int32_t frame, std::int32_t frameCount) noexcept;

/// Paints every row of the frame. [any-thread]
void PaintGradient(const FrameView& view, const RowRamp& ramp) noexcept;

} // namespace ImporterTessel
