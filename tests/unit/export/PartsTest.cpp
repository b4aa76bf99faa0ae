#include <tessel/export/ExportError.h>
#include <tessel/export/Parts.h>

#include <gtest/gtest.h>

#include <limits>

namespace tessel::exporting {
namespace {

TEST(Parts, EveryFrameIsInOnePartAndPartsDifferByOneFrame)
{
    for (std::int64_t frames = 1; frames <= 60; ++frames) {
        for (std::int64_t count = 1; count <= frames; ++count) {
            std::int64_t next = 7;
            for (std::int64_t number = 1; number <= count; ++number) {
                const FrameRange part = FramesOfPart({7, frames}, {number, count});
                ASSERT_EQ(part.first, next) << number << "/" << count << " of " << frames;
                ASSERT_GE(part.count, frames / count);
                ASSERT_LE(part.count, frames / count + 1);
                next += part.count;
            }
            ASSERT_EQ(next, 7 + frames);
        }
    }
}

TEST(Parts, APartBeginsWhereTheFormulaSays)
{
    // (K - 1) * 11 / 4, rounded down: 0, 2, 5, 8
    EXPECT_EQ(FramesOfPart({100, 11}, {1, 4}), (FrameRange{100, 2}));
    EXPECT_EQ(FramesOfPart({100, 11}, {2, 4}), (FrameRange{102, 3}));
    EXPECT_EQ(FramesOfPart({100, 11}, {3, 4}), (FrameRange{105, 3}));
    EXPECT_EQ(FramesOfPart({100, 11}, {4, 4}), (FrameRange{108, 3}));
}

TEST(Parts, TheLongestClipDoesNotOverflow)
{
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    const FrameRange last = FramesOfPart({0, kMost}, {PartNumber::kMost, PartNumber::kMost});
    EXPECT_EQ(last.first + last.count, kMost);
    EXPECT_GT(last.count, 0);
}

TEST(Parts, MorePartsThanFramesAreRefused)
{
    EXPECT_EQ(FramesOfPart({0, 3}, {3, 3}), (FrameRange{2, 1}));
    EXPECT_THROW(static_cast<void>(FramesOfPart({0, 3}, {1, 4})), ExportError);
}

TEST(Parts, ANumberReadsBackAndNothingElseIsOne)
{
    EXPECT_EQ(PartNumber::Parse("2/5"), (PartNumber{2, 5}));
    EXPECT_EQ(PartNumber::Parse(PartNumber{17, 1'000'000}.Text()), (PartNumber{17, 1'000'000}));
    for (const char* text : {"", "/", "2", "2/", "/5", "0/5", "6/5", "1/1000001", "-1/5", "+1/5", " 1/5",
                             "1/5 ", "1/5/9", "1.0/5", "0x1/5", "99999999999999999999/99999999999999999999"}) {
        EXPECT_FALSE(PartNumber::Parse(text).has_value()) << text;
    }
}

TEST(PartLabel, ReadsBackAsItWasWritten)
{
    const PartLabel label{{2, 5}, {100, 50}, "ab12", "ffv1 bgra, 96x64, quality 3; and more"};
    const std::optional<PartLabel> read = PartLabel::Parse(label.Text());
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ(read->part, label.part);
    EXPECT_EQ(read->frames, label.frames);
    EXPECT_EQ(read->document, label.document);
    EXPECT_EQ(read->picture, label.picture);
}

TEST(PartLabel, OtherCommentsAreNone)
{
    const std::string text = PartLabel{{2, 5}, {100, 50}, "ab12", "x"}.Text();
    for (std::size_t length = 0; length + 3 < text.size(); ++length) {
        EXPECT_FALSE(PartLabel::Parse(text.substr(0, length)).has_value()) << text.substr(0, length);
    }
    EXPECT_FALSE(PartLabel::Parse("made by somebody").has_value());
    EXPECT_FALSE(PartLabel::Parse("tessel part 2/5; frames 10-9; document a; x").has_value());
}

} // namespace
} // namespace tessel::exporting
