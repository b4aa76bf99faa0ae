#include "JsonNumber.h"

#include <kestrel/qelmediatypes/Saturating.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <system_error>

namespace qelcore::serialization {
namespace {

/// The exponent that the number carries behind its mantissa, kept within 64 bits; 0 where it has none.
long long ExponentOf(std::string_view number)
{
    const std::size_t mark = number.find_first_of("eE");
    if (mark == std::string_view::npos) {
        return 0;
    }
    std::string_view text = number.substr(mark + 1);
    if (text[0] == '+') {
        text.remove_prefix(1);
    }
    long long exponent = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), exponent).ec != std::errc()) {
        using Limits = std::numeric_limits<long long>;
        return text[0] == '-' ? Limits::min() : Limits::max();
    }
    return exponent;
}

/// Whether a number that no double can hold is too small, not too large. The number is not 0, which a double
/// can hold.
bool IsTiny(std::string_view number)
{
    const std::string_view mantissa = number.substr(0, number.find_first_of("eE"));
    const auto firstDigit = static_cast<long long>(mantissa.find_first_not_of("-0."));
    const auto point = static_cast<long long>(std::min(mantissa.find('.'), mantissa.size()));
    return ExponentOf(number) < firstDigit - point;
}

/// A number in decimal: whole × 10^exponent.
struct Decimal {
    std::int64_t whole = 0;
    int exponent = 0;
};

/// The decimal of `digits` digits that is nearest to `value`, which is above 0.
Decimal NearestDecimal(double value, int digits)
{
    std::array<char, 32> text{}; // d.ddde-xx
    const char* const end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::scientific, digits - 1)
            .ptr;
    Decimal decimal;
    const char* letter = text.data();
    for (; *letter != 'e'; ++letter) {
        if (*letter != '.') {
            decimal.whole = 10 * decimal.whole + (*letter - '0');
        }
    }
    letter += letter[1] == '+' ? 2 : 1;
    std::from_chars(letter, end, decimal.exponent);
    decimal.exponent -= digits - 1;
    return decimal;
}

double DoubleOf(Decimal decimal)
{
    std::array<char, 32> text{};
    constexpr std::size_t kMostDigits = 20; // of a 64-bit integer, with its sign
    char* const last = text.data() + text.size();
    char* end = std::to_chars(text.data(), text.data() + kMostDigits, decimal.whole).ptr;
    *end++ = 'e';
    end = std::to_chars(end, last, decimal.exponent).ptr;
    double value = 0.0;
    std::from_chars(text.data(), end, value);
    return value;
}

} // namespace

std::optional<double> DoubleFromJSONNumber(std::string_view number)
{
    double value = 0.0;
    const std::from_chars_result parsed = std::from_chars(number.data(), number.data() + number.size(), value);
    if (parsed.ec != std::errc()) {
        if (!IsTiny(number)) {
            return std::nullopt;
        }
        return number[0] == '-' ? -0.0 : 0.0;
    }
    if (!std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

double ShortestDoubleOf(float value)
{
    if (!std::isfinite(value) || value == 0.0F) {
        return value;
    }
    const float magnitude = std::abs(value);
    for (int digits = 1;; ++digits) { // nine nearly always, 17 at most
        const Decimal nearest = NearestDecimal(magnitude, digits);
        // At a power of two floats lie half as dense above as below, so the nearest decimal may round to
        // another float while its neighbour above rounds to this one.
        for (const std::int64_t whole : {nearest.whole, nearest.whole + 1, nearest.whole - 1}) {
            const double candidate = DoubleOf({whole, nearest.exponent});
            if (qelmediatypes::SaturatingToFloat(candidate) == magnitude) {
                return std::copysign(candidate, static_cast<double>(value));
            }
        }
    }
}

std::string JSONNumberFromDouble(double value)
{
    if (std::isnan(value)) {
        return "0";
    }
    if (std::isinf(value)) {
        return value < 0.0 ? "-1e39" : "1e39";
    }
    std::array<char, 32> buffer{}; // the longest is -1.7976931348623157e+308, 24 characters
    const std::to_chars_result end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    std::string text(buffer.data(), end.ptr);
    if (text.find_first_of(".e") == std::string::npos) {
        text += ".0";
    }
    return text;
}

} // namespace qelcore::serialization
