#include "ValueReaders.h"

#include "Names.h"
#include "RequiredRow.h"
#include "SettingError.h"

#include <kestrel/qelmediatypes/PixelAspectRatio.h>
#include <kestrel/qelmediatypes/TickTime.h>
#include <tessel/document/settings/FrameRates.h>
#include <tessel/export/ExportError.h>
#include <tessel/export/plan/Names.h>
#include <tessel/export/plan/Timecode.h>

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <numeric>
#include <optional>
#include <string>
#include <system_error>

namespace tessel::typed {
namespace {

using exporting::IsSameName;

constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();

[[noreturn]] void Refuse(std::string_view expected, std::string_view text)
{
    throw SettingError(fmt::format("must be {}, not \"{}\"", expected, text));
}

/// All of a text as a number.
template <class Number>
std::optional<Number> Parse(std::string_view text)
{
    Number value{};
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc{} && stop == end ? std::optional(value) : std::nullopt;
}

std::optional<double> ParseFinite(std::string_view text)
{
    const std::optional<double> number = Parse<double>(text);
    return number && std::isfinite(*number) ? number : std::nullopt;
}

/// Digits only, 1..`kMost`.
std::optional<std::int64_t> ParsePositive(std::string_view text)
{
    const auto value = Parse<std::int64_t>(text);
    return value && *value >= 1 && *value <= kMost ? value : std::nullopt;
}

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
    // 24000/1001 has two usual roundings.
    const std::string_view name = text == "23.98" ? "23.976" : text;
    for (const document::NamedFrameRate& rate : document::NamedFrameRates()) {
        if (rate.name == name) {
            return Pair{rate.numerator, rate.denominator};
        }
    }
    const auto pair = ParsePair(text, '/');
    return pair ? pair : ParseDecimal(text);
}

/// Frames from 00:00:00:00 to a timecode, at the rate of so many ticks a frame. @throws SettingError
std::int64_t ReadTimecode(std::string_view text, std::int64_t ticksPerFrame)
{
    const std::int64_t divisor = std::gcd(ticksPerFrame, qelmediatypes::kTicksPerSecond);
    const std::int64_t numerator = qelmediatypes::kTicksPerSecond / divisor;
    const std::int64_t denominator = ticksPerFrame / divisor;
    const bool fits = numerator <= kMost && denominator <= kMost;
    const auto rateNumerator = static_cast<std::int32_t>(fits ? numerator : 0);
    const auto rateDenominator = static_cast<std::int32_t>(fits ? denominator : 1);
    if (!exporting::Timecode::Counts(rateNumerator, rateDenominator)) {
        Refuse("frames or a time such as 250f or 10s, as the clip's rate has no timecodes", text);
    }
    try {
        return exporting::Timecode::Parse(text, rateNumerator, rateDenominator).FrameNumber();
    } catch (const exporting::RequestError& error) {
        throw SettingError(error.what());
    }
}

/// Ticks of "1.5s"; nothing for what is no time or lies beyond a year.
std::optional<std::int64_t> ParseTime(std::string_view text)
{
    struct Unit {
        std::string_view name;
        double seconds;
    };
    constexpr std::array<Unit, 4> kUnits{{{"ms", 0.001}, {"s", 1}, {"m", 60}, {"h", 3600}}};
    constexpr double kMostSeconds = 366.0 * 24 * 3600;
    for (const Unit& unit : kUnits) {
        if (!text.ends_with(unit.name)) {
            continue;
        }
        const auto number = ParseFinite(text.substr(0, text.size() - unit.name.size()));
        if (number && *number >= 0 && *number * unit.seconds <= kMostSeconds) {
            const double ticks = *number * unit.seconds * static_cast<double>(qelmediatypes::kTicksPerSecond);
            return std::llround(ticks);
        }
    }
    return std::nullopt;
}

std::vector<std::string_view> Split(std::string_view text, std::string_view separators)
{
    std::vector<std::string_view> parts;
    std::size_t begin = 0;
    while ((begin = text.find_first_not_of(separators, begin)) != std::string_view::npos) {
        const std::size_t end = std::min(text.find_first_of(separators, begin), text.size());
        parts.push_back(text.substr(begin, end - begin));
        begin = end;
    }
    return parts;
}

std::optional<Color> ParseHexColor(std::string_view text)
{
    if (text.size() != 7 || text.front() != '#') {
        return std::nullopt;
    }
    Color color{0, 0, 0, 1};
    for (std::size_t part = 0; part < 3; ++part) {
        const std::string_view digits = text.substr(1 + 2 * part, 2);
        unsigned code = 0;
        const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), code, 16);
        if (error != std::errc{} || stop != digits.data() + digits.size()) {
            return std::nullopt;
        }
        color[part] = static_cast<float>(code) / 255.0F;
    }
    return color;
}

