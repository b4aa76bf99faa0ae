#include "DocumentCases.h"
#include "RandomTesselInfo.h"

#include <ImporterTessel/settings/DataFile.h>
#include <kestrel/qelcore/exceptions/Exceptions.h>
#include <kestrel/qelcore/logging/Log.h>
#include <kestrel/qelcore/serialization/Json.h>

#include <gtest/gtest.h>
#include <support/CommaLocale.h>
#include <support/TemporaryFolder.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

using ImporterTessel::ReadTesselFile;
using ImporterTessel::TesselFromDocument;
using ImporterTessel::TesselFromUTF8String;
using ImporterTessel::TesselInfo;
using ImporterTessel::TesselToUTF8String;

namespace {

/// Counts what is logged while it lives.
class LogCounter {
public:
    LogCounter()
        : mListener([this](const qelcore::logging::Message& message) { mTexts.push_back(message.text); })
    {
    }
    [[nodiscard]] const std::vector<std::string>& Texts() const { return mTexts; }

private:
    std::vector<std::string> mTexts;
    qelcore::logging::ScopedListener mListener;
};

/// What a written record reads back as: the two texts without a key have their defaults again.
TesselInfo WithoutUnpersistedTexts(TesselInfo info)
{
    info.mSavePath = TesselInfo().mSavePath;
    info.mClipName = TesselInfo().mClipName;
    return info;
}

/// The floats of a record, for a comparison that tells zeros apart.
std::vector<float> FloatsOf(const TesselInfo& info)
{
    std::vector<float> floats{info.mSampleRate, info.mSteadyToneFrequency, info.mSteadyToneAmplitude,
                              info.mColorSpace.colorSpaceMetadata.peakLuminance};
    for (const auto* color :
         {&info.mUpperFieldColor, &info.mLowerFieldColor, &info.mTopGradiantColorStart,
          &info.mTopGradiantColorEnd, &info.mBottomGradiantColorStart, &info.mBottomGradiantColorEnd}) {
        floats.insert(floats.end(), {color->mAlphaPart, color->mRedPart, color->mGreenPart, color->mBluePart});
    }
    for (const auto* list : {&info.mSwatchColors.colorSwatches, &info.mSwatchColors.legalRangeGradient,
                             &info.mSwatchColors.fullRangeGradient}) {
        floats.insert(floats.end(), list->begin(), list->end());
    }
    return floats;
}

bool HaveEqualBits(const std::vector<float>& a, const std::vector<float>& b)
{
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0;
}

void ExpectRandomRecordsToSurvive(std::uint64_t seed)
{
    std::mt19937_64 random(seed);
    for (int round = 0; round < 500; ++round) {
        TesselInfo info = RandomTesselInfo(random);
        if (info.mVersion == 0) {
            info.mVersion = 1;
        }
        const std::string text = TesselToUTF8String(info);
        const LogCounter log;
        const TesselInfo read = TesselFromUTF8String(text);
        ASSERT_TRUE(log.Texts().empty()) << log.Texts()[0] << "\n" << text;
        ASSERT_TRUE(read == WithoutUnpersistedTexts(info)) << "seed " << seed << " round " << round << "\n"
                                                           << text;
        ASSERT_TRUE(HaveEqualBits(FloatsOf(read), FloatsOf(info))) << "seed " << seed << " round " << round;
        ASSERT_EQ(TesselToUTF8String(read), text);
    }
}

const std::string kWide = documents::Expand(R"({@required-mFrameWidth, "mFrameWidth": 1920})");

} // namespace

TEST(TesselText, WrittenRecordsReadBackBitForBit)
{
    ExpectRandomRecordsToSurvive(1);
}

TEST(TesselText, WrittenRecordsReadBackBitForBitUnderDecimalCommas)
{
    const test::CommaLocale locale;
    if (!locale.IsInForce()) {
        GTEST_SKIP() << "no locale with decimal commas can be made with this C library";
    }
    ASSERT_EQ(std::strtod("1,5", nullptr), 1.5);
    ExpectRandomRecordsToSurvive(2);
}

TEST(TesselText, CommasDoNotSeparateDecimalsInAnyLocale)
{
    const test::CommaLocale locale;
    const LogCounter log;
    EXPECT_TRUE(TesselFromUTF8String(documents::Expand(R"({@required, "mSampleRate": 1,5})")) == TesselInfo());
    EXPECT_EQ(log.Texts().size(), 1U);
    EXPECT_EQ(TesselFromUTF8String(documents::Expand(R"({@required, "mSampleRate": 1.5})")).mSampleRate, 1.5F);
}

TEST(TesselText, WrittenDefaultReadsBackWithTheTextsThatAreNotPersisted)
{
    EXPECT_TRUE(TesselFromUTF8String(TesselToUTF8String(TesselInfo())) == TesselInfo());
}

TEST(TesselText, TextsThatAreNotPersistedDoNotStandInIt)
{
    TesselInfo info;
    info.mSavePath = u"needle-one";
    info.mClipName = u"needle-two";
    EXPECT_EQ(TesselToUTF8String(info).find("needle"), std::string::npos);
    EXPECT_EQ(TesselToUTF8String(info), TesselToUTF8String(TesselInfo()));
}

