#include "DocumentFixture.h"

#include <vector>

namespace {

using namespace tessel::document;

TEST_F(DocumentTest, FramesThatCannotBeMadeNameTheKey)
{
    EXPECT_EQ(FrameFailure(Document().Set("mPixelFormat", "1")),
              "frame 0: \"mPixelFormat\": 1 is no pixel format that can be painted, one of the host's 48 was "
              "expected");
    EXPECT_EQ(
        FrameFailure(Document().Set("mFrameHeight", "0")),
        "frame 0: a frame of 64x0 cannot be made: \"mFrameWidth\" and \"mFrameHeight\" must be 1 to 100000");
    EXPECT_NE(FrameFailure(Document().Set("mFrameWidth", "90000").Set("mFrameHeight", "90000")).find("2 GiB"),
              std::string::npos);
}

TEST_F(DocumentTest, TooManyChannelsNameTheKey)
{
    const OpenedClip opened = Open(Document().Set("mNumChannels", "65"));
    std::vector<float> buffer(16);
    const std::vector<float*> channels(65, buffer.data());
    EXPECT_EQ(LineOf([&] { opened.clip.RenderAudio(0, 16, channels); }),
              "audio from sample 0: \"mNumChannels\": 65 audio channels, at most 64 can be played");
}

/// Three bands of one column and one row each, with the given rows and color counts.
std::string Coordinates(int first, int second, int third)
{
    const auto band = [](const char* name, int y) {
        return std::string("\"") + name + R"(": {"xCoordinates": [960], "yCoordinates": [)" +
               std::to_string(y) + "]}";
    };
    return "{" + band("colorSwatches", first) + "," + band("legalRangeGradient", second) + "," +
           band("fullRangeGradient", third) + "}";
}

TEST_F(DocumentTest, BrokenSwatchRulesAreNamed)
{
    const std::string colors =
        R"({"colorSwatches": [1,0,0], "legalRangeGradient": [0,1,0], "fullRangeGradient": [0,0,1]})";
    const auto swatches = [&](const std::string& coordinates, const std::string& colorLists) {
        return Document()
            .Set("mPixelFormat", CodeText("BGra"))
            .Set("mRenderFormat", "2")
            .Set("mFrameWidth", "1920")
            .Set("mFrameHeight", "1080")
            .Set("mSwatchCoordinates", coordinates)
            .Set("mSwatchColors", colorLists);
    };
    EXPECT_EQ(FrameFailure(swatches(Coordinates(100, 500, 900), colors)), "");
    EXPECT_NE(FrameFailure(swatches(Coordinates(100, 500, 900), colors).Set("mFrameWidth", "1280"))
                  .find("needs a frame of 1920x1080, this one is 1280x1080"),
              std::string::npos);
    EXPECT_NE(FrameFailure(swatches(Coordinates(500, 500, 900), colors))
                  .find("\"colorSwatches\": its last row 500 must be above 500"),
              std::string::npos);
    EXPECT_NE(FrameFailure(swatches(Coordinates(100, 950, 900), colors)).find("\"legalRangeGradient\""),
              std::string::npos);
    EXPECT_NE(FrameFailure(swatches(Coordinates(100, 500, 1080), colors)).find("1080, the frame's height"),
              std::string::npos);
    EXPECT_NE(
        FrameFailure(
            swatches(
                Coordinates(100, 500, 900),
                R"({"colorSwatches": [1,0,0], "legalRangeGradient": [0,1], "fullRangeGradient": [0,0,1]})"))
            .find("need 3 color parts, there are 2"),
        std::string::npos);
    EXPECT_NE(FrameFailure(
                  Document().Set("mRenderFormat", "2").Set("mFrameWidth", "1920").Set("mFrameHeight", "1080"))
                  .find("no coordinates"),
              std::string::npos);
}

} // namespace
