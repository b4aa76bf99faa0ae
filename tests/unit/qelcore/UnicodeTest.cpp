#include <kestrel/qelcore/text/Unicode.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace qelcore::text;

/// Every code point that a text may hold.
template <class Use>
void ForEachScalarValue(Use use)
{
    for (char32_t point = 0; point <= 0x10FFFF; ++point) {
        if (point < 0xD800 || point > 0xDFFF) {
            use(point);
        }
    }
}

TEST(Unicode, EveryCodePointSurvivesTheRoundTrip)
{
    ForEachScalarValue([](char32_t point) {
        std::u16string utf16;
        if (point < 0x10000) {
            utf16 = {static_cast<char16_t>(point)};
        } else {
            utf16 = {static_cast<char16_t>(0xD7C0 + (point >> 10)),
                     static_cast<char16_t>(0xDC00 + (point & 0x3FF))};
        }
        const std::string utf8 = ToUTF8(utf16);
        const std::size_t length = point < 0x80 ? 1 : point < 0x800 ? 2 : point < 0x10000 ? 3 : 4;
        ASSERT_EQ(utf8.size(), length) << static_cast<std::uint32_t>(point);
        ASSERT_EQ(ToUTF16(utf8), utf16) << static_cast<std::uint32_t>(point);
        ASSERT_EQ(ToUTF16Strict(utf8), utf16) << static_cast<std::uint32_t>(point);
        ASSERT_EQ(ToUTF8Strict(utf16), utf8) << static_cast<std::uint32_t>(point);
        ASSERT_EQ(Repaired(utf8), utf8) << static_cast<std::uint32_t>(point);
    });
}

TEST(Unicode, EncodesAsTheStandardShows)
{
    // Unicode 15, table 3-4.
    EXPECT_EQ(ToUTF8(u"\u004D\u0430\u4E8C\U00010302"), "\x4D\xD0\xB0\xE4\xBA\x8C\xF0\x90\x8C\x82");
}

TEST(Unicode, EachMaximalBrokenPieceBecomesOneReplacement)
{
    // Unicode 15, tables 3-8 to 3-11.
    const std::u16string r = u"\uFFFD";
    EXPECT_EQ(ToUTF16("\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41"), r + r + r + r + r + r + r + r + u"A");
    EXPECT_EQ(ToUTF16("\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41"), r + r + r + r + r + r + r + r + u"A");
    EXPECT_EQ(ToUTF16("\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42"), r + r + r + r + r + u"A" + r + r + u"B");
    EXPECT_EQ(ToUTF16("\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41"), r + r + r + r + u"A");
    EXPECT_EQ(ToUTF16("a\xF0\x9F\x98"), u"a" + r);
    EXPECT_EQ(Repaired("a\xF0\x9F\x98z"), "a\uFFFDz");
}

TEST(Unicode, StrictConversionRefusesEveryBrokenPiece)
{
    for (const char* bytes :
         {"\x80", "\xC0\xAF", "\xC1\xBF", "\xC3", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xEF\xBF",
          "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "abc\xC3(", "\xE4\xBA"}) {
        EXPECT_EQ(ToUTF16Strict(bytes), std::nullopt);
    }
    EXPECT_EQ(ToUTF16Strict(""), u"");
}

TEST(Unicode, UnpairedSurrogatesBecomeReplacements)
{
    const std::u16string high(1, char16_t{0xD83D});
    const std::u16string low(1, char16_t{0xDE00});
    EXPECT_EQ(ToUTF8(high + low), "\U0001F600");
    EXPECT_EQ(ToUTF8(high), "\uFFFD");
    EXPECT_EQ(ToUTF8(low), "\uFFFD");
    EXPECT_EQ(ToUTF8(low + high), "\uFFFD\uFFFD");
    EXPECT_EQ(ToUTF8(high + high + low), "\uFFFD\U0001F600");
    EXPECT_EQ(ToUTF8(high + u"a"), "\uFFFDa");
    for (const std::u16string& broken : {high, low, low + high, high + u"a", u"a" + low}) {
        EXPECT_EQ(ToUTF8Strict(broken), std::nullopt);
    }
}

} // namespace
