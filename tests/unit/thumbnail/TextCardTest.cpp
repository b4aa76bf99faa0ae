#include <tessel/thumbnail/TextCard.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using tessel::thumbnail::BreakLines;
using tessel::thumbnail::Image;
using tessel::thumbnail::TextCard;
using Lines = std::vector<std::string>;

TEST(BreakLines, BreaksAtSpacesAndElseInsideWords)
{
    EXPECT_EQ(BreakLines("one two three", 7), (Lines{"one two", "three"}));
    EXPECT_EQ(BreakLines("one two three", 5), (Lines{"one", "two", "three"}));
    EXPECT_EQ(BreakLines("swatch-coordinates", 7), (Lines{"swatch-", "coordin", "ates"}));
    EXPECT_EQ(BreakLines("", 5), Lines{});
}

TEST(BreakLines, LosesNothingButSpacesAndKeepsTheWidth)
{
    const std::string text = "line 1, column 17: unexpected end of input; expected '[', '{', or a literal";
    std::string letters = text;
    std::erase(letters, ' ');
    for (int columns = 1; columns < 80; ++columns) {
        std::string joined;
        for (const std::string& line : BreakLines(text, columns)) {
            EXPECT_LE(std::ssize(line), columns);
            joined += line;
        }
        std::erase(joined, ' ');
        EXPECT_EQ(joined, letters) << columns;
    }
}

/// Pixels that are not of the paper's color.
std::ptrdiff_t Inked(const Image& card)
{
    return std::count_if(card.pixels.begin(), card.pixels.end(),
                         [&card](const auto& pixel) { return pixel != card.pixels.front(); });
}

TEST(TextCard, IsSquareAndShowsTheText)
{
    for (const int size : {16, 64, 128, 256, 512}) {
        const Image card = TextCard("no picture", "it is broken", size);
        EXPECT_EQ(card.width, size);
        EXPECT_EQ(card.height, size);
        // A larger square has larger letters; 16 pixels have room for a letter or two.
        EXPECT_GT(Inked(card), size / 4) << size;
    }
    EXPECT_NE(TextCard("no picture", "it is broken", 256).pixels,
              TextCard("no picture", "it is missing", 256).pixels);
}

TEST(TextCard, TakesATextOfAnyLengthAndAnyCharacters)
{
    const Image card = TextCard("no picture", std::string(100'000, 'x'), 128);
    EXPECT_GT(Inked(card), 0);
    EXPECT_GT(Inked(TextCard("\xC3\xA4", "\x01\xFF", 64)), 0);
    EXPECT_EQ(Inked(TextCard("", "", 64)), 0);
}

} // namespace
