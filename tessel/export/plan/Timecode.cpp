#include "Timecode.h"

#include <tessel/export/ExportError.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace tessel::exporting {
namespace {

constexpr std::int64_t kMinutesOfTen = 10;
constexpr std::int64_t kMinutesOfDay = 24 * 60;

std::int64_t NominalRate(std::int32_t numerator, std::int32_t denominator) noexcept
{
    return (2 * std::int64_t{numerator} + denominator) / (2 * std::int64_t{denominator});
}

/// Two digits, or -1.
int Digits(std::string_view text) noexcept
{
    const auto isDigit = [](char letter) { return letter >= '0' && letter <= '9'; };
    return isDigit(text[0]) && isDigit(text[1]) ? (text[0] - '0') * 10 + (text[1] - '0') : -1;
}

/// Hours, minutes, seconds and frames. @throws ExportError  for what is a timecode at no rate
std::array<int, 4> PartsOf(std::string_view text)
{
    const bool hasShape =
        text.size() == 11 && text[2] == ':' && text[5] == ':' && (text[8] == ':' || text[8] == ';');
    const std::array<int, 4> parts = hasShape ? std::array{Digits(text.substr(0)), Digits(text.substr(3)),
                                                           Digits(text.substr(6)), Digits(text.substr(9))}
                                              : std::array{-1, -1, -1, -1};
    if (std::find(parts.begin(), parts.end(), -1) != parts.end()) {
        throw RequestError(fmt::format("'{}' is no timecode: it is hours, minutes, seconds and frames, as in "
                                       "10:00:00:00, or 10:00:00;00 for "
                                       "drop frame",
                                       text));
    }
    if (parts[0] > 23 || parts[1] > 59 || parts[2] > 59) {
        throw RequestError(
            fmt::format("there is no timecode {}: hours go up to 23, minutes and seconds up to 59", text));
    }
    return parts;
}

std::string FramesPerSecondText(std::int32_t numerator, std::int32_t denominator)
{
    return denominator == 1 ? fmt::format("{}", numerator) : fmt::format("{}/{}", numerator, denominator);
}

void RequireCountableRate(std::int32_t numerator, std::int32_t denominator)
{
    if (!Timecode::Counts(numerator, denominator)) {
        throw RequestError(
            fmt::format("timecodes count 24, 25, 30, 48, 50, 60, 100, 120 or 150 frames a second, or "
                        "1000/1001 of that, but the clip has {}: remove --timecode",
                        FramesPerSecondText(numerator, denominator)));
    }
}

} // namespace

Timecode::Timecode(std::int32_t rateNumerator, std::int32_t rateDenominator, bool drop) noexcept
    : mNominalRate(std::max<std::int64_t>(NominalRate(rateNumerator, rateDenominator), 1)),
      mDropped(drop ? mNominalRate / 15 : 0)
{
}

bool Timecode::Counts(std::int32_t rateNumerator, std::int32_t rateDenominator) noexcept
{
    if (rateNumerator <= 0 || rateDenominator <= 0) {
        return false;
    }
    // What files and their readers know.
    constexpr std::array<std::int64_t, 9> kRates{24, 25, 30, 48, 50, 60, 100, 120, 150};
    const std::int64_t nominal = NominalRate(rateNumerator, rateDenominator);
    const bool isWhole = std::int64_t{rateNumerator} == nominal * rateDenominator;
    const bool isSlowed = std::int64_t{rateNumerator} * 1001 == nominal * 1000 * rateDenominator;
    return std::find(kRates.begin(), kRates.end(), nominal) != kRates.end() && (isWhole || isSlowed);
}

bool Timecode::HasDropFrames(std::int32_t rateNumerator, std::int32_t rateDenominator) noexcept
{
    const std::int64_t nominal = NominalRate(rateNumerator, rateDenominator);
    return nominal > 0 && nominal % 30 == 0 &&
           std::int64_t{rateNumerator} * 1001 == nominal * 1000 * rateDenominator;
}

void Timecode::RequireForm(std::string_view text)
{
    static_cast<void>(PartsOf(text));
}

Timecode Timecode::Parse(std::string_view text, std::int32_t rateNumerator, std::int32_t rateDenominator)
{
    const auto [hours, minutes, seconds, frames] = PartsOf(text);
    RequireCountableRate(rateNumerator, rateDenominator);
    const bool drop = text[8] == ';';
    const bool canDrop = HasDropFrames(rateNumerator, rateDenominator);
    Timecode timecode(rateNumerator, rateDenominator, drop);
    if (frames >= timecode.mNominalRate) {
        throw RequestError(fmt::format("there is no timecode {}: the last of a second is {}{}{:02}", text,
                                       text.substr(0, 8), drop && canDrop ? ';' : ':',
                                       timecode.mNominalRate - 1));
    }
    if (drop && !canDrop) {
        throw RequestError(fmt::format(
            "drop-frame timecodes exist only at 29.97, 59.94, 119.88 and 149.85 frames a second, "
            "not at {}: write {}:{}",
            FramesPerSecondText(rateNumerator, rateDenominator), text.substr(0, 8), text.substr(9)));
    }
    if (seconds == 0 && minutes % kMinutesOfTen != 0 && frames < timecode.mDropped) {
        throw RequestError(
            fmt::format("drop-frame counting leaves {} out: the first of that minute is {};{:02}", text,
                        text.substr(0, 8), timecode.mDropped));
    }
    const std::int64_t minute = std::int64_t{hours} * 60 + minutes;
    timecode.mFirstFrame = (minute * 60 + seconds) * timecode.mNominalRate + frames -
                           timecode.mDropped * (minute - minute / kMinutesOfTen);
    return timecode;
}

std::string Timecode::After(std::int64_t frames) const
{
    const std::int64_t perMinute = mNominalRate * 60 - mDropped;
    const std::int64_t perTen = perMinute * kMinutesOfTen + mDropped; // the first minute of ten has all numbers
    std::int64_t frame = (mFirstFrame + frames) % (perTen * kMinutesOfDay / kMinutesOfTen);
    const std::int64_t tens = frame / perTen;
    const std::int64_t rest = frame % perTen;
    const std::int64_t minutesBegun = rest < mNominalRate * 60 ? 0 : (rest - mDropped) / perMinute;
    frame += mDropped * ((kMinutesOfTen - 1) * tens + minutesBegun);
    const std::int64_t second = frame / mNominalRate;
    return fmt::format("{:02}:{:02}:{:02}{}{:02}", second / 3600, second / 60 % 60, second % 60,
                       mDropped != 0 ? ';' : ':', frame % mNominalRate);
}

} // namespace tessel::exporting
