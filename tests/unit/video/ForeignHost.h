/// A host that is not ours: its own tables, padded or backward rows, guarded memory, failures on demand.
#pragma once

#include <ImporterTessel/video/FrameSynthesis.h>
#include <kestrel/importabi/Records.h>
#include <kestrel/importabi/Suites.h>

#include <support/PaintableFormats.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace testsupport {

/// The tables are the process' (the plug-in keeps them), the behaviour is that of the host made last.
class ForeignHost {
public:
    static constexpr std::byte kUnpainted{0xC3};
    static constexpr std::byte kGuard{0xA7};
    static constexpr std::size_t kGuardBytes = 256;

    struct Behaviour {
        std::size_t rowPadding = 24;
        bool backwards = false; ///< row 0 is the last in memory and the step negative
        bool creatorReportsFailure = false;
        bool creatorGivesNull = false;
        bool boundsFail = false, rowBytesFail = false, pixelsFail = false, pixelsAreNull = false;
    };

    struct Creation {
        std::int32_t count = 0;
        void** frameSlot = nullptr;
        std::int32_t access = 0;
        std::uint32_t pixelFormat = 0;
        std::int32_t width = 0, height = 0;
        bool reserved5 = true;
        std::int32_t reserved6 = -1;
        std::uint32_t parNumerator = 0, parDenominator = 0;
        void* extra16 = nullptr;
    };

    ForeignHost() : ForeignHost(Behaviour{}) {}
    explicit ForeignHost(const Behaviour& behaviour) : mBehaviour(behaviour)
    {
        sCurrent = this;
        Creator() = {.slots0To3 = {}, .createFrame = &CreateFrame};
        FrameSuite() = {
            .slot0 = nullptr, .getPixels = &GetPixels, .getBounds = &GetBounds, .getRowBytes = &GetRowBytes};
    }
    ~ForeignHost() { sCurrent = nullptr; }
    ForeignHost(const ForeignHost&) = delete;
    ForeignHost& operator=(const ForeignHost&) = delete;

    /// Asks for the frame at `ticks`; the result code.
    std::int32_t Request(const ImporterTessel::TesselInfo& info, std::int64_t ticks = 0)
    {
        mFrame = nullptr;
        std::memset(&record, 0xCC, sizeof record);
        record.time = ticks;
        record.frame = &mFrame;
        return ImporterTessel::SynthesizeFrame(info, Parameters(), record);
    }

    ksFrameRec record{};
    Creation creation;
    std::int32_t queries = 0; ///< calls of the frame suite

    [[nodiscard]] void* StoredFrame() const { return mFrame; }

    /// The row at the address that this host gave plus `row` steps.
    [[nodiscard]] const std::byte* Row(std::uint32_t row) const
    {
        return First() + static_cast<std::ptrdiff_t>(row) * StepBytes();
    }
    [[nodiscard]] std::size_t Length() const { return mLength; }
    [[nodiscard]] std::vector<std::byte> RowCopy(std::uint32_t row) const
    {
        return {Row(row), Row(row) + mLength};
    }
    [[nodiscard]] bool IsUnpainted(std::uint32_t row) const
    {
        return std::all_of(Row(row), Row(row) + mLength, [](std::byte b) { return b == kUnpainted; });
    }
    [[nodiscard]] bool IsUnpainted() const
    {
        for (std::uint32_t row = 0; row < mHeight; ++row) {
            if (!IsUnpainted(row)) {
                return false;
            }
        }
        return true;
    }
    [[nodiscard]] bool GuardsAreIntact() const
    {
        const std::size_t step = mLength + mBehaviour.rowPadding;
        for (std::size_t at = 0; at < mMemory.size(); ++at) {
            const bool inPicture = at >= kGuardBytes && at < kGuardBytes + step * mHeight;
            if (!(inPicture && (at - kGuardBytes) % step < mLength) && mMemory[at] != kGuard) {
                return false;
            }
        }
        return true;
    }

