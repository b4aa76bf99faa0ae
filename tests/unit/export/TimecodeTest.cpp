#include <tessel/export/ExportError.h>
#include <tessel/export/plan/Timecode.h>

#include <gtest/gtest.h>

#include <string>

namespace tessel::exporting {
namespace {

TEST(Timecode, CountsFromTheGivenOne)
{
    const struct {
        const char* start;
        int numerator;
        int denominator;
        std::int64_t frames;
        const char* expected;
    } kRows[] = {
        {"00:00:00:00", 25, 1, 0, "00:00:00:00"},
        {"10:00:00:00", 25, 1, 24, "10:00:00:24"},
        {"10:00:00:00", 25, 1, 25, "10:00:01:00"},
        {"23:59:59:24", 25, 1, 1, "00:00:00:00"},
        {"00:00:59:29", 30000, 1001, 1, "00:01:00:00"},
        // Drop frame, as ST 12-1 has it: numbers 0 and 1 are left out of every minute but each tenth.
        {"00:00:59;29", 30000, 1001, 1, "00:01:00;02"},
        {"00:09:59;29", 30000, 1001, 1, "00:10:00;00"},
        {"01:00:00;00", 30000, 1001, 107892, "02:00:00;00"}, // frames of a drop-frame hour
        {"00:00:00;00", 30000, 1001, 17982, "00:10:00;00"},  // and of ten minutes
        {"00:00:00;00", 30000, 1001, 1799, "00:00:59;29"},
        {"00:00:00;00", 30000, 1001, 1800, "00:01:00;02"},
        {"23:59:59;29", 30000, 1001, 1, "00:00:00;00"},
        {"00:00:59;59", 60000, 1001, 1, "00:01:00;04"},
        {"00:00:00:00", 24000, 1001, 86400, "01:00:00:00"},
    };
    for (const auto& row : kRows) {
        EXPECT_EQ(Timecode::Parse(row.start, row.numerator, row.denominator).After(row.frames), row.expected)
            << row.start << " + " << row.frames;
    }
}

TEST(Timecode, DropFrameNumbersAreEachUsedOnceADay)
{
    const Timecode day(30000, 1001, /*drop=*/true);
    std::string last;
    for (std::int64_t frame = 0; frame < 10 * 107892 / 6; ++frame) {
        const std::string text = day.After(frame);
        ASSERT_LT(last, text) << frame;
        ASSERT_EQ(Timecode::Parse(text, 30000, 1001).After(0), text);
        last = text;
    }
}

TEST(Timecode, TextThatIsNoTimecodeIsRefused)
{
    for (const char* text :
         {"", "1:00:00:00", "10:00:00", "10:00:00:0", "10:00:00.00", "aa:00:00:00", "24:00:00:00",
          "10:60:00:00", "10:00:60:00", "10:00:00:25", "10:00:00;00", "-1:00:00:00"}) {
        EXPECT_THROW(static_cast<void>(Timecode::Parse(text, 25, 1)), ExportError) << text;
    }
    EXPECT_THROW(static_cast<void>(Timecode::Parse("10:01:00;01", 30000, 1001)), ExportError);
    EXPECT_NO_THROW(static_cast<void>(Timecode::Parse("10:10:00;01", 30000, 1001)));
    EXPECT_THROW(static_cast<void>(Timecode::Parse("10:00:00;00", 24000, 1001)), ExportError);
    EXPECT_THROW(static_cast<void>(Timecode::Parse("10:00:00:00", 15, 1)), ExportError);
}

// Drop-frame counting keeps pace with the clock at 30000/1001 frames a second and its multiples. A message
// names these rates: 29.97, 59.94, 119.88 and 149.85.
TEST(Timecode, DropFramesExistAtMultiplesOf2997Alone)
{
    for (const int nominal : {24, 25, 30, 48, 50, 60, 100, 120, 150}) {
        const bool isMultiple = nominal % 30 == 0;
        EXPECT_EQ(Timecode::HasDropFrames(nominal * 1000, 1001), isMultiple) << nominal;
        EXPECT_FALSE(Timecode::HasDropFrames(nominal, 1)) << nominal;
        try {
            static_cast<void>(Timecode::Parse("00:01:00;12", nominal * 1000, 1001));
            EXPECT_TRUE(isMultiple) << nominal;
        } catch (const RequestError& error) {
            EXPECT_FALSE(isMultiple) << nominal;
            EXPECT_NE(std::string(error.what()).find("29.97, 59.94, 119.88 and 149.85"), std::string::npos)
                << error.what();
        }
    }
}

} // namespace
} // namespace tessel::exporting
