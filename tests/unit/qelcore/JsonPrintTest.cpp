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
    const ValuePtr value = JSONParse(R"({"a":[1,{"b":[]}],"c":{},"d":"x"})");
    EXPECT_EQ(Print(*value, true), R"({
  "a": [
    1,
    {
      "b": []
    }
  ],
  "c": {},
  "d": "x"
})");
    EXPECT_EQ(Print(*value), R"({"a":[1,{"b":[]}],"c":{},"d":"x"})");
}

TEST(JSONPrint, FormattedTextGrowsInProportionToTheDocument)
{
    constexpr std::size_t kDepth = 200'000;
    const ValuePtr value = JSONParse(std::string(kDepth, '[') + std::string(kDepth, ']'));
    const std::string text = Print(*value, true);
    EXPECT_LT(text.size(), kDepth * 2 * 202); // a bracket, 200 spaces and a line end
    EXPECT_NE(JSONParse(text), nullptr);
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
    EXPECT_EQ(Print(Value(Array{nullptr, std::make_shared<Value>()})), "[null,null]");
    EXPECT_EQ(Print(Value(Object{{"a", nullptr}})), "{\"a\":null}");
}

/// A random tree that has every kind of value.
Value RandomValue(std::mt19937& random, int depth)
{
    switch (random() % (depth > 0 ? 9 : 7)) {
    case 0:
        return Value();
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
            array.push_back(std::make_shared<Value>(RandomValue(random, depth - 1)));
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
    if (a.Get().index() != b.Get().index()) {
        return false;
    }
    if (const auto* const array = std::get_if<Array>(&a.Get())) {
        const auto& other = std::get<Array>(b.Get());
        return std::equal(array->begin(), array->end(), other.begin(), other.end(),
                          [](const ValuePtr& x, const ValuePtr& y) { return Same(*x, *y); });
    }
    if (const auto* const object = std::get_if<Object>(&a.Get())) {
        const auto& other = std::get<Object>(b.Get());
        return std::equal(
            object->begin(), object->end(), other.begin(), other.end(),
            [](const auto& x, const auto& y) { return x.first == y.first && Same(*x.second, *y.second); });
    }
    return a.Get() == b.Get();
}

TEST(JSONPrint, WhatWasPrintedReadsBackTheSame)
{
    for (unsigned seed = 0; seed < 3000; ++seed) {
        // NOLINTNEXTLINE(cert-msc32-c,cert-msc51-cpp): the seed is fixed so that a failure repeats.
        std::mt19937 random(seed);
        const Value value = RandomValue(random, 5);
        for (const bool formatted : {false, true}) {
            const std::string text = Print(value, formatted);
            const ValuePtr again = JSONParse(text);
            ASSERT_NE(again, nullptr) << "seed " << seed << ": " << text;
            ASSERT_TRUE(Same(value, *again)) << "seed " << seed << ": " << text;
        }
    }
}

} // namespace
