// Numbers in texts do not depend on the process's locale.
#include <kestrel/qelcore/serialization/Json.h>

#include <gtest/gtest.h>
#include <support/TemporaryFolder.h>

#include <clocale>
#include <cstdlib>
#include <string>

namespace {

using namespace qelcore::serialization;

/// Switches the process to a locale with a decimal comma: one that the system has, or else one that it can
/// make.
class CommaLocale {
public:
    CommaLocale() : mBefore(std::setlocale(LC_ALL, nullptr))
    {
        for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "de_DE", "fr_FR"}) {
            if (std::setlocale(LC_ALL, name) != nullptr) {
                return;
            }
        }
        const std::string command =
            "localedef -i de_DE -f UTF-8 '" + (mFolder / "de_DE.UTF-8").string() + "' >/dev/null 2>&1";
        if (std::system(command.c_str()) == 0) {
            setenv("LOCPATH", mFolder.Path().c_str(), 1);
            (void)std::setlocale(LC_ALL, "de_DE.UTF-8");
            unsetenv("LOCPATH");
        }
    }
    ~CommaLocale() { (void)std::setlocale(LC_ALL, mBefore.c_str()); }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

    [[nodiscard]] bool IsThere() const { return std::strtod("1,5", nullptr) == 1.5; }

private:
    std::string mBefore;
    test::TemporaryFolder mFolder;
};

TEST(JsonLocale, NumbersAreTheSameUnderADecimalComma)
{
    const CommaLocale locale;
    if (!locale.IsThere()) {
        GTEST_SKIP() << "no locale with a decimal comma, nor the means to make one";
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