TEST(TesselText, RootKeysStandInAscendingByteOrderWithoutAWrapper)
{
    const std::string text = TesselToUTF8String(TesselInfo());
    const std::array<const char*, 28> keys{"mBottomGradiantColorEnd",
                                           "mBottomGradiantColorStart",
                                           "mColorSpace",
                                           "mDrawFrameFieldNumber",
                                           "mFieldType",
                                           "mFrameHeight",
                                           "mFramePAR",
                                           "mFrameWidth",
                                           "mIdentifierFormat",
                                           "mKsAudioChannelType",
                                           "mLowerFieldColor",
                                           "mNumChannels",
                                           "mPixelFormat",
                                           "mRenderFormat",
                                           "mSampleRate",
                                           "mSteadyToneAmplitude",
                                           "mSteadyToneFrequency",
                                           "mSwatchColors",
                                           "mSwatchColorsFilePath",
                                           "mSwatchCoordinates",
                                           "mSwatchCoordinatesFilePath",
                                           "mToneFormat",
                                           "mTopGradiantColorEnd",
                                           "mTopGradiantColorStart",
                                           "mUpperFieldColor",
                                           "mVersion",
                                           "mVideoDuration",
                                           "mVideoFrameRate"};
    const auto document = qelcore::serialization::JSONParse(text);
    const auto object = qelcore::serialization::AsObject(document, "document");
    ASSERT_EQ(object.size(), keys.size());
    std::size_t place = 0;
    for (const char* const key : keys) {
        EXPECT_FALSE(object.Find(key).IsNothing()) << key;
        const std::size_t found = text.find('"' + std::string(key) + "\":");
        ASSERT_NE(found, std::string::npos) << key;
        EXPECT_GE(found, place) << key;
        place = found;
    }
    EXPECT_EQ(text.find_first_of(" \n\t"), text.find(' ', text.find("Rec. 709")))
        << "white space outside of the colour space's name";
}

TEST(TesselText, IntegersOf32BitsAreWrittenSignExtendedAndTicksSigned)
{
    TesselInfo info;
    info.mFrameWidth = -1;
    info.mPixelFormat = 0xFFFFFFFF;
    info.mVideoDuration = qelmediatypes::TickTime(-2);
    info.mSwatchCoordinates.colorSwatches.xCoordinates = {-3};
    const std::string text = TesselToUTF8String(info);
    EXPECT_NE(text.find("\"mFrameWidth\":18446744073709551615"), std::string::npos) << text;
    EXPECT_NE(text.find("\"mPixelFormat\":4294967295"), std::string::npos) << text;
    EXPECT_NE(text.find("\"ticks\":-2"), std::string::npos) << text;
    EXPECT_NE(text.find("\"xCoordinates\":[-3]"), std::string::npos) << text;
}

TEST(TesselText, FloatsAreWrittenAsTheDecimalsThatPeopleTyped)
{
    const TesselInfo typed = TesselFromUTF8String(documents::Expand(
        R"({@required, "mSteadyToneAmplitude": 0.95, "mSampleRate": 48048.05, "mSteadyToneFrequency": 1e-7,
            "mSwatchColors": {"colorSwatches": [0.1, -0.0, 16777216, 3.4028235e38], "legalRangeGradient": [],
                              "fullRangeGradient": []}})"));
    const std::string text = TesselToUTF8String(typed);
    for (const char* const part :
         {"\"mSteadyToneAmplitude\":0.95,", "\"mSampleRate\":48048.05,", "\"mSteadyToneFrequency\":1e-07,",
          "\"colorSwatches\":[0.1,-0.0,16777216.0,3.4028235e+38]"}) {
        EXPECT_NE(text.find(part), std::string::npos) << part << " in\n" << text;
    }
}

TEST(TesselText, NaNIsWrittenAsZeroAndInfinitiesReadBack)
{
    TesselInfo info;
    info.mSampleRate = std::numeric_limits<float>::quiet_NaN();
    info.mSteadyToneFrequency = std::numeric_limits<float>::infinity();
    info.mSteadyToneAmplitude = -std::numeric_limits<float>::infinity();
    const TesselInfo read = TesselFromUTF8String(TesselToUTF8String(info));
    EXPECT_EQ(read.mSampleRate, 0.0F);
    EXPECT_EQ(read.mSteadyToneFrequency, info.mSteadyToneFrequency);
    EXPECT_EQ(read.mSteadyToneAmplitude, info.mSteadyToneAmplitude);
}

TEST(TesselText, UnpairedSurrogatesInPathsBecomeReplacementCharacters)
{
    TesselInfo info;
    info.mSwatchColorsFilePath = {u'a', static_cast<char16_t>(0xD800), u'b'};
    EXPECT_EQ(TesselFromUTF8String(TesselToUTF8String(info)).mSwatchColorsFilePath, u"a\uFFFDb");
}

