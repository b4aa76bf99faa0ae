#include "Json.h"

#include <kestrel/qelcore/exceptions/Exceptions.h>

#include <algorithm>
#include <cstddef>

namespace qelcore::serialization {
namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char kPadding = '=';

/// The six bits of one letter.
std::uint32_t BitsOf(char letter)
{
    const std::size_t bits = kAlphabet.find(letter);
    if (bits == std::string_view::npos) {
        throw parse_exception("binary data in a text must be in base 64");
    }
    return static_cast<std::uint32_t>(bits);
}

} // namespace

std::string EncodeBinaryDataToUTF8String(std::span<const std::uint8_t> bytes)
{
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        std::uint32_t group = 0;
        for (std::size_t k = 0; k < 3; ++k) {
            group = group << 8 | (k < count ? bytes[i + k] : 0U);
        }
        // n bytes take n + 1 letters; padding fills the group of four.
        for (std::size_t k = 0; k < 4; ++k) {
            text += k <= count ? kAlphabet[group >> (18 - 6 * k) & 0x3F] : kPadding;
        }
    }
    return text;
}

std::vector<std::uint8_t> DecodeBinaryDataFromUTF8String(std::string_view text)
{
    if (text.size() % 4 != 0) {
        throw parse_exception("binary data in a text must be in base 64, padded to groups of four letters");
    }
    std::vector<std::uint8_t> bytes;
    bytes.reserve(text.size() / 4 * 3);
    for (std::size_t i = 0; i < text.size(); i += 4) {
        const std::string_view group = text.substr(i, 4);
        std::size_t letters = 4;
        if (i + 4 == text.size()) {
            // Only the last group may be padded, and by two letters at most.
            letters = group[3] != kPadding ? 4 : group[2] != kPadding ? 3 : 2;
        }
        std::uint32_t bits = 0;
        for (std::size_t k = 0; k < 4; ++k) {
            bits = bits << 6 | (k < letters ? BitsOf(group[k]) : 0U);
        }
        // The bits that a padded group has too many are 0, or two texts would stand for the same bytes.
        const std::uint32_t spare = letters == 4 ? 0 : letters == 3 ? 0xFF : 0xFFFF;
        if ((bits & spare) != 0) {
            throw parse_exception("binary data in a text must be in base 64, its spare bits 0");
        }
        for (std::size_t k = 0; k + 1 < letters; ++k) {
            bytes.push_back(static_cast<std::uint8_t>(bits >> (16 - 8 * k)));
        }
    }
    return bytes;
}

} // namespace qelcore::serialization
