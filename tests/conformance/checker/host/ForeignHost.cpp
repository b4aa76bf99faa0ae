#include "ForeignHost.h"

#include "AllocationFailures.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <numeric>

namespace conformance {

ForeignFrame::ForeignFrame(std::size_t rowBytesUsed, std::size_t padding, int rowCount, bool upwards,
                           std::uint8_t filling)
    : usedBytes(rowBytesUsed), rows(rowCount)
{
    const std::size_t stride = rowBytesUsed + padding;
    memory.assign(2 * kGuardBytes + stride * static_cast<std::size_t>(rows), kGuard);
    std::uint8_t* base = memory.data() + kGuardBytes;
    for (int row = 0; row < rows; ++row) {
        std::memset(base + stride * static_cast<std::size_t>(row), filling, rowBytesUsed);
    }
    step = upwards ? -static_cast<std::ptrdiff_t>(stride) : static_cast<std::ptrdiff_t>(stride);
    first = upwards ? base + stride * static_cast<std::size_t>(rows - 1) : base;
}

const std::uint8_t* ForeignFrame::Row(int row) const
{
    return first + row * step;
}

bool ForeignFrame::GuardsIntact() const
{
    // Rows in the order of their addresses: what lies between two of them is padding.
    const auto isGuard = [](std::uint8_t byte) { return byte == kGuard; };
    const std::uint8_t* from = memory.data();
    for (int row = 0; row < rows; ++row) {
        const std::uint8_t* pixels = Row(step < 0 ? rows - 1 - row : row);
        if (!std::all_of(from, pixels, isGuard)) {
            return false;
        }
        from = pixels + usedBytes;
    }
    return std::all_of(from, memory.data() + memory.size(), isGuard);
}

ForeignBlock::ForeignBlock(std::uint32_t bytes)
    : size(bytes), memory(std::make_unique<std::uint8_t[]>(bytes + kGuardBytes))
{
    std::memset(memory.get(), kGuard, bytes + kGuardBytes);
}

bool ForeignBlock::IsGuardIntact() const
{
    const std::uint8_t* behind = memory.get() + size;
    return std::all_of(behind, behind + kGuardBytes, [](std::uint8_t byte) { return byte == kGuard; });
}

ForeignHostState& Foreign()
{
    static ForeignHostState state;
    return state;
}

namespace {

/// While one lives, its thread alone is in the host, and allocations count as the host's own.
class Serving {
public:
    Serving() : mLock(Mutex()) {}

private:
    static std::mutex& Mutex()
    {
        static std::mutex mutex;
        return mutex;
    }

