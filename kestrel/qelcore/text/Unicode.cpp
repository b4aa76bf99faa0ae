#include "Unicode.h"

#include <cstddef>
#include <cstdint>

namespace qelcore::text {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

constexpr bool IsHighSurrogate(char32_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

constexpr bool IsLowSurrogate(char32_t unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// One code point, or one broken piece that stands for U+FFFD.
struct Piece {
    char32_t codePoint;
    std::size_t length; ///< code units that it takes, at least 1
    bool wellFormed;
};

/// A lead byte's row in table 3-7 of the Unicode standard: how many bytes follow, and the range of the
/// first of them. The ranges exclude overlong forms, surrogates and what lies beyond U+10FFFF.
struct Lead {
    int following;
    unsigned char low;
    unsigned char high;
    unsigned char bits; ///< the lead's own share of the code point
};

constexpr Lead LeadOf(unsigned char byte)
{
    if (byte >= 0xC2 && byte <= 0xDF) {
        return {1, 0x80, 0xBF, static_cast<unsigned char>(byte & 0x1F)};
    }
    if (byte >= 0xE0 && byte <= 0xEF) {
        return {2, static_cast<unsigned char>(byte == 0xE0 ? 0xA0 : 0x80),
                static_cast<unsigned char>(byte == 0xED ? 0x9F : 0xBF),
                static_cast<unsigned char>(byte & 0x0F)};
    }
    if (byte >= 0xF0 && byte <= 0xF4) {
        return {3, static_cast<unsigned char>(byte == 0xF0 ? 0x90 : 0x80),
                static_cast<unsigned char>(byte == 0xF4 ? 0x8F : 0xBF),
                static_cast<unsigned char>(byte & 0x07)};
    }
    return {0, 0, 0, 0};
}

/// The piece at the start of `text`, which is not empty.
Piece Decode(std::string_view text)
{
    const auto first = static_cast<unsigned char>(text[0]);
    if (first < 0x80) {
        return {first, 1, true};
    }
    const Lead lead = LeadOf(first);
    if (lead.following == 0) {
        return {kReplacement, 1, false};
    }
    char32_t codePoint = lead.bits;
    std::size_t length = 1;
    unsigned char low = lead.low;
    unsigned char high = lead.high;
    for (int i = 0; i < lead.following; ++i) {
        if (length == text.size()) {
            return {kReplacement, length, false};
        }
        const auto byte = static_cast<unsigned char>(text[length]);
        if (byte < low || byte > high) {
            return {kReplacement, length, false};
        }
        codePoint = codePoint << 6 | (byte & 0x3FU);
        ++length;
        low = 0x80;
        high = 0xBF;
    }
    return {codePoint, length, true};
}

Piece Decode(std::u16string_view text)
{
    const char32_t first = text[0];
    if (IsHighSurrogate(first) && text.size() > 1 && IsLowSurrogate(text[1])) {
        return {0x10000 + ((first - 0xD800) << 10) + (text[1] - 0xDC00U), 2, true};
    }
    if (IsHighSurrogate(first) || IsLowSurrogate(first)) {
        return {kReplacement, 1, false};
    }
    return {first, 1, true};
}

void Append(std::u16string& text, char32_t codePoint)
{
    if (codePoint < 0x10000) {
        text += static_cast<char16_t>(codePoint);
    } else {
        text += static_cast<char16_t>(0xD800 + ((codePoint - 0x10000) >> 10));
        text += static_cast<char16_t>(0xDC00 + ((codePoint - 0x10000) & 0x3FF));
    }
}

void Append(std::string& text, char32_t codePoint)
{
    const auto continuation = [&](int shift) {
        return static_cast<char>(0x80U | (static_cast<std::uint32_t>(codePoint) >> shift & 0x3FU));
    };
    if (codePoint < 0x80) {
        text += static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        text += static_cast<char>(0xC0U | codePoint >> 6);
        text += continuation(0);
    } else if (codePoint < 0x10000) {
        text += static_cast<char>(0xE0U | codePoint >> 12);
        text += continuation(6);
        text += continuation(0);
    } else {
        text += static_cast<char>(0xF0U | codePoint >> 18);
        text += continuation(12);
        text += continuation(6);
        text += continuation(0);
    }
}

/// @return whether all of `from` was well-formed.
template <class To, class From>
bool Convert(From from, To& to)
{
    bool wellFormed = true;
    to.reserve(from.size());
    while (!from.empty()) {
        const Piece piece = Decode(from);
        wellFormed = wellFormed && piece.wellFormed;
        Append(to, piece.codePoint);
        from.remove_prefix(piece.length);
    }
    return wellFormed;
}

} // namespace

std::u16string ToUTF16(std::string_view utf8)
{
    std::u16string utf16;
    (void)Convert(utf8, utf16);
    return utf16;
}

std::string ToUTF8(std::u16string_view utf16)
{
    std::string utf8;
    (void)Convert(utf16, utf8);
    return utf8;
}

std::optional<std::u16string> ToUTF16Strict(std::string_view utf8)
{
    std::u16string utf16;
    if (!Convert(utf8, utf16)) {
        return std::nullopt;
    }
    return utf16;
}

std::string Repaired(std::string_view utf8)
{
    std::string repaired;
    (void)Convert(utf8, repaired);
    return repaired;
}

std::optional<std::string> ToUTF8Strict(std::u16string_view utf16)
{
    std::string utf8;
    if (!Convert(utf16, utf8)) {
        return std::nullopt;
    }
    return utf8;
}

} // namespace qelcore::text
