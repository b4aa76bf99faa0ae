// The documents that come with the program are what they should be.
#include <ImporterTessel/settings/DataFile.h>
#include <ImporterTessel/settings/SwatchFiles.h>
#include <ImporterTessel/video/SwatchChart.h>
#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/qelcore/serialization/Json.h>

#include <gtest/gtest.h>
#include <support/Process.h>
#include <support/TemporaryFolder.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

using namespace ImporterTessel;

namespace {

const std::filesystem::path kFolder = SAMPLES_FOLDER;

std::vector<std::filesystem::path> Documents()
{
    std::vector<std::filesystem::path> documents;
    for (const auto& entry : std::filesystem::directory_iterator(kFolder)) {
        if (entry.path().extension() == ".tessel") {
            documents.push_back(entry.path());
        }
    }
    return documents;
}

/// Unlike reading a file, which answers what it cannot read with the default clip, this throws.
TesselInfo Read(const std::filesystem::path& file)
{
    return TesselFromDocument(qelcore::serialization::JSONParse(test::ReadFile(file)));
}

TEST(Samples, AreCompleteDocumentsOfKnownFormatsAndAtMostFiveSeconds)
{
    const auto documents = Documents();
    EXPECT_GE(documents.size(), 6U);
    for (const auto& document : documents) {
        TesselInfo info;
        ASSERT_NO_THROW(info = Read(document)) << document;
        EXPECT_EQ(info.mVersion, 1) << document;
        EXPECT_NE(BR::SDKToBEPixelFormat(info.mPixelFormat), BR::PixelFormat::Unknown) << document;
        EXPECT_TRUE(info.mVideoFrameRate.HasFrames()) << document;
        EXPECT_GT(info.mVideoDuration.Ticks(), 0) << document;
        // 5 s and the remainder of a frame at 1000/1001 rates
        EXPECT_LE(info.mVideoDuration.Ticks(), 5 * qelmediatypes::kTicksPerSecond) << document;
        EXPECT_EQ(info.mVideoDuration.Ticks() % info.mVideoFrameRate.ticksPerFrame, 0) << document;
    }
}

TEST(Samples, HaveEveryKeyThatTheWriterWrites)
{
    const std::string written = TesselToUTF8String(TesselInfo{});
    for (const auto& document : Documents()) {
        const std::string text = test::ReadFile(document);
        for (std::size_t at = 0; (at = written.find("\"m", at)) != std::string::npos; ++at) {
            const std::string key = written.substr(at, written.find('"', at + 1) + 1 - at);
            EXPECT_NE(text.find(key), std::string::npos) << document << " lacks " << key;
        }
    }
}

TEST(SampleChart, IsWhatItsMakerMakes)
{
    if (!testsupport::IsInstalled("python3")) {
        GTEST_SKIP() << "needs python3";
    }
    EXPECT_TRUE(
        testsupport::RunCommand(testsupport::Quoted((kFolder / "make-chart").string()) + " --check").succeeded);
}

TEST(SampleChart, FulfilsTheChartsRulesAndMatchesTheSwatchFiles)
{
    const TesselInfo info = Read(kFolder / "swatch-chart.tessel");
    EXPECT_EQ(info.mRenderFormat, kRenderColorSwatches);
    EXPECT_EQ(BR::SDKToBEPixelFormat(info.mPixelFormat), BR::PixelFormat::BGRA_4444_32f);
    EXPECT_TRUE(IsChartValid(info.mSwatchCoordinates, info.mSwatchColors, 1920, 1080));
    SwatchCoordinates coordinates;
    SwatchColors colors;
    EXPECT_GE(ReadSwatchCoordinatesFile((kFolder / "swatch-coordinates.json").u16string(), coordinates), 0);
    EXPECT_GE(ReadSwatchColorsFile((kFolder / "swatch-colors.json").u16string(), colors), 0);
    EXPECT_EQ(coordinates, info.mSwatchCoordinates);
    EXPECT_EQ(colors, info.mSwatchColors);
}

TEST(SampleChart, ItsLegalBandHasOneStepPerCodeNearBothEnds)
{
    const SwatchColors colors = Read(kFolder / "swatch-chart.tessel").mSwatchColors;
    std::vector<float> expected;
    for (int code = 1; code <= 254; ++code) {
        if (code <= 24 || code >= 227) {
            expected.insert(expected.end(), 3, static_cast<float>((code - 16) / 219.0));
        }
    }
    EXPECT_EQ(colors.legalRangeGradient, expected);
    std::vector<float> full;
    for (int step = 0; step <= 32; ++step) {
        full.insert(full.end(), 3, static_cast<float>(step) / 32.0F);
    }
    EXPECT_EQ(colors.fullRangeGradient, full);
}

} // namespace
