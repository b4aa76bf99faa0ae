#include "RecordBytes.h"

#include <ImporterTessel/entry/Entries.h>
#include <ImporterTessel/settings/DataFile.h>
#include <kestrel/importabi/Records.h>

#include <gtest/gtest.h>
#include <support/ForeignHost.h>
#include <support/TemporaryFolder.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

using ImporterTessel::TesselInfo;

namespace {

/// One clip opened from a file of the given settings, spoken to through the entry.
class OpenClip {
public:
    explicit OpenClip(const TesselInfo& info)
        : mPath(mFolder.Write("clip.tessel", ImporterTessel::TesselToUTF8String(info)).u16string())
    {
        ksOpenRec open{};
        open.path = mPath.c_str();
        EXPECT_EQ(xImportEntry(39, nullptr, nullptr, &open), 0);
        mInstance = open.instance;
    }
    ~OpenClip() { EXPECT_EQ(xImportEntry(9, nullptr, nullptr, mInstance), 0); }
    OpenClip(const OpenClip&) = delete;
    OpenClip& operator=(const OpenClip&) = delete;

    [[nodiscard]] ksInstance Instance() const { return mInstance; }

private:
    test::TemporaryFolder mFolder;
    std::u16string mPath;
    ksInstance mInstance = nullptr;
};

constexpr float kPoison = 77.0F;
constexpr std::uint32_t kSamples = 480;

/// Six planar buffers of poison, as a host hands them.
struct Buffers {
    std::array<std::vector<float>, 6> channels;
    std::array<float*, 6> pointers{};

    Buffers()
    {
        for (std::size_t index = 0; index < channels.size(); ++index) {
            channels[index].assign(kSamples, kPoison);
            pointers[index] = channels[index].data();
        }
    }

    [[nodiscard]] bool IsUntouched(std::size_t channel) const
    {
        return channels[channel] == std::vector<float>(kSamples, kPoison);
    }
};

std::int32_t Synthesize(const TesselInfo& info, Buffers& buffers, std::uint32_t count = kSamples)
{
    const OpenClip clip(info);
    ksAudioRec record{};
    record.sampleCount = count;
    record.channels = buffers.pointers.data();
    record.instance = clip.Instance();
    const std::vector<std::uint8_t> before = BytesOf(record);
    const std::int32_t result = xImportEntry(25, nullptr, nullptr, &record);
    EXPECT_EQ(BytesOf(record), before);
    return result;
}

std::size_t TouchedChannels(const Buffers& buffers)
{
    std::size_t count = 0;
    for (std::size_t channel = 0; channel < buffers.channels.size(); ++channel) {
        count += buffers.IsUntouched(channel) ? 0 : 1;
    }
    return count;
}

} // namespace

TEST(Audio, EveryToneFormatButIdentificationIsTheSteadyTone)
{
    for (const std::int32_t format : {0, 2, -1, 1000}) {
        TesselInfo info;
        info.mToneFormat = format;
        info.mNumChannels = 3;
        Buffers buffers;
        EXPECT_EQ(Synthesize(info, buffers), 0);
        EXPECT_EQ(TouchedChannels(buffers), 3U) << format;
        // 1000 Hz at 48000 samples per second: a quarter of a cycle is 12 samples.
        EXPECT_EQ(buffers.channels[0][0], 0.0F);
        EXPECT_NEAR(buffers.channels[0][12], 0.25F, 1e-6F);
        EXPECT_EQ(buffers.channels[0], buffers.channels[2]);
    }
}

TEST(Audio, EachIdentificationWritesItsChannels)
{
    const std::array<std::size_t, 4> channels{2, 2, 6, 6};
    for (std::int32_t format = 0; format < 4; ++format) {
        TesselInfo info;
        info.mToneFormat = 1;
        info.mIdentifierFormat = format;
        Buffers buffers;
        EXPECT_EQ(Synthesize(info, buffers), 0);
        EXPECT_EQ(TouchedChannels(buffers), channels[static_cast<std::size_t>(format)]) << format;
    }
}

TEST(Audio, StereoIdentificationsDifferInTheirFrequency)
{
    TesselInfo info;
    info.mToneFormat = 1;
    Buffers high;
    EXPECT_EQ(Synthesize(info, high), 0);
    info.mIdentifierFormat = 1;
    Buffers low;
    EXPECT_EQ(Synthesize(info, low), 0);
    EXPECT_NE(high.channels[1], low.channels[1]);
}

