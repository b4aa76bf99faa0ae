#include "DocumentFixture.h"

#include <tessel/document/DocumentPreview.h>

namespace {

using namespace tessel::document;

// 1634887522 is "bgra".
TEST(PreviewDocument, IsIn8BitBGRA)
{
    EXPECT_EQ(PreviewDocument(R"({"mFrameWidth": 5, "mPixelFormat": 7})"),
              R"({"mFrameWidth":5,"mPixelFormat":1634887522})");
    EXPECT_EQ(PreviewDocument("{}"), R"({"mPixelFormat":1634887522})");
    EXPECT_EQ(PreviewDocument(R"({"mPixelFormat": "bgra"})"), R"({"mPixelFormat":1634887522})");
}

TEST(PreviewDocument, LeavesFloatBGRAWhichChartsNeed)
{
    EXPECT_EQ(PreviewDocument("{\"mPixelFormat\": " + CodeText("BGra") + "}"),
              "{\"mPixelFormat\":" + CodeText("BGra") + "}");
}

TEST(PreviewDocument, LeavesWhatIsNoObject)
{
    for (const char* text : {"", "[]", "{", "7"}) {
        EXPECT_EQ(PreviewDocument(text), text);
    }
}

TEST(PreviewDocument, IsTheSameWhateverIsHeardOrAnnounced)
{
    const std::string text =
        R"({"mFrameWidth":64,"mSteadyToneFrequency":440.0,"mToneFormat":1,"mColorSpace":{}})";
    EXPECT_EQ(PreviewDocument(text), PreviewDocument(R"({"mFrameWidth":64})"));
    EXPECT_NE(PreviewDocument(R"({"mFrameWidth":65})"), PreviewDocument(R"({"mFrameWidth":64})"));
    EXPECT_NE(PreviewDocument(R"({"mFieldType":1})"), PreviewDocument(R"({"mFieldType":0})"));
}

TEST(PreviewDocument, IsSmallUnlessItIsAChart)
{
    // 7680 × 4320 is 33 megapixels: a third in each direction leaves 2560 × 1440, 3.7 megapixels.
    const std::string large = R"({"mFrameHeight":4320,"mFrameWidth":7680,)";
    EXPECT_EQ(PreviewDocument(large + R"("mRenderFormat":1})"),
              R"({"mFrameHeight":1440,"mFrameWidth":2560,"mPixelFormat":1634887522,"mRenderFormat":1})");
    EXPECT_EQ(PreviewDocument(large + R"("mRenderFormat":2})"),
              R"({"mFrameHeight":4320,"mFrameWidth":7680,"mPixelFormat":1634887522,"mRenderFormat":2})");
    EXPECT_EQ(PreviewDocument(R"({"mFrameHeight":1080,"mFrameWidth":1920,"mRenderFormat":1})"),
              R"({"mFrameHeight":1080,"mFrameWidth":1920,"mPixelFormat":1634887522,"mRenderFormat":1})");
}

} // namespace
