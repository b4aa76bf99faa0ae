#include "ClipDescription.h"

#include <ImporterTessel/host/HostServices.h>
#include <ImporterTessel/settings/DataFile.h>
#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/importabi/Suites.h>
#include <kestrel/ksm/ColorManagement.h>
#include <kestrel/qelcore/files/FileUtils.h>

namespace ImporterTessel {

namespace {

/// Fixed answers of the file-info record; only the host knows what they select.
constexpr std::uint16_t kDepth = 32;
constexpr std::uint32_t kAudioValue182 = 6;

/// A rate as the host has it; 0 and 0 where the host knows no such pair.
struct TimeScale {
    std::int32_t unitsPerSecond = 0;
    std::int32_t unitsPerFrame = 0;
};

/// `a` × `b` modulo 2^32.
std::int32_t WrappingMultiply(std::int32_t a, std::int32_t b) noexcept
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

void FillFileInfo(const TesselInfo& info, TimeScale timeScale, ksFileInfoRec& record) noexcept
{
    record.frameWidth = info.mFrameWidth;
    record.frameHeight = info.mFrameHeight;
    record.depth = kDepth;
    record.fieldType = static_cast<std::uint8_t>(info.mFieldType);
    record.flag22 = 1;
    record.parNumerator = info.mFramePAR.GetNumerator();
    record.parDenominator = info.mFramePAR.GetDenominator();
    record.flag54 = 1;
    record.supportsColorManagement = KSM::IsAbleToSupportColorManagement() ? 1 : 0;
    record.videoTimeScale = timeScale.unitsPerSecond;
    record.videoSampleSize = timeScale.unitsPerFrame;
    record.videoDuration =
        WrappingMultiply(info.mVideoDuration.ToFrame32(info.mVideoFrameRate), timeScale.unitsPerFrame);
    record.audioChannelCount = info.mNumChannels;
    record.audioSampleRate = info.mSampleRate;
    record.audioValue182 = kAudioValue182;
}

} // namespace

std::u16string_view PathFrom(const ksUTF16* path) noexcept
{
    return path == nullptr ? std::u16string_view{} : std::u16string_view{path};
}

std::int32_t OpenFile(const ksOpenRec& open, TesselInfo& info)
{
    return ReadTesselFile(PathFrom(open.path), info) < 0 ? ksResultFileUnreadable : ksResultServed;
}

std::int32_t DescribeClip(const ksStdParms* stdParms, const ksFileAccessRec& file, ksFileInfoRec& record,
                          TesselInfo& info)
{
    record.hasVideo = 1;
    record.hasAudio = 1;
    // Intended: a file that exists is not read here; its settings came with selector 39.
    if (!qelcore::utility::FileUtils::FileOrDirExists(PathFrom(file.path))) {
        if (record.settingsText == nullptr) {
            return ksResultFileUnreadable;
        }
        info = TesselFromUTF8String(record.settingsText);
    }
    // Intended: version 2 here and version 1 in the settings exchange, which converts the other way.
    const auto* const suite = AcquireSuite<ksLegacySuite2>(stdParms, kLegacySuiteName, kLegacySuiteVersion2);
    if (suite == nullptr || suite->ticksToTimeScale == nullptr) {
        return ksResultFailed;
    }
    TimeScale timeScale;
    // A rate that the host cannot convert leaves both at 0; the clip is described with that.
    static_cast<void>(suite->ticksToTimeScale(info.mVideoFrameRate.ticksPerFrame, &timeScale.unitsPerSecond,
                                              &timeScale.unitsPerFrame));
    FillFileInfo(info, timeScale, record);
    return ksResultServed;
}

} // namespace ImporterTessel