std::optional<Color> ParseColor(std::string_view text)
{
    struct Bar {
        std::string_view name;
        Color color;
    };
    constexpr std::array<Bar, 8> kBars{{{"white", {1, 1, 1, 1}},
                                        {"yellow", {1, 1, 0, 1}},
                                        {"cyan", {0, 1, 1, 1}},
                                        {"green", {0, 1, 0, 1}},
                                        {"magenta", {1, 0, 1, 1}},
                                        {"red", {1, 0, 0, 1}},
                                        {"blue", {0, 0, 1, 1}},
                                        {"black", {0, 0, 0, 1}}}};
    for (const Bar& bar : kBars) {
        if (IsSameName(bar.name, text)) {
            return bar.color;
        }
    }
    if (const auto color = ParseHexColor(text)) {
        return color;
    }
    const auto parts = Split(text, ",");
    Color color{0, 0, 0, 1};
    if (parts.size() < 3 || parts.size() > color.size()) {
        return std::nullopt;
    }
    for (std::size_t part = 0; part < parts.size(); ++part) {
        const auto number = ParseFinite(parts[part]);
        if (!number || std::abs(*number) > std::numeric_limits<float>::max()) {
            return std::nullopt;
        }
        color[part] = static_cast<float>(*number);
    }
    return color;
}

} // namespace

Pair ReadSize(std::string_view text)
{
    const auto pair = ParsePair(text, 'x');
    if (!pair) {
        Refuse("a width and a height such as 1920x1080", text);
    }
    return *pair;
}

Pair ReadRate(std::string_view text)
{
    const auto rate = ParseRate(text);
    if (!rate) {
        Refuse("frames per second such as 25, 29.97 or 30000/1001", text);
    }
    return *rate;
}

Pair ReadPixelAspect(std::string_view text)
{
    for (const qelmediatypes::NamedPixelAspectRatio& named : qelmediatypes::kNamedPixelAspectRatios) {
        if (IsSameName(PixelAspectName(named.ratio), text)) {
            return {named.ratio.GetNumerator(), named.ratio.GetDenominator()};
        }
    }
    const auto whole = ParsePositive(text);
    const auto ratio = whole ? std::optional(Pair{*whole, 1}) : ParsePair(text, '/');
    if (!ratio) {
        RefuseWord(text, "a pixel aspect ratio such as 10/11, or a name such as dvntsc", PixelAspectChoices());
    }
    return *ratio;
}

std::int64_t ReadDuration(std::string_view text, std::int64_t ticksPerFrame)
{
    std::optional<std::int64_t> frames;
    if (text.ends_with('f')) {
        frames = ParsePositive(text.substr(0, text.size() - 1));
    } else if (text.find(':') != std::string_view::npos) {
        frames = ReadTimecode(text, ticksPerFrame);
    } else if (const auto ticks = ParseTime(text)) {
        frames = (*ticks + ticksPerFrame / 2) / ticksPerFrame;
    }
    if (!frames || *frames < 1 || *frames > kMost) {
        Refuse(
            "at least one frame, in frames, time, or a timecode of the clip's rate, such as 250f, 10s, 2m or "
            "00:00:10:00",
            text);
    }
    return qelmediatypes::TickTime(*frames, {ticksPerFrame}).Ticks();
}

std::vector<Color> ReadColors(std::string_view text)
{
    std::vector<Color> colors;
    for (const std::string_view part : Split(text, " /")) {
        const auto color = ParseColor(part);
        if (!color) {
            Refuse("colours such as 1,0.5,0.25 or #ff8000 or red, with / between", part);
        }
        colors.push_back(*color);
    }
    return colors;
}

Tone ReadTone(std::string_view text)
{
    if (text == "silence") {
        return {1000.0F, 0.0F};
    }
    const std::size_t colon = text.find(':');
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    const double frequency = ParseFinite(text.substr(0, colon)).value_or(kNone);
    const std::string_view levelText = colon == std::string_view::npos ? "" : text.substr(colon + 1);
    const double level = ParseFinite(levelText).value_or(kNone);
    // Written so that what is no number fails.
    if (!(frequency >= 0 && frequency <= 1e6 && level <= 40.0)) {
        Refuse("hertz and dBFS such as 1000:-18, or silence", text);
    }
    return {static_cast<float>(frequency), static_cast<float>(std::pow(10.0, level / 20.0))};
}

double ReadPositive(std::string_view text)
{
    const auto number = ParseFinite(text);
    if (!number || *number <= 0) {
        Refuse("a number greater than 0", text);
    }
    return *number;
}

int ReadChannelCount(std::string_view text)
{
    struct Layout {
        std::string_view name;
        int count;
    };
    constexpr std::array<Layout, 3> kLayouts{{{"mono", 1}, {"stereo", 2}, {"5.1", 6}}};
    for (const Layout& layout : kLayouts) {
        if (IsSameName(layout.name, text)) {
            return layout.count;
        }
    }
    const auto count = ParsePositive(text);
    if (!count) {
        Refuse("a number of channels, or mono, stereo or 5.1", text);
    }
    return static_cast<int>(*count);
}

bool ReadSwitch(std::string_view text)
{
    if (text == "on" || text == "true" || text == "yes") {
        return true;
    }
    if (text == "off" || text == "false" || text == "no") {
        return false;
    }
    Refuse("on or off", text);
}

} // namespace tessel::typed
