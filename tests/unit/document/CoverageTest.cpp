#include "DocumentFixture.h"

#include <kestrel/pixmill/PixelFormatCodes.h>
#include <tessel/document/Coverage.h>
#include <tessel/document/DocumentFacts.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

using namespace tessel::document;

/// A chart of two by two swatches a band; rows far apart so that the bands stay in order.
Document Chart(const char* format)
{
    const std::string place = R"({"xCoordinates": [100, 1800], "yCoordinates": [)";
    const std::string colors = "[1,0,0,0,1,0,0,0,1,1,1,1]";
    return Document()
        .Set("mPixelFormat", format)
        .Set("mRenderFormat", "2")
        .Set("mFrameWidth", "1920")
        .Set("mFrameHeight", "1080")
        .Set("mSwatchCoordinates", "{\"colorSwatches\": " + place + "100, 200]}, \"legalRangeGradient\": " +
                                       place + "500, 600]}, \"fullRangeGradient\": " + place + "900, 1000]}}")
        .Set("mSwatchColors", "{\"colorSwatches\": " + colors + ", \"legalRangeGradient\": " + colors +
                                  ", \"fullRangeGradient\": " + colors + "}");
}

/// The bytes of the picture's rows, without their padding.
std::vector<std::byte> Picture(const importhost::Frame& frame)
{
    const std::uint32_t code = PM_QELPixelFormatToPMPixelFormat(frame.Format());
    const std::size_t length = pixmill::BytesPerRow(code, static_cast<std::uint32_t>(frame.Width()));
    std::vector<std::byte> bytes;
    for (std::int32_t row = 0; row < frame.Height(); ++row) {
        bytes.insert(bytes.end(), frame.Row(row), frame.Row(row) + length);
    }
    return bytes;
}

class Coverage : public DocumentTest {
protected:
    /// Whether frames over poison and frames over zeros show the same picture.
    bool IsPaintedWhole(const Document& document)
    {
        const OpenedClip poisoned = Open(document, {.filling = importhost::FrameFilling::Poison});
        const auto overPoison = Picture(poisoned.clip.RenderFrame(1));
        // The host alone zeroes every frame.
        const auto zeroed = importhost::Clip::Open(sImporter, mFolder.Write("clip.tessel", document.Text()));
        return overPoison == Picture(zeroed.RenderFrame(1));
    }

    bool IsVouchedFor(const Document& document)
    {
        const OpenedClip opened = Open(document);
        const auto text = opened.clip.AskSettingsText();
        return PaintsWholeFrame(opened.clip.Description(), ReadFacts(*text).value());
    }
};

TEST_F(Coverage, IsVouchedForExactlyWhereThePictureIsPaintedWhole)
{
    for (const char* render : {"-1", "0", "1", "3"}) {
        for (const char* field : {"0", "1", "2", "256"}) {
            for (const char* height : {"1", "2", "32", "33"}) {
                for (const std::string& format : {CodeText("bgra"), CodeText("BGra"), CodeText("v210"),
                                                  CodeText("uyv7"), CodeText("dvc ")}) {
                    const Document document = Document()
                                                  .Set("mRenderFormat", render)
                                                  .Set("mFieldType", field)
                                                  .Set("mFrameHeight", height)
                                                  .Set("mFrameWidth", "23")
                                                  .Set("mPixelFormat", format);
                    if (BR::SDKToBEPixelFormat(static_cast<std::uint32_t>(std::stoul(format))) ==
                        BR::PixelFormat::Unknown) {
                        continue;
                    }
                    EXPECT_EQ(IsVouchedFor(document), IsPaintedWhole(document))
                        << "render format " << render << ", field type " << field << ", height " << height
                        << ", pixel format " << format;
                }
            }
        }
    }
}

TEST_F(Coverage, OfChartsIsVouchedForInTheFormatThatTheyArePaintedIn)
{
    for (const std::string& format : {CodeText("BGra"), CodeText("bgra"), CodeText("ARgb")}) {
        const Document chart = Chart(format.c_str());
        EXPECT_EQ(IsPaintedWhole(chart), format == CodeText("BGra"));
        EXPECT_EQ(IsVouchedFor(chart), format == CodeText("BGra"));
    }
}

TEST_F(Coverage, OfChartsDoesNotDependOnTheOrderOfTheirPositions)
{
    Document chart = Chart(CodeText("BGra").c_str());
    const std::string band = R"({"xCoordinates": [1800, 100, -5], "yCoordinates": [)";
    const std::string colors = "[1,0,0,0,1,0,0,0,1,1,1,1,0,0,0,1,1,0]";
    chart.Set("mSwatchCoordinates", "{\"colorSwatches\": " + band + "300, 100]}, \"legalRangeGradient\": " +
                                        band + "700, 500]}, \"fullRangeGradient\": " + band + "1050, 900]}}");
    chart.Set("mSwatchColors", "{\"colorSwatches\": " + colors + ", \"legalRangeGradient\": " + colors +
                                   ", \"fullRangeGradient\": " + colors + "}");
    EXPECT_TRUE(IsVouchedFor(chart));
    EXPECT_TRUE(IsPaintedWhole(chart));
}

TEST_F(Coverage, RowsThatNobodyPaintsStayZeroFrameAfterFrame)
{
    // Two fields of height / 2 rows leave the last of 201 rows alone.
    const OpenedClip opened =
        Open(Document().Set("mFieldType", "1").Set("mFrameWidth", "200").Set("mFrameHeight", "201"));
    for (int i = 0; i < 4; ++i) {
        const auto frame = opened.clip.RenderFrame(i);
        EXPECT_TRUE(
            std::all_of(frame.Row(200), frame.Row(200) + 800, [](std::byte b) { return b == std::byte{0}; }))
            << "frame " << i;
    }
}

} // namespace
