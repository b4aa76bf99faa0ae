/// Filling rows of a frame with one colour of the settings.
#pragma once

#include "FrameView.h"

#include <ImporterTessel/settings/TesselInfo.h>
#include <kestrel/pixmill/Fill.h>
#include <kestrel/pixmill/PixelFormatCodes.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace ImporterTessel {

/// Fills `rows` full rows, the first at `firstRow` and then one every `stepBytes`.
inline void PaintRows(const FrameView& view, std::byte* firstRow, std::int32_t stepBytes, std::uint32_t rows,
                      const FloatColor& color) noexcept
{
    const std::array<float, 4> blueGreenRedAlpha{color.mBluePart, color.mGreenPart, color.mRedPart,
                                                 color.mAlphaPart};
    // Intended: the status is not tested. A format that the library cannot paint leaves the frame as it is.
    (void)PM_FillWithColor(firstRow, stepBytes, view.width, rows, view.paintCode, blueGreenRedAlpha.data(),
                           pixmill::kBGRAFloat);
}

} // namespace ImporterTessel
