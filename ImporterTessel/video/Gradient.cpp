#include "Gradient.h"

#include "PaintColor.h"

namespace ImporterTessel {

namespace {

[[nodiscard]] FloatColor Mix(const FloatColor& from, const FloatColor& to, float share) noexcept
{
    return {.mAlphaPart = from.mAlphaPart + (to.mAlphaPart - from.mAlphaPart) * share,
            .mRedPart = from.mRedPart + (to.mRedPart - from.mRedPart) * share,
            .mGreenPart = from.mGreenPart + (to.mGreenPart - from.mGreenPart) * share,
            .mBluePart = from.mBluePart + (to.mBluePart - from.mBluePart) * share};
}

} // namespace

FloatColor RowRamp::ColorOfRow(std::uint32_t row, std::uint32_t height) const noexcept
{
    return Mix(top, bottom, static_cast<float>(row) / static_cast<float>(height));
}

RowRamp RampOfFrame(const TesselInfo& info, std::int32_t frame, std::int32_t frameCount) noexcept
{
    const auto position = static_cast<double>(static_cast<std::uint32_t>(frame));
    const auto share = static_cast<float>(position / static_cast<double>(frameCount));
    return {.top = Mix(info.mTopGradiantColorStart, info.mTopGradiantColorEnd, share),
            .bottom = Mix(info.mBottomGradiantColorStart, info.mBottomGradiantColorEnd, share)};
}

void PaintGradient(const FrameView& view, const RowRamp& ramp) noexcept
{
    for (std::uint32_t row = 0; row < view.height; ++row) {
        PaintRows(view, view.Row(row), view.rowBytes, 1, ramp.ColorOfRow(row, view.height));
    }
}

} // namespace ImporterTessel
