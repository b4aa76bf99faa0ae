#include <kestrel/qelcore/exceptions/Exceptions.h>
#include <kestrel/qelcore/serialization/Json.h>

#include <gtest/gtest.h>

#include <random>

namespace {

using namespace qelcore::serialization;

std::string Encode(std::string_view text)
{
    return EncodeBinaryDataToUTF8String({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

// RFC 4648, section 10.
TEST(Base64, EncodesTheStandardsExamples)
{
    EXPECT_EQ(Encode(""), "");
    EXPECT_EQ(Encode("f"), "Zg==");
    EXPECT_EQ(Encode("fo"), "Zm8=");
    EXPECT_EQ(Encode("foo"), "Zm9v");
    EXPECT_EQ(Encode("foob"), "Zm9vYg==");
    EXPECT_EQ(Encode("fooba"), "Zm9vYmE=");
    EXPECT_EQ(Encode("foobar"), "Zm9vYmFy");
    EXPECT_EQ(Encode("\xFB\xFF\xBF"), "+/+/");
}

TEST(Base64, DecodesWhatItEncoded)
{
    // NOLINTNEXTLINE(cert-msc32-c,cert-msc51-cpp): the seed is fixed so that a failure repeats.
    std::mt19937 random(1);
    for (std::size_t size = 0; size < 200; ++size) {
        std::vector<std::uint8_t> bytes(size);
        for (std::uint8_t& byte : bytes) {
            byte = static_cast<std::uint8_t>(random());
        }
        EXPECT_EQ(DecodeBinaryDataFromUTF8String(EncodeBinaryDataToUTF8String(bytes)), bytes) << size;
    }
}

TEST(Base64, RefusesWhatNoEncoderWrites)
{
    for (const char* text : {"Z", "Zg", "Zg=", "Zg==Zg==", "Zm9v=", "====", "Z===", "=g==", "Zm9 ", "Zm9v\n",
                             "Zm_v", "Zg=g", "Zh==", "Zm9=", "\xC3\xA4==", "Zm9vYg==x"}) {
        EXPECT_THROW((void)DecodeBinaryDataFromUTF8String(text), parse_exception) << text;
    }
}

} // namespace
