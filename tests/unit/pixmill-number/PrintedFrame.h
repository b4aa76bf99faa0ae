/// A frame of any paintable format with guarded memory, for printing numbers into.
#pragma once

#include <kestrel/pixmill/Fill.h>
#include <kestrel/pixmill/PrintNumber.h>

#include <support/NumberReader.h>
#include <support/PaintableFormats.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace testsupport {

inline constexpr std::array<float, 4> kOrange{0.25F, 0.5F, 1.0F, 1.0F}; // blue, green, red, alpha

enum class RowOrder { StepForwards, StepBackwards };

class PrintedFrame {
public:
    static constexpr std::size_t kGuardBytes = 64; // between rows, before the first and after the last
    static constexpr std::byte kGuard{0xA7};

    PrintedFrame(std::uint32_t code, std::uint32_t width, std::uint32_t height,
                 RowOrder order = RowOrder::StepForwards)
        : mCode(code), mWidth(width), mHeight(height), mOrder(order),
          mStep(static_cast<std::int32_t>(RowLength(code, width) + kGuardBytes)),
          mMemory(kGuardBytes + static_cast<std::size_t>(mStep) * height, kGuard)
    {
    }

    void Fill(const std::array<float, 4>& blueGreenRedAlpha)
    {
        (void)PM_FillWithColor(Pixels(), RowBytes(), mWidth, mHeight, mCode, blueGreenRedAlpha.data(),
                               pixmill::kBGRAFloat);
    }

    [[nodiscard]] std::int32_t Print(std::int32_t number, bool opaque = true, float textHeight = 0.12F,
                                     std::array<float, 2> position = {0.05F, 0.05F})
    {
        return PM_PrintNum(Pixels(), RowBytes(), mCode, mWidth, mHeight, number, textHeight, position.data(),
                           opaque);
    }

    /// The row address and step as a host would pass them.
    [[nodiscard]] std::byte* Pixels() { return MemoryRow(mOrder == RowOrder::StepForwards ? 0 : mHeight - 1); }
    [[nodiscard]] std::int32_t RowBytes() const { return mOrder == RowOrder::StepForwards ? mStep : -mStep; }

    /// The row that is shown as the picture's row `row` from the top.
    [[nodiscard]] std::byte* ShownRow(std::uint32_t row)
    {
        // Walking on from the given address goes down the picture, but up in BGRA float with a positive step.
        const bool upwards = mCode == pixmill::kBGRAFloat && mOrder == RowOrder::StepForwards;
        const std::uint32_t walked = upwards ? mHeight - 1 - row : row;
        return MemoryRow(mOrder == RowOrder::StepForwards ? walked : mHeight - 1 - walked);
    }

    [[nodiscard]] BrightnessPicture Picture()
    {
        return {.width = mWidth, .height = mHeight, .at = [this](std::uint32_t x, std::uint32_t y) {
                    return Brightness(ShownRow(y), mCode, x);
                }};
    }

    [[nodiscard]] bool GuardsAreIntact() const
    {
        const std::size_t length = RowLength(mCode, mWidth);
        for (std::size_t at = 0; at < mMemory.size(); ++at) {
            const bool inRow =
                at >= kGuardBytes && (at - kGuardBytes) % static_cast<std::size_t>(mStep) < length;
            if (!inRow && mMemory[at] != kGuard) {
                return false;
            }
        }
        return true;
    }

    [[nodiscard]] std::uint32_t Width() const { return mWidth; }
    [[nodiscard]] std::uint32_t Height() const { return mHeight; }
    [[nodiscard]] std::uint32_t Code() const { return mCode; }
    [[nodiscard]] const std::vector<std::byte>& Memory() const { return mMemory; }

private:
    [[nodiscard]] std::byte* MemoryRow(std::uint32_t row)
    {
        return mMemory.data() + kGuardBytes + std::size_t{row} * static_cast<std::size_t>(mStep);
    }

    std::uint32_t mCode;
    std::uint32_t mWidth;
    std::uint32_t mHeight;
    RowOrder mOrder;
    std::int32_t mStep;
    std::vector<std::byte> mMemory;
};

} // namespace testsupport
