// Numbers in texts do not depend on the process's locale.
#include <kestrel/qelcore/serialization/Json.h>

#include <gtest/gtest.h>
#include <support/CommaLocale.h>

#include <string>

namespace {

using namespace qelcore::serialization;

TEST(JsonLocale, NumbersAreTheSameUnderADecimalComma)
{
    const test::CommaLocale locale;
    if (!locale.IsInForce()) {
        GTEST_SKIP() << "no locale with a decimal comma can be made here";
    }
    const std::string text = "[1.5,-0.25,1e-05,123456789.125,1.7976931348623157e+308]";
    const Value value = JSONParse(text);
    ASSERT_FALSE(value.IsNothing());
    const Elements numbers = AsArray(value, "");
    EXPECT_EQ(AsNumber(numbers[0], ""), 1.5);
    EXPECT_EQ(AsNumber(numbers[1], ""), -0.25);
    EXPECT_EQ(AsNumber(numbers[2], ""), 0.00001);
    EXPECT_EQ(GetJSONUTF8String(value, false), text);
    EXPECT_TRUE(JSONParse("[1,5.5]").IsArray());
    EXPECT_TRUE(JSONParse("1e999").IsNothing());
    EXPECT_TRUE(JSONParse("1,5").IsNothing());
}

} // namespace