TEST(TesselText, UnusableRateOfARecordReadsBack)
{
    TesselInfo info;
    info.mVideoFrameRate = {0};
    EXPECT_EQ(TesselFromUTF8String(TesselToUTF8String(info)).mVideoFrameRate.ticksPerFrame,
              9'223'372'036'854'775'807);
}

TEST(TesselText, HundredMegabytesOfSpacesAreMalformed)
{
    const LogCounter log;
    EXPECT_TRUE(TesselFromUTF8String(std::string(100'000'000, ' ')) == TesselInfo());
    EXPECT_EQ(log.Texts().size(), 1U);
}

TEST(TesselText, HundredMegabytesOfSpacesBeforeADocumentAreWhiteSpace)
{
    const LogCounter log;
    EXPECT_EQ(TesselFromUTF8String(std::string(100'000'000, ' ') + kWide).mFrameWidth, 1920);
    EXPECT_TRUE(log.Texts().empty());
}

TEST(TesselText, ADocumentCutAnywhereIsTheDefaultClip)
{
    TesselInfo other;
    other.mFrameWidth = 1;
    const std::string whole = TesselToUTF8String(other);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const LogCounter log;
        ASSERT_TRUE(TesselFromUTF8String(whole.substr(0, length)) == TesselInfo()) << whole.substr(0, length);
        ASSERT_EQ(log.Texts().size(), 1U) << whole.substr(0, length);
    }
    EXPECT_EQ(TesselFromUTF8String(whole).mFrameWidth, 1);
}

TEST(TesselText, SaysWhereMalformedTextIsWrong)
{
    const LogCounter log;
    static_cast<void>(TesselFromUTF8String("{\n  \"mVersion\" 1}"));
    ASSERT_EQ(log.Texts().size(), 1U);
    EXPECT_NE(log.Texts()[0].find("line 2"), std::string::npos) << log.Texts()[0];
}

TEST(TesselDocument, MissingKeyNamesKeyAndRecord)
{
    const auto document = qelcore::serialization::JSONParse("{}");
    try {
        static_cast<void>(TesselFromDocument(document));
        FAIL() << "nothing was thrown";
    } catch (const qelcore::serialization::missing_key_exception& exception) {
        EXPECT_EQ(exception.Key(), "mPixelFormat");
        EXPECT_NE(std::string(exception.what()).find("TesselInfo"), std::string::npos) << exception.what();
    }
}

TEST(TesselDocument, WrongTypeIsABadAnyCast)
{
    const auto document = qelcore::serialization::JSONParse(R"({"mPixelFormat": "bgra"})");
    EXPECT_THROW(static_cast<void>(TesselFromDocument(document)), std::bad_any_cast);
}

TEST(TesselDocument, NoDocumentAtAllGivesTheDefaults)
{
    EXPECT_TRUE(TesselFromDocument({}) == TesselInfo());
}

TEST(TesselFile, ReadsADocument)
{
    const test::TemporaryFolder folder;
    TesselInfo info;
    EXPECT_EQ(ReadTesselFile(folder.Write("clip.tessel", kWide).u16string(), info), 0);
    EXPECT_EQ(info.mFrameWidth, 1920);
}

TEST(TesselFile, NeedsNoParticularExtensionAndTakesNamesInEveryScript)
{
    const test::TemporaryFolder folder;
    TesselInfo info;
    EXPECT_EQ(ReadTesselFile(folder.Write("\xC3\xA9\xF0\x9F\x98\x80", kWide).u16string(), info), 0);
    EXPECT_EQ(info.mFrameWidth, 1920);
}

TEST(TesselFile, BytesBehindANulAreNotRead)
{
    const test::TemporaryFolder folder;
    TesselInfo info;
    EXPECT_EQ(ReadTesselFile(folder.Write("clip.tessel", kWide + std::string("\0garbage \xFF", 10)).u16string(),
                             info),
              0);
    EXPECT_EQ(info.mFrameWidth, 1920);
}

TEST(TesselFile, MissingFileLeavesTheRecordUntouched)
{
    const test::TemporaryFolder folder;
    std::mt19937_64 random(5);
    TesselInfo info = RandomTesselInfo(random);
    const TesselInfo original = info;
    EXPECT_LT(ReadTesselFile((folder.Path() / "absent.tessel").u16string(), info), 0);
    EXPECT_LT(ReadTesselFile(folder.Path().u16string(), info), 0) << "a directory";
    EXPECT_LT(ReadTesselFile(u"", info), 0) << "an empty path";
    EXPECT_TRUE(info == original);
}

TEST(TesselFile, MalformedFileReplacesTheRecordByTheDefaults)
{
    const test::TemporaryFolder folder;
    for (const std::string& text :
         {std::string(), std::string("{"), std::string("[]"), std::string("\0{}", 3)}) {
        std::mt19937_64 random(6);
        TesselInfo info = RandomTesselInfo(random);
        const LogCounter log;
        EXPECT_EQ(ReadTesselFile(folder.Write("clip.tessel", text).u16string(), info), 0) << text;
        EXPECT_TRUE(info == TesselInfo()) << text;
    }
}
