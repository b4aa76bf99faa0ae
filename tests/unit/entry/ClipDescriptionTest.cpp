#include "RecordBytes.h"

#include <ImporterTessel/entry/ClipDescription.h>
#include <ImporterTessel/settings/DataFile.h>

#include <gtest/gtest.h>
#include <support/ForeignHost.h>
#include <support/TemporaryFolder.h>

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

using ImporterTessel::TesselInfo;

namespace {

/// A record whose every reported field is unlike the default.
TesselInfo OtherInfo()
{
    TesselInfo info;
    info.mFrameWidth = 1920;
    info.mFrameHeight = -1080;
    info.mFramePAR = {40, 33};
    info.mFieldType = 0x102;
    info.mVideoDuration = qelmediatypes::TickTime(3 * 8'475'667'200);
    info.mVideoFrameRate = {8'475'667'200};
    info.mSampleRate = 44100.5F;
    info.mNumChannels = 6;
    return info;
}

/// What a description of `info` writes, with the time scale 30000 / 1001 of the foreign host.
void PutDescription(std::vector<std::uint8_t>& bytes, const TesselInfo& info, std::int32_t duration)
{
    bytes[0] = 1;
    bytes[1] = 1;
    Put(bytes, 2, info.mFrameWidth);
    Put(bytes, 6, info.mFrameHeight);
    Put(bytes, 12, std::uint16_t{32});
    bytes[18] = static_cast<std::uint8_t>(info.mFieldType);
    bytes[22] = 1;
    Put(bytes, 34, info.mFramePAR.GetNumerator());
    Put(bytes, 38, info.mFramePAR.GetDenominator());
    Put(bytes, 54, std::uint32_t{1});
    Put(bytes, 98, std::uint32_t{1}); // this host manages colour
    Put(bytes, 162, std::int32_t{30000});
    Put(bytes, 166, std::int32_t{1001});
    Put(bytes, 170, duration);
    Put(bytes, 174, info.mNumChannels);
    Put(bytes, 178, info.mSampleRate);
    Put(bytes, 182, std::uint32_t{6});
}

class Description : public testing::Test {
protected:
    std::int32_t Describe() { return ImporterTessel::DescribeClip(&mHost.stdParms, mFile, mRecord, mInfo); }

    void NameExistingFile()
    {
        mPath = mFolder.Write("clip.tessel", "not looked at").u16string();
        mFile.path = mPath.c_str();
    }

    testsupport::ForeignHost mHost;
    test::TemporaryFolder mFolder;
    std::u16string mPath;
    ksFileAccessRec mFile{};
    ksFileInfoRec mRecord = FilledRecord<ksFileInfoRec>();
    TesselInfo mInfo = OtherInfo();
};

TEST_F(Description, OfAnExistingFileReportsTheInstancesSettingsInTheseFieldsAndNoOthers)
{
    NameExistingFile();
    mRecord.settingsText = "{";
    std::vector<std::uint8_t> expected = BytesOf(mRecord);
    PutDescription(expected, OtherInfo(), 3 * 1001);
    EXPECT_EQ(Describe(), 0);
    EXPECT_EQ(BytesOf(mRecord), expected);
    EXPECT_TRUE(mInfo == OtherInfo());
    EXPECT_EQ(mHost.convertedTicks, 8'475'667'200);
    const std::vector<std::pair<std::string_view, std::int32_t>> asked{{"Kestrel Legacy Suite", 2}};
    EXPECT_EQ(mHost.asked, asked);
}

TEST_F(Description, OfAnExistingFolderDoesNotLookAtTheTextEither)
{
    mPath = mFolder.Path().u16string();
    mFile.path = mPath.c_str();
    mRecord.settingsText = nullptr;
    EXPECT_EQ(Describe(), 0);
    EXPECT_TRUE(mInfo == OtherInfo());
}

TEST_F(Description, WithoutAFileReadsTheText)
{
    TesselInfo other;
    other.mFrameWidth = 640;
    const std::string text = ImporterTessel::TesselToUTF8String(other);
    mRecord.settingsText = text.c_str();
    std::vector<std::uint8_t> expected = BytesOf(mRecord);
    PutDescription(expected, other, 1800 * 1001); // 60 s at 30 frames per second
    EXPECT_EQ(Describe(), 0);
    EXPECT_EQ(BytesOf(mRecord), expected);
    EXPECT_TRUE(mInfo == other);
}

TEST_F(Description, WithoutAFileTakesAMalformedTextForTheDefaultClip)
{
    mRecord.settingsText = "not JSON";
    EXPECT_EQ(Describe(), 0);
    EXPECT_TRUE(mInfo == TesselInfo());
}

TEST_F(Description, WithNeitherFileNorTextIs2WithOnlyTheFirstTwoBytesWritten)
{
    mPath = (mFolder.Path() / "absent.tessel").u16string();
    for (const char16_t* const path : {static_cast<const char16_t*>(nullptr), mPath.c_str(), u""}) {
        mRecord = FilledRecord<ksFileInfoRec>();
        mFile.path = path;
        mRecord.settingsText = nullptr;
        std::vector<std::uint8_t> expected = BytesOf(mRecord);
        expected[0] = 1;
        expected[1] = 1;
        EXPECT_EQ(Describe(), 2);
        EXPECT_EQ(BytesOf(mRecord), expected);
        EXPECT_TRUE(mInfo == OtherInfo());
    }
}

TEST_F(Description, WithoutTheLegacySuiteIs5WithOnlyTheFirstTwoBytesWritten)
{
    NameExistingFile();
    const auto expectFailure = [this] {
        mRecord = FilledRecord<ksFileInfoRec>();
        std::vector<std::uint8_t> expected = BytesOf(mRecord);
        expected[0] = 1;
        expected[1] = 1;
        EXPECT_EQ(Describe(), 5);
        EXPECT_EQ(BytesOf(mRecord), expected);
    };
    mHost.legacy2.ticksToTimeScale = nullptr;
    expectFailure();
    mHost.RemoveSuite(kLegacySuiteName);
    expectFailure();
}

TEST_F(Description, ReportsARateThatTheHostCannotConvertAsZeros)
{
    NameExistingFile();
    mHost.behaviour.legacyStatus = -1;
    EXPECT_EQ(Describe(), 0);
    EXPECT_EQ(mRecord.videoTimeScale, 0);
    EXPECT_EQ(mRecord.videoSampleSize, 0);
    EXPECT_EQ(mRecord.videoDuration, 0);
}

TEST_F(Description, ReportsTheLowByteOfTheFieldType)
{
    NameExistingFile();
    for (const auto& [fieldType, low] : {std::pair(256, 0), {257, 1}, {0x7FFFFF02, 2}, {-1, 255}}) {
        mInfo.mFieldType = fieldType;
        EXPECT_EQ(Describe(), 0);
        EXPECT_EQ(mRecord.fieldType, low) << fieldType;
    }
}

TEST_F(Description, WrapsTheDurationTo32Bits)
{
    NameExistingFile();
    mInfo.mVideoDuration = qelmediatypes::TickTime(std::int64_t{3'000'000} * 8'475'667'200);
    EXPECT_EQ(Describe(), 0);
    // 3000000 × 1001 = 3003000000, which is 2^32 - 1291967296.
    EXPECT_EQ(mRecord.videoDuration, -1'291'967'296);
}

TEST_F(Description, OfEveryRateEnds)
{
    NameExistingFile();
    constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();
    for (const std::int64_t rate : {kLowest, std::int64_t{-1}, std::int64_t{0}, std::int64_t{1}, kHighest}) {
        for (const std::int64_t duration : {kLowest, std::int64_t{-1}, std::int64_t{0}, kHighest}) {
            mInfo.mVideoFrameRate = {rate};
            mInfo.mVideoDuration = qelmediatypes::TickTime(duration);
            EXPECT_EQ(Describe(), 0) << rate << " " << duration;
        }
    }
}

TEST(Opening, ReadsTheFileIntoTheSettings)
{
    const test::TemporaryFolder folder;
    const std::u16string path =
        folder.Write("clip.tessel", ImporterTessel::TesselToUTF8String(OtherInfo())).u16string();
    ksOpenRec open{};
    open.path = path.c_str();
    TesselInfo info;
    EXPECT_EQ(ImporterTessel::OpenFile(open, info), 0);
    EXPECT_TRUE(info == OtherInfo());
}

TEST(Opening, MalformedFileIsTheDefaultClip)
{
    const test::TemporaryFolder folder;
    const std::u16string path = folder.Write("clip.tessel", "{}").u16string();
    ksOpenRec open{};
    open.path = path.c_str();
    TesselInfo info = OtherInfo();
    EXPECT_EQ(ImporterTessel::OpenFile(open, info), 0);
    EXPECT_TRUE(info == TesselInfo());
}

TEST(Opening, UnreadableFileIs2AndLeavesTheSettings)
{
    const test::TemporaryFolder folder;
    const std::u16string absent = (folder.Path() / "absent").u16string();
    const std::u16string directory = folder.Path().u16string();
    for (const char16_t* const path :
         {absent.c_str(), directory.c_str(), u"", static_cast<const char16_t*>(nullptr)}) {
        ksOpenRec open{};
        open.path = path;
        TesselInfo info = OtherInfo();
        EXPECT_EQ(ImporterTessel::OpenFile(open, info), 2);
        EXPECT_TRUE(info == OtherInfo());
    }
}

} // namespace
