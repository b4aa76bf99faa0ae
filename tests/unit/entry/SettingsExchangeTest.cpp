#include "RecordBytes.h"

#include <ImporterTessel/entry/SettingsExchange.h>
#include <ImporterTessel/settings/DataFile.h>

#include <gtest/gtest.h>
#include <support/ForeignHost.h>
#include <support/TemporaryFolder.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

using ImporterTessel::TesselInfo;
using ImporterTessel::TesselToUTF8String;

namespace {

/// The requests that show no dialog; those that do are tested with the dialog.
class SettingsExchange : public testing::Test {
protected:
    std::int32_t Exchange() { return ImporterTessel::ExchangeSettings(&mHost.stdParms, mFile, mRecord); }

    void NameFile(const std::string& text)
    {
        mPath = mFolder.Write("clip.tessel", text).u16string();
        mFile.path = mPath.c_str();
    }

    void NameAbsentFile()
    {
        mPath = (mFolder.Path() / "absent.tessel").u16string();
        mFile.path = mPath.c_str();
    }

    testsupport::ForeignHost mHost;
    test::TemporaryFolder mFolder;
    std::u16string mPath;
    std::vector<char> mBuffer = std::vector<char>(10240, '\x55');
    ksFileAccessRec mFile = FilledRecord<ksFileAccessRec>();
    ksSettingsExchangeRec mRecord = [this] {
        auto record = FilledRecord<ksSettingsExchangeRec>();
        record.text = mBuffer.data();
        record.newClip = 1;
        return record;
    }();
};

/// A record whose text is exactly `length` bytes long.
TesselInfo InfoWithTextOf(std::size_t length)
{
    TesselInfo info;
    info.mSwatchColorsFilePath.assign(length - TesselToUTF8String(info).size(), u'x');
    return info;
}

TEST_F(SettingsExchange, NullBufferAsksForTheSizeAndNothingElse)
{
    mRecord.text = nullptr;
    NameFile("{");
    const std::u16string folder = mFolder.Path().u16string();
    const std::u16string absent = folder + u"/absent";
    for (const char16_t* const path : {mPath.c_str(), folder.c_str(), absent.c_str(), u""}) {
        for (const std::uint8_t newClip : std::initializer_list<std::uint8_t>{0, 1, 255}) {
            mFile.path = path;
            mRecord.newClip = newClip;
            mRecord.bufferSize = 0xCCCCCCCC;
            std::vector<std::uint8_t> expected = BytesOf(mRecord);
            Put(expected, 8, std::uint32_t{10240});
            const std::vector<std::uint8_t> expectedFile = BytesOf(mFile);
            EXPECT_EQ(Exchange(), 0);
            EXPECT_EQ(BytesOf(mRecord), expected);
            EXPECT_EQ(BytesOf(mFile), expectedFile);
        }
    }
    EXPECT_TRUE(mHost.asked.empty());
}

TEST_F(SettingsExchange, ExistingFileForANewClipGivesItsSettingsAsText)
{
    TesselInfo info;
    info.mFrameWidth = 1920;
    NameFile(TesselToUTF8String(info));
    std::vector<std::uint8_t> expected = BytesOf(mRecord);
    Put(expected, 8, std::uint32_t{10240});
    const std::vector<std::uint8_t> expectedFile = BytesOf(mFile);
    for (const std::uint8_t newClip : std::initializer_list<std::uint8_t>{1, 2, 255}) {
        mRecord.newClip = newClip;
        expected[12] = newClip;
        EXPECT_EQ(Exchange(), 0);
        EXPECT_EQ(BytesOf(mRecord), expected);
        EXPECT_EQ(BytesOf(mFile), expectedFile);
        EXPECT_STREQ(mBuffer.data(), TesselToUTF8String(info).c_str());
    }
    EXPECT_TRUE(mHost.asked.empty()) << "the host's sequence values are for clips without a file";
}

TEST_F(SettingsExchange, MalformedFileForANewClipGivesTheDefaults)
{
    NameFile("{}");
    EXPECT_EQ(Exchange(), 0);
    EXPECT_STREQ(mBuffer.data(), TesselToUTF8String(TesselInfo()).c_str());
}

TEST_F(SettingsExchange, UnreadableFileIs2WithTheBufferUntouched)
{
    mPath = mFolder.Path().u16string(); // a directory exists, but does not open
    mFile.path = mPath.c_str();
    const std::vector<char> buffer = mBuffer;
    for (const std::uint8_t newClip : std::initializer_list<std::uint8_t>{0, 1}) {
        mRecord.newClip = newClip;
        const std::vector<std::uint8_t> expected = BytesOf(mRecord);
        EXPECT_EQ(Exchange(), 2);
        EXPECT_EQ(BytesOf(mRecord), expected);
        EXPECT_EQ(mBuffer, buffer);
    }
}

TEST_F(SettingsExchange, TextOf10238BytesIsTheLongestThatFits)
{
    NameFile(TesselToUTF8String(InfoWithTextOf(10238)));
    EXPECT_EQ(Exchange(), 0);
    EXPECT_EQ(std::string(mBuffer.data()).size(), 10238U);
    EXPECT_EQ(mBuffer[10239], '\x55') << "one byte behind the NUL";
    EXPECT_EQ(mRecord.bufferSize, 10240U);
}

TEST_F(SettingsExchange, TextOf10239BytesIsDroppedWithoutAWord)
{
    const std::vector<char> buffer = mBuffer;
    for (const std::size_t length : {10239U, 10240U, 100000U}) {
        NameFile(TesselToUTF8String(InfoWithTextOf(length)));
        const std::vector<std::uint8_t> expected = BytesOf(mRecord);
        EXPECT_EQ(Exchange(), 0) << length;
        EXPECT_EQ(BytesOf(mRecord), expected) << length;
        EXPECT_EQ(mBuffer, buffer) << length;
    }
}

TEST_F(SettingsExchange, NewClipInAHostWithoutTheLegacySuiteIs5)
{
    NameAbsentFile();
    const std::vector<char> buffer = mBuffer;
    mHost.legacy1.timeScaleToTicks = nullptr;
    EXPECT_EQ(Exchange(), 5);
    mHost.RemoveSuite(kLegacySuiteName);
    EXPECT_EQ(Exchange(), 5);
    EXPECT_EQ(mBuffer, buffer);
    const std::vector<std::pair<std::string_view, std::int32_t>> asked{{"Kestrel Legacy Suite", 1},
                                                                       {"Kestrel Legacy Suite", 1}};
    EXPECT_EQ(mHost.asked, asked);
}

} // namespace
