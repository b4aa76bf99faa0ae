/// The settings exchange around the dialog, as far as it needs no layout: sizes, sources, long texts.
#include <ImporterTessel/entry/SettingsExchange.h>
#include <ImporterTessel/settings/DataFile.h>
#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/importhost/StandardParameters.h>
#include <kestrel/qelcore/text/Unicode.h>

#include <gtest/gtest.h>
#include <support/TemporaryFolder.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using namespace ImporterTessel;

/// The two records of one request; the text buffer stands before bytes that must stay as they are.
struct Request {
    Request() : buffer(10240 + 16, '\x5A')
    {
        exchange.text = buffer.data();
        exchange.bufferSize = 12345;
    }
    std::int32_t Send() { return ExchangeSettings(&importhost::HostStandardParameters(), file, exchange); }
    [[nodiscard]] bool IsBufferUntouched() const
    {
        return buffer == std::vector<char>(buffer.size(), '\x5A') && exchange.bufferSize == 12345;
    }

    std::vector<char> buffer;
    ksFileAccessRec file{};
    ksSettingsExchangeRec exchange{};
};

class Exchanging : public testing::Test {
protected:
    void Write(const std::string& text) const { test::WriteFile(mFile, text); }

    test::TemporaryFolder mFolder;
    std::filesystem::path mFile = mFolder / "clip.tessel";
    std::u16string mPath = mFile.u16string();
};

TEST_F(Exchanging, AskingForTheSizeAnswersWhateverTheFileIs)
{
    Write("not JSON at all");
    Request request;
    request.file.path = mPath.c_str();
    request.exchange.text = nullptr;
    EXPECT_EQ(request.Send(), 0);
    EXPECT_EQ(request.exchange.bufferSize, 10240U);
    request.file.path = u"/nonexistent";
    request.exchange.bufferSize = 0;
    EXPECT_EQ(request.Send(), 0);
    EXPECT_EQ(request.exchange.bufferSize, 10240U);
}

TEST_F(Exchanging, AnExistingFileWithTheNewClipFlagGivesItsTextWithoutADialog)
{
    TesselInfo info;
    info.mFrameWidth = 333;
    const std::string text = TesselToUTF8String(info);
    Write(text);
    Request request;
    request.file.path = mPath.c_str();
    request.exchange.newClip = 1;
    EXPECT_EQ(request.Send(), 0);
    EXPECT_EQ(std::string(request.buffer.data()), text);
    EXPECT_EQ(request.exchange.bufferSize, 10240U);
    EXPECT_EQ(request.file.newPath, nullptr);
}

TEST_F(Exchanging, AFolderIsUnreadable)
{
    Request request;
    const std::u16string folder = mFolder.Path().u16string();
    request.file.path = folder.c_str();
    EXPECT_EQ(request.Send(), 2);
    EXPECT_TRUE(request.IsBufferUntouched());
}

/// A document whose text has exactly `length` bytes.
std::string TextOfLength(std::size_t length)
{
    TesselInfo info;
    const std::size_t bare = TesselToUTF8String(info).size();
    info.mSwatchColorsFilePath.assign(length - bare, u'x');
    std::string text = TesselToUTF8String(info);
    EXPECT_EQ(text.size(), length);
    return text;
}

TEST_F(Exchanging, TheLongestTextThatFitsHas10238Bytes)
{
    Write(TextOfLength(10238));
    Request fits;
    fits.file.path = mPath.c_str();
    fits.exchange.newClip = 1;
    EXPECT_EQ(fits.Send(), 0);
    EXPECT_EQ(std::strlen(fits.buffer.data()), 10238U);
    EXPECT_EQ(fits.exchange.bufferSize, 10240U);
    EXPECT_EQ(fits.buffer[10239], '\x5A');

    Write(TextOfLength(10239));
    Request tooLong;
    tooLong.file.path = mPath.c_str();
    tooLong.exchange.newClip = 1;
    EXPECT_EQ(tooLong.Send(), 0);
    EXPECT_TRUE(tooLong.IsBufferUntouched());
}

TEST_F(Exchanging, ANewClipTakesTheSequenceAndTheUnusableRateWhereThereIsNone)
{
    // This program has no layout resource, so the dialog shows nothing and changes nothing.
    Request request;
    request.exchange.newClip = 1;
    request.exchange.frameWidth = 1280;
    request.exchange.frameHeight = 720;
    request.exchange.parNumerator = 4;
    request.exchange.parDenominator = 3;
    request.exchange.timeScale = 0;
    request.exchange.sampleSize = 1;
    EXPECT_EQ(request.Send(), 0);
    const TesselInfo info = TesselFromUTF8String(request.buffer.data());
    EXPECT_EQ(info.mFrameWidth, 1280);
    EXPECT_EQ(info.mFrameHeight, 720);
    EXPECT_EQ(info.mFramePAR, (qelmediatypes::PixelAspectRatio{4, 3}));
    EXPECT_EQ(info.mVideoFrameRate.ticksPerFrame, INT64_MAX);
    EXPECT_EQ(info.mVideoDuration, TesselInfo().mVideoDuration);
}

TEST_F(Exchanging, AClipWithoutAFileStartsFromTheHostsText)
{
    TesselInfo info;
    info.mFrameHeight = 444;
    const std::string text = TesselToUTF8String(info);
    Request request;
    std::memcpy(request.buffer.data(), text.c_str(), text.size() + 1);
    EXPECT_EQ(request.Send(), 0);
    EXPECT_EQ(TesselFromUTF8String(request.buffer.data()).mFrameHeight, 444);
    EXPECT_EQ(request.exchange.bufferSize, 10240U);
}

} // namespace
