#include "FrameNames.h"

#include <tessel/export/ExportError.h>
#include <tessel/export/plan/Timecode.h>

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <system_error>

namespace tessel::view {
namespace {

using exporting::RequestError;
using exporting::Timecode;

bool HasTimecodes(const FrameScale& scale) noexcept
{
    return Timecode::Counts(scale.rateNumerator, scale.rateDenominator);
}

bool LooksLikeTimecode(std::string_view text) noexcept
{
    return text.find_first_of(":;") != std::string_view::npos;
}

bool IsStep(std::string_view text) noexcept
{
    return text.starts_with('+') || text.starts_with('-');
}

std::int64_t Number(std::string_view digits, std::string_view whole)
{
    std::int64_t number = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, number);
    if (error == std::errc::result_out_of_range) {
        return INT64_MAX / 2;
    }
    if (error != std::errc() || stop != end || digits.empty() || digits.front() == '-') {
        throw RequestError(
            fmt::format("'{}' is no frame: write a number, a timecode as in 00:00:04:12, or +25 and -25 "
                        "for steps",
                        whole));
    }
    return number;
}

/// Before, in or behind the clip.
std::int64_t AnyFrameNamed(const FrameScale& scale, std::string_view text, std::int64_t current)
{
    if (LooksLikeTimecode(text)) {
        if (!HasTimecodes(scale)) {
            throw RequestError(
                fmt::format("'{}': the clip's rate has no timecodes; write a frame number", text));
        }
        return Timecode::Parse(text, scale.rateNumerator, scale.rateDenominator).FrameNumber();
    }
    if (IsStep(text)) {
        const std::int64_t step = Number(text.substr(1), text);
        return current + (text.front() == '+' ? step : -step);
    }
    return Number(text, text);
}

} // namespace

std::string TimecodeOf(const FrameScale& scale, std::int64_t frame)
{
    if (!HasTimecodes(scale) || frame < 0) {
        return {};
    }
    const bool drops = Timecode::HasDropFrames(scale.rateNumerator, scale.rateDenominator);
    return Timecode(scale.rateNumerator, scale.rateDenominator, drops).After(frame);
}

std::int64_t FrameNamed(const FrameScale& scale, std::string_view text, std::int64_t current)
{
    return std::clamp<std::int64_t>(AnyFrameNamed(scale, text, current), 0,
                                    std::max<std::int64_t>(scale.count - 1, 0));
}

std::int64_t ExistingFrameNamed(const FrameScale& scale, std::string_view text)
{
    const std::int64_t frame = AnyFrameNamed(scale, text, 0);
    if (frame < 0 || frame >= scale.count) {
        throw RequestError(
            fmt::format("there is no frame {}: the clip has frames 0 to {}", text, scale.count - 1));
    }
    return frame;
}

void RequireFrameForm(std::string_view text)
{
    if (LooksLikeTimecode(text)) {
        Timecode::RequireForm(text);
    } else {
        static_cast<void>(Number(IsStep(text) ? text.substr(1) : text, text));
    }
}

} // namespace tessel::view
