#include <kestrel/qelcore/serialization/Json.h>
#include <kestrel/qelcore/serialization/JsonNumber.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <string>

namespace {

using namespace qelcore::serialization;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::string Print(double number)
{
    return GetJSONUTF8String(Value(number), false);
}

const Value::Storage& Parsed(std::string_view text)
{
    static ValuePtr value;
    value = JSONParse(text);
    static const Value::Storage kNothing;
    return value == nullptr ? kNothing : value->Get();
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
        const ValuePtr again = JSONParse(text);
        ASSERT_NE(again, nullptr) << text;
        ASSERT_TRUE(std::holds_alternative<double>(again->Get())) << text;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(std::get<double>(again->Get())), bits) << text;
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
        const ValuePtr again = JSONParse(Print(number)); // infinities included
        ASSERT_NE(again, nullptr) << number;
        ASSERT_EQ(std::bit_cast<std::uint32_t>(AsFloat(again, "")), bits) << number;
    }
}

TEST(JsonNumber, WholeDoublesStayDoubles)
{
    for (const double number :
         {0.0, -0.0, 1.0, -333.0, 1e15, 1e22, 9007199254740993.0, 18446744073709551616.0}) {
        const std::string text = Print(number);
        EXPECT_TRUE(std::holds_alternative<double>(Parsed(text))) << text;
        EXPECT_EQ(std::signbit(std::get<double>(Parsed(text))), std::signbit(number)) << text;
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
    EXPECT_EQ(std::get<std::int64_t>(Parsed("0")), 0);
    EXPECT_EQ(std::get<std::int64_t>(Parsed("-0")), 0);
    EXPECT_EQ(std::get<std::int64_t>(Parsed("9223372036854775807")), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(std::get<std::int64_t>(Parsed("-9223372036854775808")), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(std::get<std::uint64_t>(Parsed("9223372036854775808")), std::uint64_t{1} << 63);
    EXPECT_EQ(std::get<std::uint64_t>(Parsed("18446744073709551615")),
              std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(std::get<double>(Parsed("18446744073709551616")), 0x1p64);
    EXPECT_EQ(std::get<double>(Parsed("-9223372036854775809")), -0x1p63);
    EXPECT_EQ(std::get<double>(Parsed("333.0")), 333.0);
    EXPECT_EQ(std::get<double>(Parsed("3e2")), 300.0);
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
        EXPECT_EQ(JSONParse(text, &error), nullptr) << text;
        EXPECT_NE(error.find("too large"), std::string::npos) << error;
    }
}

TEST(JsonNumber, TooSmallIsZeroOfItsSign)
{
    const std::string manyZeros = "0." + std::string(400, '0') + "1";
    for (const std::string& text : {std::string("1e-400"), std::string("1e-999999999999999999999"), manyZeros,
                                    manyZeros + "e10", std::string("1000000.5e-400"), std::string("2e-324")}) {
        EXPECT_EQ(std::bit_cast<std::uint64_t>(std::get<double>(Parsed(text))), 0U) << text;
        EXPECT_EQ(std::bit_cast<std::uint64_t>(std::get<double>(Parsed("-" + text))), std::uint64_t{1} << 63)
            << text;
    }
    EXPECT_EQ(std::get<double>(Parsed("3e-324")), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(std::get<double>(Parsed("0e999999999999")), 0.0);
}

TEST(JsonNumber, LongMantissasAndExponentsCancel)
{
    EXPECT_EQ(std::get<double>(Parsed("1" + std::string(400, '0') + "e-400")), 1.0);
    EXPECT_EQ(std::get<double>(Parsed("0." + std::string(399, '0') + "1e400")), 1.0);
    EXPECT_EQ(std::get<double>(Parsed("1e+00000000000000000000000000000000002")), 100.0);
}

// What the conversion is given is a number in JSON's notation: it need not refuse others.
TEST(JsonNumber, ConversionKnowsNeitherLocaleNorLimitsOfLength)
{
    EXPECT_EQ(DoubleFromJSONNumber("0." + std::string(100'000, '3')), 1.0 / 3.0);
    EXPECT_EQ(DoubleFromJSONNumber("1.7976931348623157e308"), std::numeric_limits<double>::max());
    EXPECT_EQ(DoubleFromJSONNumber("1.7976931348623159e308"), std::nullopt);
}

} // namespace
