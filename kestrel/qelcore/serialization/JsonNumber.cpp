#include "JsonNumber.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
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

/// Whether a number that no double can hold is so because it is too small, not too large. It has a digit
/// other than 0, for every zero can be held.
bool IsTiny(std::string_view number)
{
    const std::string_view mantissa = number.substr(0, number.find_first_of("eE"));
    const auto firstDigit = static_cast<long long>(mantissa.find_first_not_of("-0."));
    const auto point = static_cast<long long>(std::min(mantissa.find('.'), mantissa.size()));
    return ExponentOf(number) < firstDigit - point;
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
