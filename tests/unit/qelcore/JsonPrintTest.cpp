#include <kestrel/qelcore/serialization/Json.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

namespace {

using namespace qelcore::serialization;
using namespace std::string_literals;

std::string Print(const Value& value, bool formatted = false)
{
    return GetJSONUTF8String(value, formatted);
}

TEST(JSONPrint, KeysStandInAscendingByteOrder)
{
    Object object;
    for (const char* key : {"b", "\u00E4", "a", "B", "", "ab", "\U0001F600", "\uFFFD"}) {
        AddToObject(object, key, Value());
    }
    EXPECT_EQ(Print(Value(object)), "{\"\":null,\"B\":null,\"a\":null,\"ab\":null,\"b\":null,\"\u00E4\":null,"
                                    "\"\uFFFD\":null,\"\U0001F600\":null}");
}

TEST(JSONPrint, FormattedTextIsIndentedByTwo)
{
    const Value value = JSONParse(R"({"a":[1,{"b":[]}],"c":{},"d":"x"})");
    EXPECT_EQ(Print(value, true), R"({
  "a": [
    1,
    {
      "b": []
    }
  ],
  "c": {},
  "d": "x"
})");
    EXPECT_EQ(Print(value), R"({"a":[1,{"b":[]}],"c":{},"d":"x"})");
}

TEST(JSONPrint, FormattedTextGrowsInProportionToTheDocument)
{
    constexpr std::size_t kDepth = 10'000;
    const Value value = JSONParse(std::string(kDepth, '[') + std::string(kDepth, ']'));
    const std::string text = Print(value, true);
    EXPECT_LT(text.size(), kDepth * 2 * 202); // a bracket, 200 spaces and a line end
    EXPECT_FALSE(JSONParse(text).IsNothing());
}

TEST(JSONPrint, TextsAreEscapedAsFarAsNeeded)
{
    EXPECT_EQ(Print(Value("\"\\/\b\f\n\r\t\x01\x1F\x7F\u00E4"s)),
              "\"\\\"\\\\/\\b\\f\\n\\r\\t\\u0001\\u001f\x7F\u00E4\"");
    EXPECT_EQ(Print(Value("\0"s)), "\"\\u0000\"");
}

TEST(JSONPrint, BrokenUTF8BecomesReplacementCharacters)
{
    EXPECT_EQ(Print(Value("a\xFF"s
                          "b\xED\xA0\x80")),
              "\"a\uFFFDb\uFFFD\uFFFD\uFFFD\"");
    Object object;
    AddToObject(object, "\xFF", Value(true));
    EXPECT_EQ(Print(Value(object)), "{\"\uFFFD\":true}");
}

TEST(JSONPrint, MissingValuesAreNull)
{
    EXPECT_EQ(Print(Value(Array{Value(), Value(nullptr)})), "[null,null]");
    EXPECT_EQ(Print(Value(Object{{"a", Value()}})), "{\"a\":null}");
}

/// A random tree that has every kind of value.
Value RandomValue(std::mt19937& random, int depth)
{
    switch (random() % (depth > 0 ? 9 : 7)) {
    case 0:
        return Value(nullptr);
    case 1:
        return Value(random() % 2 == 0);
    case 2:
        return Value(static_cast<std::int64_t>(random()) - (std::int64_t{1} << 31));
    case 3:
        return Value(~std::uint64_t{random()});
    case 4:
        return Value(static_cast<double>(random()) / 65'536.0);
    case 5:
    case 6: {
        std::string text;
        for (auto length = random() % 5; length > 0; --length) {
            text += static_cast<char>(random() % 0x80);
        }
        return Value(text);
    }
    case 7: {
        Array array;
        for (auto count = random() % 4; count > 0; --count) {
            array.push_back(RandomValue(random, depth - 1));
        }
        return Value(array);
    }
    default: {
        Object object;
        for (auto count = random() % 4; count > 0; --count) {
            AddToObject(object, std::to_string(random() % 100), RandomValue(random, depth - 1));
        }
        return Value(object);
    }
    }
}

bool Same(const Value& a, const Value& b)
{
    if (a.GetKind() != b.GetKind()) {
        return false;
    }
    switch (a.GetKind()) {
    case Value::Kind::Array: {
        const Elements elements(a);
        const Elements others(b);
        return std::equal(elements.begin(), elements.end(), others.begin(), others.end(), Same);
    }
    case Value::Kind::Object: {
        const Members members(a);
        const Members others(b);
        return std::equal(
            members.begin(), members.end(), others.begin(), others.end(),
            [](const auto& x, const auto& y) { return x.key == y.key && Same(x.value, y.value); });
    }
    case Value::Kind::Text:
        return AsText(a, "") == AsText(b, "");
    case Value::Kind::Number:
        return AsNumber(a, "") == AsNumber(b, "");
    default:
        return a.GetNode().bits == b.GetNode().bits;
    }
}

TEST(JSONPrint, WhatWasPrintedReadsBackTheSame)
{
    for (unsigned seed = 0; seed < 3000; ++seed) {
        // NOLINTNEXTLINE(cert-msc32-c,cert-msc51-cpp): the seed is fixed so that a failure repeats.
        std::mt19937 random(seed);
        const Value value = RandomValue(random, 5);
        for (const bool formatted : {false, true}) {
            const std::string text = Print(value, formatted);
            const Value again = JSONParse(text);
            ASSERT_FALSE(again.IsNothing()) << "seed " << seed << ": " << text;
            ASSERT_TRUE(Same(value, again)) << "seed " << seed << ": " << text;
        }
    }
}

} // namespace
