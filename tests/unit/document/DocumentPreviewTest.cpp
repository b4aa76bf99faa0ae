#include "DocumentFixture.h"

#include <tessel/document/DocumentPreview.h>

namespace {

using namespace tessel::document;

// 1634887522 is "bgra".
TEST(InPreviewFormat, PaintsIn8BitBGRA)
{
    EXPECT_EQ(InPreviewFormat(R"({"mFrameWidth": 5, "mPixelFormat": 7})"),
              R"({"mFrameWidth":5,"mPixelFormat":1634887522})");
    EXPECT_EQ(InPreviewFormat("{}"), R"({"mPixelFormat":1634887522})");
}

TEST(InPreviewFormat, LeavesFloatBGRAWhichChartsNeed)
{
    const std::string text = "{\"mPixelFormat\": " + CodeText("BGra") + "}";
    EXPECT_EQ(InPreviewFormat(text), text);
}

TEST(InPreviewFormat, LeavesWhatIsNoObject)
{
    for (const char* text : {"", "[]", "{", "7"}) {
        EXPECT_EQ(InPreviewFormat(text), text);
    }
}

TEST(InPreviewFormat, ReplacesAFormatOfAnotherType)
{
    EXPECT_EQ(InPreviewFormat(R"({"mPixelFormat": "bgra"})"), R"({"mPixelFormat":1634887522})");
}

} // namespace