    static ksFrameCreatorSuite4& Creator()
    {
        static ksFrameCreatorSuite4 sTable;
        return sTable;
    }
    static ksFrameSuite1& FrameSuite()
    {
        static ksFrameSuite1 sTable;
        return sTable;
    }
    static const ksStdParms* Parameters()
    {
        static const int sPixelFormatSuite = 0;
        static ksSuiteAccess sAccess{
            .acquireSuite = [](const char* name, std::int32_t version, const void** suite) -> std::int32_t {
                const std::string asked = std::string(name) + " " + std::to_string(version);
                if (asked == "Kestrel Vimo Creator 2 Suite 4") {
                    *suite = &Creator();
                } else if (asked == "Kestrel Vimo Suite 1") {
                    *suite = &FrameSuite();
                } else if (asked == "Kestrel Pixel Format Suite 1") {
                    *suite = &sPixelFormatSuite;
                } else {
                    return -1;
                }
                return 0;
            }};
        static const ksUtilityFunctions sUtility{.slots0To6 = {}, .getSuiteAccess = [] { return &sAccess; }};
        static ksServiceTables sServices{};
        static ksStdParms sParameters{};
        sServices.utility = &sUtility;
        sParameters.services = &sServices;
        return &sParameters;
    }

private:
    [[nodiscard]] std::ptrdiff_t StepBytes() const
    {
        const auto step = static_cast<std::ptrdiff_t>(mLength + mBehaviour.rowPadding);
        return mBehaviour.backwards ? -step : step;
    }
    [[nodiscard]] const std::byte* First() const
    {
        const std::size_t step = mLength + mBehaviour.rowPadding;
        const std::size_t rowsBefore = mBehaviour.backwards && mHeight > 0 ? mHeight - 1 : 0;
        return mMemory.data() + kGuardBytes + step * rowsBefore;
    }

    void Allocate(std::uint32_t sdkCode, std::uint32_t width, std::uint32_t height)
    {
        const std::uint32_t code = PM_QELPixelFormatToPMPixelFormat(BR::SDKToBEPixelFormat(sdkCode));
        mLength = code == 0 ? std::size_t{width} * 4 : RowLength(code, width);
        mHeight = height;
        const std::size_t step = mLength + mBehaviour.rowPadding;
        mMemory.assign(kGuardBytes * 2 + step * height, kGuard);
        for (std::uint32_t row = 0; row < height; ++row) {
            std::memset(mMemory.data() + kGuardBytes + step * row, std::to_integer<int>(kUnpainted), mLength);
        }
    }

    static std::int32_t CreateFrame(ksFrameHandle* frame, std::int32_t access, std::uint32_t pixelFormat,
                                    std::int32_t width, std::int32_t height, bool reserved5,
                                    std::int32_t reserved6, std::uint32_t parNumerator,
                                    std::uint32_t parDenominator, void* extra16)
    {
        ForeignHost& host = *sCurrent;
        host.creation = {.count = host.creation.count + 1,
                         .frameSlot = frame,
                         .access = access,
                         .pixelFormat = pixelFormat,
                         .width = width,
                         .height = height,
                         .reserved5 = reserved5,
                         .reserved6 = reserved6,
                         .parNumerator = parNumerator,
                         .parDenominator = parDenominator,
                         .extra16 = extra16};
        if (host.mBehaviour.creatorGivesNull) {
            *frame = nullptr;
            return -1;
        }
        host.Allocate(pixelFormat, static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height));
        *frame = &host.mMemory;
        return host.mBehaviour.creatorReportsFailure ? -1 : 0;
    }

    static std::int32_t GetPixels(ksFrameHandle frame, std::int32_t access, void** pixels)
    {
        ForeignHost& host = *sCurrent;
        ++host.queries;
        if (host.mBehaviour.pixelsFail || frame != &host.mMemory || access != 2) {
            return -1;
        }
        *pixels = host.mBehaviour.pixelsAreNull ? nullptr : const_cast<std::byte*>(host.First());
        return 0;
    }
    static std::int32_t GetBounds(ksFrameHandle frame, std::int32_t bounds[4])
    {
        ForeignHost& host = *sCurrent;
        ++host.queries;
        if (host.mBehaviour.boundsFail || frame != &host.mMemory) {
            return -1;
        }
        std::fill_n(bounds, 4, -12345); // nobody may rely on them
        return 0;
    }
    static std::int32_t GetRowBytes(ksFrameHandle frame, std::int32_t* rowBytes)
    {
        ForeignHost& host = *sCurrent;
        ++host.queries;
        if (host.mBehaviour.rowBytesFail || frame != &host.mMemory) {
            return -1;
        }
        *rowBytes = static_cast<std::int32_t>(host.StepBytes());
        return 0;
    }

    static inline ForeignHost* sCurrent = nullptr;

    Behaviour mBehaviour;
    void* mFrame = nullptr;
    std::size_t mLength = 0;
    std::uint32_t mHeight = 0;
    std::vector<std::byte> mMemory;
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
