#include <tessel/export/ExportError.h>
#include <tessel/view/model/FrameNames.h>

#include <gtest/gtest.h>

#include <string>

namespace tessel::view {
namespace {

constexpr FrameScale kPal{1000, 25, 1};
constexpr FrameScale kNtsc{100'000, 30000, 1001};

TEST(FrameNames, TimecodesCountFromZero)
{
    EXPECT_EQ(TimecodeOf(kPal, 112), "00:00:04:12");
    // ST 12-1: after 00:00:59;29 comes 00:01:00;02.
    EXPECT_EQ(TimecodeOf(kNtsc, 1799), "00:00:59;29");
    EXPECT_EQ(TimecodeOf(kNtsc, 1800), "00:01:00;02");
    EXPECT_EQ(TimecodeOf({10, 13, 1}, 3), "");
    EXPECT_EQ(TimecodeOf({10, 0, 1}, 3), "");
}

TEST(FrameNames, APersonMayWriteANumberATimecodeOrAStep)
{
    EXPECT_EQ(FrameNamed(kPal, "112", 5), 112);
    EXPECT_EQ(FrameNamed(kPal, "00:00:04:12", 5), 112);
    EXPECT_EQ(FrameNamed(kNtsc, "00:01:00;02", 5), 1800);
    EXPECT_EQ(FrameNamed(kPal, "+25", 5), 30);
    EXPECT_EQ(FrameNamed(kPal, "-3", 5), 2);
}

TEST(FrameNames, BeyondTheEndsAreTheEnds)
{
    EXPECT_EQ(FrameNamed(kPal, "5000", 0), 999);
    EXPECT_EQ(FrameNamed(kPal, "99999999999999999999", 0), 999);
    EXPECT_EQ(FrameNamed(kPal, "-6", 5), 0);
    EXPECT_EQ(FrameNamed(kPal, "01:00:00:00", 5), 999);
}

/// Why a text is refused; empty where it is not.
std::string Refusal(const FrameScale& scale, const char* text)
{
    try {
        static_cast<void>(FrameNamed(scale, text, 0));
    } catch (const exporting::RequestError& error) {
        return error.what();
    }
    return {};
}

TEST(FrameNames, RefusesWhatIsNoFrameAndSaysWhatWouldBe)
{
    for (const char* const text : {"", "x", "12x", "+", "--5", "1.5"}) {
        EXPECT_NE(Refusal(kPal, text).find("a timecode as in 00:00:04:12"), std::string::npos) << text;
    }
    EXPECT_NE(Refusal(kPal, "00:00:04").find("as in 10:00:00:00"), std::string::npos);
    EXPECT_NE(Refusal(kPal, "00:00:04:25").find("the last of a second is 00:00:04:24"), std::string::npos);
    EXPECT_NE(Refusal(kPal, "00:00:04;12").find("write 00:00:04:12"), std::string::npos);
    EXPECT_NE(Refusal({10, 13, 1}, "00:00:01:00").find("write a frame number"), std::string::npos);
}

} // namespace
} // namespace tessel::view