TEST(Audio, UnknownIdentificationsWriteNothingAndAreServed)
{
    for (const std::int32_t format : {-1, 4, 7}) {
        TesselInfo info;
        info.mToneFormat = 1;
        info.mIdentifierFormat = format;
        Buffers buffers;
        EXPECT_EQ(Synthesize(info, buffers), 0);
        EXPECT_EQ(TouchedChannels(buffers), 0U) << format;
    }
}

TEST(Audio, NoSamplesNeedNoBuffers)
{
    Buffers buffers;
    EXPECT_EQ(Synthesize(TesselInfo(), buffers, 0), 0);
    EXPECT_EQ(TouchedChannels(buffers), 0U);
    const OpenClip clip{TesselInfo()};
    ksAudioRec record{};
    record.instance = clip.Instance();
    EXPECT_EQ(xImportEntry(25, nullptr, nullptr, &record), 0);
    record.sampleCount = 1;
    EXPECT_EQ(xImportEntry(25, nullptr, nullptr, &record), 5);
}

TEST(Audio, ANullArrayOfBuffersFailsOnlyWhereABufferWouldBeWritten)
{
    struct Row {
        std::int32_t toneFormat;
        std::int32_t identifierFormat;
        std::int32_t channelCount;
        std::int32_t result;
    };
    constexpr std::int32_t kFewest = std::numeric_limits<std::int32_t>::min();
    for (const Row& row :
         {Row{0, 0, 2, 5}, Row{0, 0, 1, 5}, Row{0, 0, 0, 0}, Row{0, 0, -1, 0}, Row{0, 0, kFewest, 0},
          Row{7, 9, 0, 0}, Row{7, 9, 1, 5}, Row{1, 0, 0, 5}, Row{1, 1, 0, 5}, Row{1, 2, 0, 5}, Row{1, 3, 0, 5},
          Row{1, 4, 6, 0}, Row{1, -1, 6, 0}}) {
        TesselInfo info;
        info.mToneFormat = row.toneFormat;
        info.mIdentifierFormat = row.identifierFormat;
        info.mNumChannels = row.channelCount;
        const OpenClip clip(info);
        ksAudioRec record{};
        record.sampleCount = 1;
        record.instance = clip.Instance();
        EXPECT_EQ(xImportEntry(25, nullptr, nullptr, &record), row.result)
            << "tone format " << row.toneFormat << ", identifier format " << row.identifierFormat << ", "
            << row.channelCount << " channels";
    }
}

TEST(Audio, EverySampleRateIsServed)
{
    for (const float rate : {0.0F, -0.0F, 1e-30F, 1e12F, 3e38F, -48000.0F, INFINITY, -INFINITY}) {
        TesselInfo info;
        info.mSampleRate = rate;
        Buffers buffers;
        EXPECT_EQ(Synthesize(info, buffers), 0) << rate;
    }
}

TEST(Frame, WhatASuiteThrowsNeverReachesTheHost)
{
    const OpenClip clip{TesselInfo()};
    testsupport::ForeignHost host;
    auto record = FilledRecord<ksFrameRec>();
    record.instance = clip.Instance();
    host.access.acquireSuite = [](const char*, std::int32_t, const void**) -> std::int32_t {
        throw std::runtime_error("why");
    };
    EXPECT_EQ(xImportEntry(47, &host.stdParms, nullptr, &record), 5);
    host.access.acquireSuite = [](const char*, std::int32_t, const void**) -> std::int32_t {
        throw std::bad_alloc();
    };
    EXPECT_EQ(xImportEntry(47, &host.stdParms, nullptr, &record), 4);
    host.access.acquireSuite = [](const char*, std::int32_t, const void**) -> std::int32_t { throw 5; };
    EXPECT_EQ(xImportEntry(47, &host.stdParms, nullptr, &record), 5);
}

