#include "UTF8StringStream.h"

#include <array>
#include <charconv>

namespace qelcore {
namespace {

template <class Integer>
void Append(std::string& text, Integer value, int base)
{
    std::array<char, 24> digits{}; // 64 bits take at most 20 digits and a sign
    const std::to_chars_result end = std::to_chars(digits.data(), digits.data() + digits.size(), value, base);
    text.append(digits.data(), end.ptr);
}

} // namespace

oUTF8StringStream& oUTF8StringStream::operator<<(std::string_view text)
{
    mText += text;
    return *this;
}

oUTF8StringStream& oUTF8StringStream::operator<<(const char* text)
{
    return text == nullptr ? *this : *this << std::string_view(text);
}

oUTF8StringStream& oUTF8StringStream::operator<<(const void* pointer)
{
    Append(mText, reinterpret_cast<std::uintptr_t>(pointer), 16);
    return *this;
}

oUTF8StringStream& oUTF8StringStream::operator<<(Base base)
{
    mBase = base;
    return *this;
}

void oUTF8StringStream::AppendSigned(std::int64_t value)
{
    Append(mText, value, static_cast<int>(mBase));
}

void oUTF8StringStream::AppendUnsigned(std::uint64_t value)
{
    Append(mText, value, static_cast<int>(mBase));
}

} // namespace qelcore
