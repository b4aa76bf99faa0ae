#include "SequenceOptions.h"

#include "Commands.h"

#include <charconv>
#include <concepts>
#include <limits>
#include <numeric>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

namespace tessel::cli {
namespace {

constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();

/// Digits only, 1..`kMost`.
std::optional<std::int64_t> ParsePositive(std::string_view text)
{
    std::int64_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || stop != end || value < 1 || value > kMost) {
        return std::nullopt;
    }
    return value;
}

using Pair = std::pair<std::int64_t, std::int64_t>;

std::optional<Pair> ParsePair(std::string_view text, char separator)
{
    const auto middle = text.find(separator);
    if (middle == std::string_view::npos) {
        return std::nullopt;
    }
    const auto first = ParsePositive(text.substr(0, middle));
    const auto second = ParsePositive(text.substr(middle + 1));
    return first && second ? std::optional(Pair{*first, *second}) : std::nullopt;
}

/// "12.5" as 25/2: the digits over a power of ten, reduced.
std::optional<Pair> ParseDecimal(std::string_view text)
{
    const auto point = text.find('.');
    const std::string_view decimals = point == std::string_view::npos ? "" : text.substr(point + 1);
    if (point == 0 || decimals.size() > 6 || (point != std::string_view::npos && decimals.empty())) {
        return std::nullopt;
    }
    std::int64_t denominator = 1;
    for (std::size_t digit = 0; digit < decimals.size(); ++digit) {
        denominator *= 10;
    }
    const auto numerator = ParsePositive(std::string(text.substr(0, point)) + std::string(decimals));
    if (!numerator) {
        return std::nullopt;
    }
    const std::int64_t divisor = std::gcd(*numerator, denominator);
    return Pair{*numerator / divisor, denominator / divisor};
}

std::optional<Pair> ParseRate(std::string_view text)
{
    struct Rounding {
        std::string_view text;
        std::int64_t wholeRate;
    };
    constexpr Rounding kRoundings[] = {{"23.976", 24}, {"23.98", 24}, {"29.97", 30},
                                       {"47.952", 48}, {"59.94", 60}, {"119.88", 120}};
    for (const Rounding& rounding : kRoundings) {
        if (text == rounding.text) {
            return Pair{rounding.wholeRate * 1000, 1001};
        }
    }
    const auto pair = ParsePair(text, '/');
    return pair ? pair : ParseDecimal(text);
}

template <std::integral Number>
void Store(const std::optional<Pair>& pair, Number& first, Number& second, const std::string& complaint)
{
    if (!pair) {
        throw UsageError(complaint);
    }
    first = static_cast<Number>(pair->first);
    second = static_cast<Number>(pair->second);
}

} // namespace

importhost::SequenceValues ParseSequenceValues(std::string_view size, std::string_view rate,
                                               std::string_view pixelAspect)
{
    importhost::SequenceValues values;
    Store(ParsePair(size, 'x'), values.width, values.height,
          "--size is a width and a height such as 1920x1080, not \"" + std::string(size) + '"');
    Store(ParseRate(rate), values.timeScale, values.sampleSize,
          "--rate is frames per second such as 25, 29.97 or 30000/1001, not \"" + std::string(rate) + '"');
    const auto whole = ParsePositive(pixelAspect);
    Store(whole ? std::optional(Pair{*whole, 1}) : ParsePair(pixelAspect, '/'), values.parNumerator,
          values.parDenominator,
          "--par is a pixel aspect ratio such as 10/11, not \"" + std::string(pixelAspect) + '"');
    return values;
}

} // namespace tessel::cli
