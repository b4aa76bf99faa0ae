#include <kestrel/qelcore/serialization/Json.h>
#include <kestrel/qelcore/serialization/JsonNumber.h>

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace {

using namespace qelcore::serialization;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::string Print(double number)
{
    return GetJSONUTF8String(Value(number), false);
}

/// A parsed number of exactly that type; the test fails where it has another one.
template <class Number>
Number Parsed(std::string_view text)
{
    const Value value = JSONParse(text);
    constexpr bool isDouble = std::is_same_v<Number, double>;
    constexpr bool isSigned = std::is_same_v<Number, std::int64_t>;
    EXPECT_EQ(value.GetKind(), isDouble   ? Value::Kind::Number
                               : isSigned ? Value::Kind::Signed
                                          : Value::Kind::Unsigned)
        << text;
    if constexpr (isDouble) {
        return AsNumber(value, "");
    } else {
        return static_cast<Number>(AsInteger(value, ""));
    }
}

TEST(JsonNumber, DoublesReadBackBitForBit)
{
    // NOLINTNEXTLINE(cert-msc32-c,cert-msc51-cpp): the seed is fixed so that a failure repeats.
    std::mt19937_64 random(7);
    for (int i = 0; i < 200'000; ++i) {
        const std::uint64_t bits = random();
        const auto number = std::bit_cast<double>(bits);
        if (!std::isfinite(number)) {
            continue;
        }
        const std::string text = Print(number);
        const Value again = JSONParse(text);
        ASSERT_FALSE(again.IsNothing()) << text;
        ASSERT_EQ(again.GetKind(), Value::Kind::Number) << text;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(AsNumber(again, "")), bits) << text;
    }
}

TEST(JsonNumber, FloatsReadBackBitForBit)
{
    // NOLINTNEXTLINE(cert-msc32-c,cert-msc51-cpp): the seed is fixed so that a failure repeats.
    std::mt19937 random(8);
    for (int i = 0; i < 100'000; ++i) {
        const auto bits = static_cast<std::uint32_t>(random());
        const auto number = std::bit_cast<float>(bits);
        if (std::isnan(number)) {
            continue;
        }
        const Value again = JSONParse(Print(number)); // infinities included
        ASSERT_FALSE(again.IsNothing()) << number;
        ASSERT_EQ(std::bit_cast<std::uint32_t>(AsFloat(again, "")), bits) << number;
    }
}

/// The significant digits of a number as it is printed.
std::size_t DigitCount(double number)
{
    std::string text = Print(number);
    text = text.substr(0, text.find('e'));
    std::string digits;
    for (const char letter : text) {
        if (letter >= '0' && letter <= '9' && !(digits.empty() && letter == '0')) {
            digits += letter;
        }
    }
    while (!digits.empty() && digits.back() == '0') {
        digits.pop_back();
    }
    return digits.size();
}

/// Whether some decimal of that many digits, read as a double, rounds to `value`. Tries those next to it.
bool HasDecimal(float value, int digits)
{
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%.*e", digits - 1, static_cast<double>(value));
    const double step = std::pow(10.0, std::atoi(std::strchr(text.data(), 'e') + 1) - (digits - 1));
    for (const int steps : {-2, -1, 0, 1, 2}) {
        std::snprintf(text.data(), text.size(), "%.*e", digits - 1, static_cast<double>(value) + steps * step);
        if (static_cast<float>(std::strtod(text.data(), nullptr)) == value) {
            return true;
        }
    }
    return false;
}

