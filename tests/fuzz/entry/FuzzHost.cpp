#include "FuzzHost.h"

#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/importabi/Suites.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace {

/// Rows are padded by a few bytes, which nobody may write, but nothing here looks: what matters is that
/// nothing is written before or behind the buffer.
struct Frame {
    std::vector<std::uint8_t> bytes;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t rowBytes = 0;
};

std::vector<std::unique_ptr<Frame>>& Frames()
{
    static std::vector<std::unique_ptr<Frame>> frames;
    return frames;
}

std::vector<std::unique_ptr<std::uint8_t[]>>& Blocks()
{
    static std::vector<std::unique_ptr<std::uint8_t[]>> blocks;
    return blocks;
}

std::int32_t CreateFrame(ksFrameHandle* frame, std::int32_t /*access*/, std::uint32_t pixelFormat,
                         std::int32_t width, std::int32_t height, bool /*reserved5*/,
                         std::int32_t /*reserved6*/, std::uint32_t /*parNumerator*/,
                         std::uint32_t /*parDenominator*/, void* /*extra16*/)
{
    *frame = nullptr;
    // Pixels of at most 16 bytes in whole groups of 6; frames that take long are another fuzzer's affair.
    constexpr std::int32_t kLargestSide = 2048;
    const bool isKnown = BR::SDKToBEPixelFormat(pixelFormat) != BR::PixelFormat::Unknown;
    if (!isKnown || width < 1 || height < 1 || width > kLargestSide || height > kLargestSide) {
        return -1;
    }
    auto made = std::make_unique<Frame>();
    made->width = width;
    made->height = height;
    made->rowBytes = (width + 5) / 6 * 6 * 16;
    made->bytes.resize(static_cast<std::size_t>(made->rowBytes) * static_cast<std::size_t>(height));
    *frame = made.get();
    Frames().push_back(std::move(made));
    return 0;
}

std::int32_t GetPixels(ksFrameHandle frame, std::int32_t /*access*/, void** pixels)
{
    if (frame == nullptr) {
        return -1;
    }
    *pixels = static_cast<Frame*>(frame)->bytes.data();
    return 0;
}

std::int32_t GetBounds(ksFrameHandle frame, std::int32_t bounds[4])
{
    if (frame == nullptr) {
        return -1;
    }
    bounds[0] = 0;
    bounds[1] = 0;
    bounds[2] = static_cast<Frame*>(frame)->width;
    bounds[3] = static_cast<Frame*>(frame)->height;
    return 0;
}

std::int32_t GetRowBytes(ksFrameHandle frame, std::int32_t* rowBytes)
{
    if (frame == nullptr) {
        return -1;
    }
    *rowBytes = static_cast<Frame*>(frame)->rowBytes;
    return 0;
}

std::int32_t TimeScaleToTicks(std::int32_t timeScale, std::int32_t sampleSize, std::int64_t* ticksPerFrame)
{
    *ticksPerFrame = timeScale == 0 ? 0 : 254'016'000'000 / timeScale * sampleSize;
    return 0;
}

std::int32_t TicksToTimeScale(std::int64_t ticksPerFrame, std::int32_t* timeScale, std::int32_t* sampleSize)
{
    *timeScale = static_cast<std::int32_t>(ticksPerFrame);
    *sampleSize = static_cast<std::int32_t>(ticksPerFrame >> 32);
    return 0;
}

struct Tables {
    ksLegacySuite1 legacy1{&TimeScaleToTicks};
    ksLegacySuite2 legacy2{nullptr, &TicksToTimeScale};
    ksFrameCreatorSuite4 creator{{}, &CreateFrame};
    ksFrameSuite1 frame{nullptr, &GetPixels, &GetBounds, &GetRowBytes};
    int pixelFormat = 0; // nobody looks into this suite
    ksMemoryFunctions memory{};
    ksSuiteAccess access{};
    ksUtilityFunctions utility{};
    ksServiceTables services{};
    ksStdParms parms{};

    Tables();
};

Tables& TheTables()
{
    static Tables tables;
    return tables;
}

std::int32_t AcquireSuite(const char* name, std::int32_t version, const void** suite)
{
    const Tables& tables = TheTables();
    const struct {
        std::string_view name;
        std::int32_t version;
        const void* suite;
    } suites[] = {
        {kLegacySuiteName, kLegacySuiteVersion1, &tables.legacy1},
        {kLegacySuiteName, kLegacySuiteVersion2, &tables.legacy2},
        {kFrameCreatorSuiteName, kFrameCreatorSuiteVersion, &tables.creator},
        {kFrameSuiteName, kFrameSuiteVersion, &tables.frame},
        {kPixelFormatSuiteName, kPixelFormatSuiteVersion, &tables.pixelFormat},
    };
    for (const auto& entry : suites) {
        if (entry.name == name && entry.version == version) {
            *suite = entry.suite;
            return 0;
        }
    }
    return -1;
}

Tables::Tables()
{
    memory.newBlock = [](std::uint32_t bytes) -> void* {
        return Blocks().emplace_back(std::make_unique<std::uint8_t[]>(bytes)).get();
    };
    access.acquireSuite = &AcquireSuite;
    utility.getSuiteAccess = [] { return &TheTables().access; };
    services.memory = &memory;
    services.utility = &utility;
    parms.services = &services;
}

} // namespace

const ksStdParms& FuzzHostParms()
{
    return TheTables().parms;
}

void FreeFramesAndBlocks()
{
    Frames().clear();
    Blocks().clear();
}
