#include <kestrel/qelcore/exceptions/Exceptions.h>

#include <gtest/gtest.h>

namespace {

using namespace qelcore;
using namespace qelcore::serialization;

TEST(Exceptions, MissingKeyIsEverythingItDerivesFrom)
{
    const missing_key_exception exception("mFrameWidth", "TesselInfo");
    EXPECT_EQ(exception.Key(), "mFrameWidth");
    EXPECT_STREQ(exception.what(), "\"mFrameWidth\": missing key of TesselInfo");
    EXPECT_EQ(exception.Message(), exception.what());
    const auto isCaughtAs = [&](auto* type) {
        try {
            throw exception;
        } catch (const std::remove_pointer_t<decltype(type)>&) {
            return true;
        } catch (...) {
            return false;
        }
    };
    EXPECT_TRUE(isCaughtAs(static_cast<parse_exception*>(nullptr)));
    EXPECT_TRUE(isCaughtAs(static_cast<Exception*>(nullptr)));
    EXPECT_TRUE(isCaughtAs(static_cast<std::runtime_error*>(nullptr)));
    EXPECT_FALSE(isCaughtAs(static_cast<std::bad_any_cast*>(nullptr)));
}

TEST(Exceptions, APathIsInTheMessageAndItsLastKeyIsTheKey)
{
    const missing_key_exception missing("mUpperFieldColor.mRedPart", "FloatColor");
    EXPECT_EQ(missing.Key(), "mRedPart");
    EXPECT_STREQ(missing.what(), "\"mUpperFieldColor.mRedPart\": missing key of FloatColor");
    const type_exception wrong("mColorSpace.colorSpaceMetadata.peakLuminance", "a number");
    EXPECT_EQ(wrong.Key(), "peakLuminance");
    EXPECT_STREQ(wrong.what(), "\"mColorSpace.colorSpaceMetadata.peakLuminance\": expected a number");
}

TEST(Exceptions, TypeErrorIsABadAnyCastThatNamesKeyAndType)
{
    try {
        throw type_exception("mFrameWidth", "an integer");
    } catch (const std::bad_any_cast& exception) {
        EXPECT_STREQ(exception.what(), "\"mFrameWidth\": expected an integer");
    }
}

TEST(Exceptions, BaseIsNoStandardException)
{
    EXPECT_FALSE((std::is_base_of_v<std::exception, Exception>));
    EXPECT_TRUE((std::is_base_of_v<std::runtime_error, null_pointer_exception>));
    EXPECT_NE(std::string(null_pointer_exception("UI_Popup").what()).find("UI_Popup"), std::string::npos);
}

} // namespace
