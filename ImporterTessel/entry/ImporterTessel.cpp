#include "ImporterTessel.h"

#include "ClipDescription.h"
#include "SettingsExchange.h"
#include "StartUp.h"

#include <ImporterTessel/audio/AudioSynthesis.h>
#include <ImporterTessel/video/FrameSynthesis.h>
#include <kestrel/brindle/ColorSpaces.h>
#include <kestrel/importabi/ResultCodes.h>

namespace ImporterTessel {

namespace {

/// The kind of colour information that `ksColorRec` carries.
constexpr std::uint32_t kColorInformationSEICodes = 3;

} // namespace

std::int32_t ImporterTessel::StartUp(ksStartUpRec* record)
{
    return ::ImporterTessel::StartUp(record);
}

std::int32_t ImporterTessel::DescribeFileType(ksFileTypeRec& record) noexcept
{
    return ::ImporterTessel::DescribeFileType(record);
}

std::int32_t ImporterTessel::ExchangeSettings(const ksStdParms* stdParms, ksFileAccessRec& file,
                                              ksSettingsExchangeRec& exchange)
{
    return ::ImporterTessel::ExchangeSettings(stdParms, file, exchange);
}

std::int32_t ImporterTessel::OpenFile(const ksOpenRec& open)
{
    return ::ImporterTessel::OpenFile(open, mSettings);
}

std::int32_t ImporterTessel::DescribeClip(const ksFileAccessRec& file, ksFileInfoRec& record)
{
    return ::ImporterTessel::DescribeClip(StdParms(), file, record, mSettings);
}

std::int32_t ImporterTessel::GetFrameSize(ksFrameSizeRec& record) const noexcept
{
    record.width = mSettings.mFrameWidth;
    record.height = mSettings.mFrameHeight;
    return ksResultServed;
}

std::int32_t ImporterTessel::SynthesizeFrame(ksFrameRec& record, const ksStdParms* stdParms) const
{
    return ::ImporterTessel::SynthesizeFrame(mSettings, stdParms, record);
}

std::int32_t ImporterTessel::SynthesizeAudio(const ksAudioRec& record) const noexcept
{
    if (record.channels == nullptr && record.sampleCount != 0 && WritesAnyChannel(mSettings)) {
        return ksResultFailed;
    }
    ::ImporterTessel::SynthesizeAudio(mSettings, record.position, record.sampleCount, record.channels);
    return ksResultServed;
}

std::int32_t ImporterTessel::GetColorInformation(ksColorRec& record) const noexcept
{
    // Without codes of its own a space is reported as unspecified, so whether it has some does not matter.
    static_cast<void>(
        BR::QELColorSpaceToSEIColorCodes(mSettings.mColorSpace, record.codes, /*fallBackToRec709=*/false));
    record.kind = kColorInformationSEICodes;
    return ksResultServed;
}

} // namespace ImporterTessel
