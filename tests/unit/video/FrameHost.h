/// A foreign host that requests frames, and what the tests of pictures ask of them.
#pragma once

#include <ImporterTessel/video/FrameSynthesis.h>
#include <kestrel/importabi/Records.h>

#include <support/ForeignHost.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace testsupport {

class FrameHost : public ForeignHost {
public:
    using ForeignHost::ForeignHost;

    /// Asks for the frame at `ticks`; the result code. The members below speak of the frame made last.
    std::int32_t Request(const ImporterTessel::TesselInfo& info, std::int64_t ticks = 0)
    {
        mFrame = nullptr;
        std::memset(&record, 0xCC, sizeof record);
        record.time = ticks;
        record.frame = &mFrame;
        return ImporterTessel::SynthesizeFrame(info, &stdParms, record);
    }

    ksFrameRec record{};

    /// The handle that the request has left.
    [[nodiscard]] void* StoredFrame() const { return mFrame; }

    [[nodiscard]] const std::byte* Row(std::uint32_t row) const { return LastFrame().Row(row); }
    [[nodiscard]] std::vector<std::byte> RowCopy(std::uint32_t row) const
    {
        return {Row(row), Row(row) + LastFrame().Length()};
    }
    [[nodiscard]] bool IsUnpainted(std::uint32_t row) const { return LastFrame().IsUnpainted(row); }
    [[nodiscard]] bool IsUnpainted() const
    {
        for (std::uint32_t row = 0; row < LastFrame().Height(); ++row) {
            if (!IsUnpainted(row)) {
                return false;
            }
        }
        return true;
    }

private:
    void* mFrame = nullptr;
};

/// Settings of a small clip of the format, without a number.
[[nodiscard]] inline ImporterTessel::TesselInfo SmallClip(std::uint32_t sdkCode, std::int32_t width,
                                                          std::int32_t height)
{
    ImporterTessel::TesselInfo info;
    info.mPixelFormat = sdkCode;
    info.mFrameWidth = width;
    info.mFrameHeight = height;
    info.mDrawFrameFieldNumber = false;
    return info;
}

[[nodiscard]] inline std::uint32_t SdkCodeOf(BR::PixelFormat format)
{
    return BR::BEToSDKPixelFormat(format);
}

/// Pixel x of a row of BGRA float.
[[nodiscard]] inline std::array<float, 4> FloatPixel(const std::byte* row, std::uint32_t x)
{
    std::array<float, 4> pixel{};
    std::memcpy(pixel.data(), row + std::size_t{x} * 16, 16);
    return pixel;
}

} // namespace testsupport