TEST(Frame, WithoutSuitesIsAFailureThatWritesNothing)
{
    const OpenClip clip{TesselInfo()};
    testsupport::ForeignHost host;
    host.suites.clear();
    auto record = FilledRecord<ksFrameRec>();
    record.instance = clip.Instance();
    const std::vector<std::uint8_t> before = BytesOf(record);
    EXPECT_EQ(xImportEntry(47, &host.stdParms, nullptr, &record), 5);
    EXPECT_EQ(xImportEntry(47, nullptr, nullptr, &record), 5);
    EXPECT_EQ(BytesOf(record), before);
}

TEST(FrameSize, WritesWidthAndHeightAndNothingElse)
{
    TesselInfo info;
    info.mFrameWidth = -7;
    info.mFrameHeight = 100000;
    const OpenClip clip(info);
    auto record = FilledRecord<ksFrameSizeRec>();
    record.instance = clip.Instance();
    const std::vector<std::uint8_t> untouched = BytesOf(record);
    EXPECT_EQ(xImportEntry(45, nullptr, &record, nullptr), 3) << "the index is 0xCCCCCCCC";
    EXPECT_EQ(BytesOf(record), untouched);

    record.index = 0;
    std::vector<std::uint8_t> expected = BytesOf(record);
    Put(expected, 24, std::int32_t{-7});
    Put(expected, 28, std::int32_t{100000});
    EXPECT_EQ(xImportEntry(45, nullptr, &record, nullptr), 0);
    EXPECT_EQ(BytesOf(record), expected);
}

TEST(ColorInformation, WritesTheKindAndTheCodesOfRec709)
{
    const OpenClip clip{TesselInfo()};
    auto record = FilledRecord<ksColorRec>();
    record.instance = clip.Instance();
    std::vector<std::uint8_t> expected = BytesOf(record);
    Put(expected, 8, std::uint32_t{3});
    // ITU-T H.273: primaries 1, transfer 1, matrix 1 are BT.709; limited range.
    Put(expected, 48, std::int32_t{1});
    Put(expected, 52, std::int32_t{1});
    Put(expected, 56, std::int32_t{1});
    Put(expected, 60, std::int32_t{0});
    EXPECT_EQ(xImportEntry(73, nullptr, nullptr, &record), 0);
    EXPECT_EQ(BytesOf(record), expected);
}

TEST(ColorInformation, SpaceWithoutCodesIsServedAndNotTakenForRec709)
{
    TesselInfo info;
    info.mColorSpace.baseColorProfile.data = {1, 2, 3};
    const OpenClip clip(info);
    ksColorRec record{};
    record.instance = clip.Instance();
    EXPECT_EQ(xImportEntry(73, nullptr, nullptr, &record), 0);
    EXPECT_EQ(record.kind, 3U);
    EXPECT_NE(record.codes.primaries, 1);
}

TEST(Instance, DescribedWithoutAFileIsThenTheClipOfTheText)
{
    TesselInfo info;
    info.mFrameWidth = 64;
    const std::string text = ImporterTessel::TesselToUTF8String(info);
    const ksFileAccessRec file{};
    ksFileInfoRec record{};
    record.settingsText = text.c_str();
    // Without the legacy suite the description fails, but the instance has its settings.
    EXPECT_EQ(xImportEntry(37, nullptr, const_cast<ksFileAccessRec*>(&file), &record), 5);
    ksFrameSizeRec size{};
    size.instance = record.instance;
    EXPECT_EQ(xImportEntry(45, nullptr, &size, nullptr), 0);
    EXPECT_EQ(size.width, 64);
    EXPECT_EQ(xImportEntry(9, nullptr, nullptr, record.instance), 0);
}

TEST(Instance, NewlyDescribedExistingFileIsNotRead)
{
    const test::TemporaryFolder folder;
    TesselInfo info;
    info.mFrameWidth = 64;
    const std::u16string path =
        folder.Write("clip.tessel", ImporterTessel::TesselToUTF8String(info)).u16string();
    ksFileAccessRec file{};
    file.path = path.c_str();
    ksFileInfoRec record{};
    EXPECT_EQ(xImportEntry(37, nullptr, &file, &record), 5);
    ksFrameSizeRec size{};
    size.instance = record.instance;
    EXPECT_EQ(xImportEntry(45, nullptr, &size, nullptr), 0);
    EXPECT_EQ(size.width, 720) << "the default clip's width";
    EXPECT_EQ(xImportEntry(9, nullptr, nullptr, record.instance), 0);
}
