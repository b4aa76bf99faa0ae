#include <kestrel/qelcore/text/UTF8StringStream.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace {

using qelcore::oUTF8StringStream;

TEST(UTF8StringStream, PointersAreBareHexadecimalDigitsInEitherBase)
{
    const void* const pointer = reinterpret_cast<const void*>(std::uintptr_t{0x7F00ABCD});
    oUTF8StringStream stream;
    stream << "0x" << pointer << ' ' + std::string() << oUTF8StringStream::Base::Hexadecimal << pointer << " "
           << static_cast<const void*>(nullptr);
    EXPECT_EQ(stream.Str(), "0x7f00abcd 7f00abcd 0");
}

TEST(UTF8StringStream, NumbersFollowTheBaseThatWasSetLast)
{
    oUTF8StringStream stream;
    stream << 255 << oUTF8StringStream::Base::Hexadecimal << " " << 255 << " " << -255
           << oUTF8StringStream::Base::Decimal << " " << 255U;
    EXPECT_EQ(stream.Str(), "255 ff -ff 255");
}

TEST(UTF8StringStream, NumbersReachBothEnds)
{
    oUTF8StringStream stream;
    stream << std::numeric_limits<std::int64_t>::min() << " " << std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(stream.Str(), "-9223372036854775808 18446744073709551615");
}

TEST(UTF8StringStream, TextsAreTextsWhateverTheyAreHeldIn)
{
    const char* const pointer = "pointer";
    oUTF8StringStream stream;
    stream << "literal " << std::string("string ") << std::string_view("view ") << pointer;
    EXPECT_EQ(stream.Str(), "literal string view pointer");
}

TEST(UTF8StringStream, NoTextAddsNothing)
{
    oUTF8StringStream stream;
    stream << "before" << static_cast<const char*>(nullptr) << "after";
    EXPECT_EQ(stream.Str(), "beforeafter");
}

} // namespace