TEST(JsonNumber, FloatsHaveTheShortestDecimalThatReadsBackThroughADouble)
{
    // NOLINTNEXTLINE(cert-msc32-c,cert-msc51-cpp): the seed is fixed so that a failure repeats.
    std::mt19937 random(14);
    std::vector<float> floats{0.1F, 0.95F, 1.0F / 3.0F, 16777216.0F, 1e-45F, 1.17549435e-38F, 3.4028235e38F};
    for (int exponent = -126; exponent < 127; ++exponent) {
        // Powers of two, where the floats on either side are not equally far.
        floats.push_back(std::ldexp(1.0F, exponent));
    }
    for (int i = 0; i < 20'000; ++i) {
        floats.push_back(std::bit_cast<float>(static_cast<std::uint32_t>(random()) & 0x7FFF'FFFFU));
    }
    for (const float value : floats) {
        if (!std::isfinite(value) || value > 1e38F) { // the reference's neighbours would overflow there
            continue;
        }
        const double number = ShortestDoubleOf(value);
        ASSERT_EQ(static_cast<float>(number), value) << number;
        const auto digits = static_cast<int>(DigitCount(number));
        ASSERT_FALSE(digits > 1 && HasDecimal(value, digits - 1)) << Print(number);
        ASSERT_EQ(ShortestDoubleOf(-value), -number);
    }
}

TEST(JsonNumber, FloatsWithoutADecimalOfTheirOwnStayWhatTheyAre)
{
    constexpr float kFloatInfinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(Print(ShortestDoubleOf(-0.0F)), "-0.0");
    EXPECT_EQ(Print(ShortestDoubleOf(0.0F)), "0.0");
    EXPECT_EQ(ShortestDoubleOf(kFloatInfinity), kInfinity);
    EXPECT_EQ(ShortestDoubleOf(-kFloatInfinity), -kInfinity);
    EXPECT_TRUE(std::isnan(ShortestDoubleOf(std::numeric_limits<float>::quiet_NaN())));
    EXPECT_EQ(Print(ShortestDoubleOf(std::numeric_limits<float>::max())), "3.4028235e+38");
}

TEST(JsonNumber, WholeDoublesStayDoubles)
{
    for (const double number :
         {0.0, -0.0, 1.0, -333.0, 1e15, 1e22, 9007199254740993.0, 18446744073709551616.0}) {
        const std::string text = Print(number);
        EXPECT_EQ(std::signbit(Parsed<double>((text))), std::signbit(number)) << text;
    }
    EXPECT_EQ(Print(1.0), "1.0");
    EXPECT_EQ(Print(0.1), "0.1");
}

TEST(JsonNumber, InfinityAndNaNHaveStandIns)
{
    EXPECT_EQ(Print(kInfinity), "1e39");
    EXPECT_EQ(Print(-kInfinity), "-1e39");
    EXPECT_EQ(Print(std::numeric_limits<double>::quiet_NaN()), "0");
    EXPECT_EQ(AsFloat(JSONParse("1e39"), ""), std::numeric_limits<float>::infinity());
    EXPECT_EQ(AsFloat(JSONParse("-1e39"), ""), -std::numeric_limits<float>::infinity());
    EXPECT_EQ(AsFloat(JSONParse("0"), ""), 0.0F);
}

TEST(JsonNumber, IntegersAreSignedWhereTheyFitElseUnsignedElseDoubles)
{
    EXPECT_EQ(Parsed<std::int64_t>(("0")), 0);
    EXPECT_EQ(Parsed<std::int64_t>(("-0")), 0);
    EXPECT_EQ(Parsed<std::int64_t>(("9223372036854775807")), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(Parsed<std::int64_t>(("-9223372036854775808")), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(Parsed<std::uint64_t>(("9223372036854775808")), std::uint64_t{1} << 63);
    EXPECT_EQ(Parsed<std::uint64_t>(("18446744073709551615")), std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(Parsed<double>(("18446744073709551616")), 0x1p64);
    EXPECT_EQ(Parsed<double>(("-9223372036854775809")), -0x1p63);
    EXPECT_EQ(Parsed<double>(("333.0")), 333.0);
    EXPECT_EQ(Parsed<double>(("3e2")), 300.0);
    EXPECT_EQ(GetJSONUTF8String(Value(std::numeric_limits<std::uint64_t>::max()), false),
              "18446744073709551615");
    EXPECT_EQ(GetJSONUTF8String(Value(std::numeric_limits<std::int64_t>::min()), false),
              "-9223372036854775808");
}

TEST(JsonNumber, TooLargeIsMalformed)
{
    const std::string manyDigits = "1" + std::string(400, '0');
    for (const std::string& text :
         {std::string("1e309"), std::string("-1e309"), std::string("1e999999999999999999999"),
          std::string("0.00001e400"), manyDigits, manyDigits + ".5", manyDigits + "e-10"}) {
        std::string error;
        EXPECT_TRUE(JSONParse(text, &error).IsNothing()) << text;
        EXPECT_NE(error.find("too large"), std::string::npos) << error;
    }
}

TEST(JsonNumber, TooSmallIsZeroOfItsSign)
{
    const std::string manyZeros = "0." + std::string(400, '0') + "1";
    for (const std::string& text : {std::string("1e-400"), std::string("1e-999999999999999999999"), manyZeros,
                                    manyZeros + "e10", std::string("1000000.5e-400"), std::string("2e-324")}) {
        EXPECT_EQ(std::bit_cast<std::uint64_t>(Parsed<double>((text))), 0U) << text;
        EXPECT_EQ(std::bit_cast<std::uint64_t>(Parsed<double>(("-" + text))), std::uint64_t{1} << 63) << text;
    }
    EXPECT_EQ(Parsed<double>(("3e-324")), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(Parsed<double>(("0e999999999999")), 0.0);
}

TEST(JsonNumber, LongMantissasAndExponentsCancel)
{
    EXPECT_EQ(Parsed<double>(("1" + std::string(400, '0') + "e-400")), 1.0);
    EXPECT_EQ(Parsed<double>(("0." + std::string(399, '0') + "1e400")), 1.0);
    EXPECT_EQ(Parsed<double>(("1e+00000000000000000000000000000000002")), 100.0);
}

// What the conversion is given is a number in JSON's notation: it need not refuse others.
TEST(JsonNumber, ConversionKnowsNeitherLocaleNorLimitsOfLength)
{
    EXPECT_EQ(DoubleFromJSONNumber("0." + std::string(100'000, '3')), 1.0 / 3.0);
    EXPECT_EQ(DoubleFromJSONNumber("1.7976931348623157e308"), std::numeric_limits<double>::max());
    EXPECT_EQ(DoubleFromJSONNumber("1.7976931348623159e308"), std::nullopt);
}

} // namespace
