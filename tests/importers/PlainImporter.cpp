/// A complete importer that has nothing to do with Tessel: its documents are no JSON, their extension is
/// "plain", it has no settings and no dialog. The host and the program must serve it like any other.
///
/// A document is one line, "WIDTH HEIGHT FRAMES": that many frames at 25 a second of one gray in UYVY, and
/// one channel of silence. The macros below make it wrong in one place.

#include "ImporterResources.h"

#include <kestrel/importabi/Records.h>
#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/importabi/Selectors.h>
#include <kestrel/importabi/Suites.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <thread>

#ifndef WRONG_WIDTH_FACTOR
#define WRONG_WIDTH_FACTOR 1 // the described width is so many times that of the frames
#endif
#ifndef WRONG_HANDLE
#define WRONG_HANDLE 0 // 1: hands back a handle of its own instead of the host's frame
#endif
#ifndef SERVES_NO_CODES
#define SERVES_NO_CODES 0 // 1: serves the request for colour codes and cannot tell any
#endif
#ifndef STARTS_ALONE
#define STARTS_ALONE 0 // 1: fails to start once two threads have started it or shut it down at the same time
#endif

namespace {

constexpr std::uint32_t kPlainType = 0x504C4E20; // "PLN "
constexpr std::uint32_t kUYVY709 = 0x37767975;   // "uyv7"
constexpr std::int32_t kFramesPerSecond = 25;

struct PlainClip {
    int width = 0;
    int height = 0;
    int frames = 0;
};

/// Paths of the tests are ASCII.
std::string ASCII(const ksUTF16* path)
{
    std::string text;
    for (; path != nullptr && *path != 0; ++path) {
        text += static_cast<char>(*path);
    }
    return text;
}

std::int32_t Open(ksOpenRec& record)
{
    auto clip = std::make_unique<PlainClip>();
    std::FILE* file = std::fopen(ASCII(record.path).c_str(), "r");
    if (file == nullptr) {
        return ksResultFileUnreadable;
    }
    const int fields = std::fscanf(file, "%d %d %d", &clip->width, &clip->height, &clip->frames);
    std::fclose(file);
    if (fields != 3) {
        return ksResultFileUnreadable;
    }
    record.instance = clip.release();
    return ksResultServed;
}

/// A start or a shut-down.
std::int32_t StartOrShutDown()
{
    static std::atomic<int> sRunning = 0;
    static std::atomic<bool> sHaveMet = false;
    if (++sRunning > 1) {
        sHaveMet = true;
    }
    if (STARTS_ALONE != 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1)); // time for another one to come
    }
    --sRunning;
    return sHaveMet && STARTS_ALONE != 0 ? ksResultFailed : ksResultServed;
}

std::int32_t DescribeType(const void* index, ksFileTypeRec& record)
{
    if (index != nullptr) {
        return ksResultNoMoreEntries;
    }
    record.fileTypeCode = kPlainType;
    std::strncpy(record.displayName, "Plain", sizeof record.displayName - 1);
    std::memcpy(record.extensions, "plain\0\0", 7);
    return ksResultServed;
}

std::int32_t Describe(ksFileInfoRec& record)
{
    if (record.instance == nullptr) {
        return ksResultFileUnreadable; // clips without a file have settings, which this importer does not know
    }
    const auto& clip = *static_cast<const PlainClip*>(record.instance);
    record.hasVideo = 1;
    record.hasAudio = 1;
    record.frameWidth = clip.width * WRONG_WIDTH_FACTOR;
    record.frameHeight = clip.height;
    record.parNumerator = 1;
    record.parDenominator = 1;
    record.videoTimeScale = kFramesPerSecond;
    record.videoSampleSize = 1;
    record.videoDuration = clip.frames;
    record.audioChannelCount = 1;
    record.audioSampleRate = 48000.0F;
    return ksResultServed;
}

std::int32_t Paint(const ksStdParms& parameters, const ksFrameRec& record)
{
    const auto& clip = *static_cast<const PlainClip*>(record.instance);
    if (WRONG_HANDLE != 0) {
        *record.frame = record.instance;
        return ksResultServed;
    }
    const ksServiceTables* services = parameters.services;
    const ksUtilityFunctions* utility = services->utility;
    ksSuiteAccess* access = utility->getSuiteAccess();
    const void* creatorTable = nullptr;
    const void* frameTable = nullptr;
    if (access->acquireSuite(kFrameCreatorSuiteName, kFrameCreatorSuiteVersion, &creatorTable) < 0 ||
        access->acquireSuite(kFrameSuiteName, kFrameSuiteVersion, &frameTable) < 0) {
        return ksResultFailed;
    }
    const auto& creator = *static_cast<const ksFrameCreatorSuite4*>(creatorTable);
    const auto& frames = *static_cast<const ksFrameSuite1*>(frameTable);
    unsigned char extra[16];
    std::memcpy(extra, record.extra16, sizeof extra);
    ksFrameHandle frame = nullptr;
    void* pixels = nullptr;
    std::int32_t rowBytes = 0;
    if (creator.createFrame(&frame, ksFrameAccessReadWrite, kUYVY709, clip.width, clip.height, false, 0, 1, 1,
                            extra) < 0 ||
        frames.getPixels(frame, ksFrameAccessReadWrite, &pixels) < 0 ||
        frames.getRowBytes(frame, &rowBytes) < 0) {
        return ksResultFailed;
    }
    for (int row = 0; row < clip.height; ++row) {
        auto* bytes = static_cast<unsigned char*>(pixels) + static_cast<std::ptrdiff_t>(rowBytes) * row;
        for (int pair = 0; pair < (clip.width + 1) / 2; ++pair) {
            const unsigned char gray[4] = {128, 180, 128, 180}; // Cb Y Cr Y
            std::memcpy(bytes + std::ptrdiff_t{pair} * 4, gray, sizeof gray);
        }
    }
    *record.frame = frame;
    return ksResultServed;
}

std::int32_t MakeSilence(const ksAudioRec& record)
{
    float** const channels = record.channels;
    std::memset(channels[0], 0, record.sampleCount * sizeof(float));
    return ksResultServed;
}

} // namespace

EXPORTED std::int32_t xImportEntry(std::int32_t selector, const ksStdParms* parameters, void* param1,
                                   void* param2)
{
    switch (selector) {
    case ksSelectorStartUp:
    case ksSelectorShutDown:
        return StartOrShutDown();
    case ksSelectorFileType:
        return DescribeType(param1, *static_cast<ksFileTypeRec*>(param2));
    case ksSelectorOpenFile:
        return Open(*static_cast<ksOpenRec*>(param2));
    case ksSelectorClipDescription:
        return Describe(*static_cast<ksFileInfoRec*>(param2));
    case ksSelectorFrame:
        return Paint(*parameters, *static_cast<const ksFrameRec*>(param2));
    case ksSelectorAudio:
        return MakeSilence(*static_cast<const ksAudioRec*>(param2));
    case ksSelectorColorInformation:
        return SERVES_NO_CODES != 0 ? ksResultServed : ksResultUnsupported;
    case ksSelectorDeleteInstance:
        delete static_cast<PlainClip*>(param2);
        return ksResultServed;
    default:
        return ksResultUnsupported;
    }
}