    std::lock_guard<std::mutex> mLock;
    AllocationFailures::Exempt mExempt;
};

constexpr std::int64_t kTicksPerSecond = 254'016'000'000;

/// Bytes of one row, for the formats that the checks use; 16 bytes a pixel is enough for all others.
std::size_t RowBytesFor(std::uint32_t pixelFormat, std::int32_t width)
{
    constexpr std::uint32_t kBGRA8 = 0x61726762; // "bgra" read little-endian
    constexpr std::uint32_t kVUYA8_709 = 0x41595556;
    const bool fourBytes = pixelFormat == kBGRA8 || pixelFormat == kVUYA8_709;
    return static_cast<std::size_t>(width) * (fourBytes ? 4 : 16);
}

std::int32_t CreateFrame(ksFrameHandle* frame, std::int32_t access, std::uint32_t pixelFormat,
                         std::int32_t width, std::int32_t height, bool reserved5, std::int32_t reserved6,
                         std::uint32_t parNumerator, std::uint32_t parDenominator, void* extra16)
{
    ForeignHostState& host = Foreign();
    if (host.beforeCreation != nullptr) {
        host.beforeCreation();
    }
    const Serving serving;
    host.creations.push_back(
        {access, pixelFormat, width, height, reserved5, reserved6, parNumerator, parDenominator, extra16});
    if (host.createNothing || width < 1 || height < 1 || std::int64_t{width} * height > host.mostPixels) {
        *frame = nullptr;
        return -1;
    }
    host.frames.push_back(std::make_unique<ForeignFrame>(RowBytesFor(pixelFormat, width), host.rowPadding,
                                                         height, host.upwards, host.filling));
    *frame = host.frames.back().get();
    return host.createStatus;
}

std::int32_t GetPixels(ksFrameHandle frame, std::int32_t access, void** pixels)
{
    if (Foreign().pixelsStatus < 0 || access != ksFrameAccessReadWrite) {
        return Foreign().pixelsStatus < 0 ? Foreign().pixelsStatus : -1;
    }
    *pixels = static_cast<ForeignFrame*>(frame)->first;
    return 0;
}

std::int32_t GetBounds(ksFrameHandle, std::int32_t bounds[4])
{
    if (Foreign().boundsStatus >= 0) {
        std::fill_n(bounds, 4, 0);
    }
    return Foreign().boundsStatus;
}

std::int32_t GetRowBytes(ksFrameHandle frame, std::int32_t* rowBytes)
{
    if (Foreign().rowBytesStatus >= 0) {
        *rowBytes = static_cast<std::int32_t>(static_cast<ForeignFrame*>(frame)->step);
    }
    return Foreign().rowBytesStatus;
}

std::int32_t TicksToTimeScale(std::int64_t ticks, std::int32_t* timeScale, std::int32_t* sampleSize)
{
    const Serving serving;
    ForeignHostState& host = Foreign();
    host.legacyTicksAsked.push_back(ticks);
    if (host.legacyStatus >= 0) {
        // A rate of 0 or less has no pair: it gets a time scale of 0. A pair that needs more than 32 bits is
        // cut off; no check looks at it.
        const std::int64_t common = std::gcd(kTicksPerSecond, std::max<std::int64_t>(ticks, 1));
        const bool isOwn = host.legacyTimeScale == -1;
        const std::int64_t ownScale = ticks > 0 ? kTicksPerSecond / common : 0;
        *timeScale = isOwn ? static_cast<std::int32_t>(ownScale) : host.legacyTimeScale;
        *sampleSize = isOwn ? static_cast<std::int32_t>(ticks / common) : host.legacySampleSize;
    }
    return host.legacyStatus;
}

std::int32_t TimeScaleToTicks(std::int32_t timeScale, std::int32_t sampleSize, std::int64_t* ticks)
{
    constexpr std::int32_t kLargestSize = 36'000'000; // times the ticks of a second stays below 2^63
    const Serving serving;
    const bool isRate = timeScale > 0 && sampleSize > 0 && sampleSize <= kLargestSize;
    const std::int64_t own = isRate ? kTicksPerSecond * sampleSize / timeScale : 0;
    *ticks = Foreign().legacyTicks == -1 ? own : Foreign().legacyTicks;
    return 0;
}

std::int32_t AcquireSuite(const char* name, std::int32_t version, const void** suite)
{
    static const ksLegacySuite1 kLegacy1{TimeScaleToTicks};
    static const ksLegacySuite2 kLegacy2{nullptr, TicksToTimeScale};
    static const ksFrameCreatorSuite4 kCreator{{}, CreateFrame};
    static const ksFrameSuite1 kFrames{nullptr, GetPixels, GetBounds, GetRowBytes};
    static const ksUnknownFunction kNothing[8] = {};

    const Serving serving;
    ForeignHostState& host = Foreign();
    const std::string asked = name;
    host.acquired.push_back(asked + "/" + std::to_string(version));
    const auto& refused = host.refusedSuites;
    if (std::find(refused.begin(), refused.end(), asked) != refused.end()) {
        return -1;
    }
    if (asked == kLegacySuiteName && version == 1) {
        *suite = &kLegacy1;
    } else if (asked == kLegacySuiteName && version == 2) {
        *suite = &kLegacy2;
    } else if (asked == kFrameCreatorSuiteName && version == 4) {
        *suite = &kCreator;
    } else if (asked == kFrameSuiteName && version == 1) {
        *suite = &kFrames;
    } else if (asked == kPixelFormatSuiteName && version == 1) {
        *suite = &kNothing;
    } else {
        return -1;
    }
    return 0;
}

std::int32_t RefuseSuite(const char*, std::int32_t, const void**)
{
    return -1;
}

void* NewBlock(std::uint32_t bytes)
{
    const Serving serving;
    return Foreign().hasMemory ? Foreign().blocks.emplace_back(bytes).Data() : nullptr;
}

ksSuiteAccess* GetSuiteAccess()
{
    static ksSuiteAccess access{AcquireSuite};
    return &access;
}

ksSuiteAccess* GetRefusingAccess()
{
    static ksSuiteAccess access{RefuseSuite};
    return &access;
}

/// The three levels of tables behind one standard-parameter block.
struct Tables {
    explicit Tables(ksSuiteAccess* (*access)())
    {
        memory.newBlock = NewBlock;
        utility.getSuiteAccess = access;
        std::memset(&services, 0xCC, sizeof services);
        services.memory = &memory;
        services.utility = &utility;
        std::memset(&parameters, 0xCC, sizeof parameters);
        parameters.services = &services;
    }

    ksMemoryFunctions memory{};
    ksUtilityFunctions utility{};
    ksServiceTables services;
    ksStdParms parameters;
};

} // namespace

ForeignFrame* FindFrame(const void* handle)
{
    const Serving serving;
    for (const auto& frame : Foreign().frames) {
        if (frame.get() == handle) {
            return frame.get();
        }
    }
    return nullptr;
}

void FreeFrame(const ForeignFrame* frame)
{
    const Serving serving;
    auto& frames = Foreign().frames;
    frames.erase(
        std::remove_if(frames.begin(), frames.end(), [frame](const auto& each) { return each.get() == frame; }),
        frames.end());
}

const ksStdParms* ForeignStdParms()
{
    static const Tables tables(GetSuiteAccess);
    return &tables.parameters;
}

const ksStdParms* RefusingStdParms()
{
    static const Tables tables(GetRefusingAccess);
    return &tables.parameters;
}

std::u16string Wide(const std::filesystem::path& path)
{
    return path.u16string();
}

} // namespace conformance
