#include "FrameFormat.h"

#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/pixmill/PixelFormatCodes.h>

namespace ImporterTessel {

std::uint32_t NormalizedPaintCode(std::uint32_t paintCode) noexcept
{
    const std::uint32_t kind = paintCode >> 24U;
    if (kind == 0) {
        return paintCode;
    }
    constexpr std::uint32_t kSubsampledAsCodec = pixmill::kBit422 | pixmill::kBit420;
    // The top bytes 15 and 16 are DV formats, too, but all of these are BT.709.
    const bool isDV601 = (paintCode & pixmill::kBitYCbCr) != 0 && kind >= 9 && kind <= 14 &&
                         (paintCode & kSubsampledAsCodec) == kSubsampledAsCodec &&
                         (paintCode & pixmill::kBit709) == 0;
    return isDV601 ? pixmill::kBGRA8 : pixmill::kVUYA8_709;
}

FrameFormat FrameFormatOf(std::uint32_t clipHostCode) noexcept
{
    const std::uint32_t paintCode =
        NormalizedPaintCode(PM_QELPixelFormatToPMPixelFormat(BR::SDKToBEPixelFormat(clipHostCode)));
    return {.paintCode = paintCode,
            .hostCode = BR::BEToSDKPixelFormat(PM_PMPixelFormatToQELPixelFormat(paintCode))};
}

} // namespace ImporterTessel
