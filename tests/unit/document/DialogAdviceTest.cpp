#include "DocumentFixture.h"

#include <tessel/document/DialogAdvice.h>

namespace {

using tessel::document::CodeText;
using tessel::document::DialogAdvice;

/// Settings as far as the sentences look at them, with more keys in front.
std::string Settings(const std::string& more)
{
    return "{" + more + (more.empty() ? "" : ",") +
           R"("mFrameWidth":1920,"mFrameHeight":1080,"mFieldType":0,"mToneFormat":0})";
}

std::string Advice(const char* control, const std::string& more)
{
    return DialogAdvice(control, Settings(more), "");
}

TEST(DialogAdvice, SaysWhatARenderTypeDoesNotUse)
{
    constexpr const char* kRenderType = "colorRenderingTypePopupID";
    EXPECT_EQ(Advice(kRenderType, R"("mRenderFormat":0)"),
              "Not used: the second color, the gradient colors and the swatch files.");
    EXPECT_EQ(Advice(kRenderType, R"("mRenderFormat":1)"), "Not used: the field colors and the swatch files.");
    EXPECT_EQ(DialogAdvice(kRenderType, R"({"mRenderFormat":0,"mFieldType":1})", ""),
              "Not used: the gradient colors and the swatch files.");
    EXPECT_EQ(Advice(kRenderType, R"("mRenderFormat":77)"), "");
}

TEST(DialogAdvice, SaysWhyAChartIsNotShown)
{
    const std::string chart = R"("mRenderFormat":2,"mPixelFormat":)" + CodeText("BGra");
    for (const char* const control :
         {"colorRenderingTypePopupID", "pixelFormatPopupID", "frameWidthID", "frameHeightID",
          "swatchColorsFileButtonID", "swatchCoordinatesFileButtonID"}) {
        EXPECT_EQ(Advice(control, R"("mRenderFormat":2,"mPixelFormat":)" + CodeText("bgra")),
                  "The chart is not shown: it is painted in KsPixelFormat_BGRA_4444_32f only.")
            << control;
        EXPECT_EQ(Advice(control, chart),
                  "The chart is not shown: swatch band \"colorSwatches\": no coordinates; "
                  "load a swatch coordinates file.")
            << control;
    }
    EXPECT_EQ(DialogAdvice("frameWidthID", "{" + chart + R"(,"mFrameWidth":720,"mFrameHeight":480})", ""),
              "The chart is not shown: a swatch chart needs a frame of 1920x1080, this one is 720x480.");
    EXPECT_EQ(Advice("frameWidthID", R"("mRenderFormat":1)"), "");
}

TEST(DialogAdvice, SaysWhichColorsAreNotUsed)
{
    for (const char* const control :
         {"chooseColorPopupID", "chooseColorButtonID0", "chooseColorAlphaTextID1"}) {
        EXPECT_EQ(Advice(control, R"("mRenderFormat":2)"), "Not used: the chart has the colors of its file.");
        EXPECT_EQ(Advice(control, R"("mRenderFormat":1)"), "");
    }
    EXPECT_EQ(Advice("chooseColorRedTextID1", R"("mRenderFormat":0)"),
              "Not used: progressive frames have the first color.");
    EXPECT_EQ(Advice("chooseColorRedTextID0", R"("mRenderFormat":0)"), "");
    EXPECT_EQ(DialogAdvice("chooseColorRedTextID1", R"({"mRenderFormat":0,"mFieldType":2})", ""), "");
}

TEST(DialogAdvice, SaysWhatTheSoundDoesNotUse)
{
    EXPECT_EQ(Advice("steadyTonesBtn", ""), "Not used: the identification's format.");
    EXPECT_EQ(Advice("identifyChannelsBtn", ""), "");
    EXPECT_EQ(DialogAdvice("identifyChannelsBtn", R"({"mToneFormat":1})", ""),
              "Not used: frequency and amplitude.");
}

TEST(DialogAdvice, SaysWhatBecameOfASwatchFile)
{
    EXPECT_EQ(DialogAdvice("swatchColorsFileButtonID", Settings(""), "/a: b/broken.json: line 3: expected ','"),
              "broken.json was not loaded: line 3: expected ','; there is no chart yet");
    const std::string withChart = Settings(R"("mSwatchColors":{"colorSwatches":[1]})");
    EXPECT_EQ(DialogAdvice("swatchCoordinatesFileButtonID", withChart, "/a/none: no such file"),
              "none was not loaded: no such file; the earlier chart stays");
    EXPECT_EQ(DialogAdvice("saveFileButtonID", Settings(""), "/a/b.json: something else"), "");
}

TEST(DialogAdvice, IsSilentWithoutADocument)
{
    for (const char* const text : {"", "[]", "{"}) {
        EXPECT_EQ(DialogAdvice("steadyTonesBtn", text, ""), "") << text;
    }
}

} // namespace
