#include "SoundTime.h"

namespace tessel::damage {
namespace {

bool IsIn(double position, std::int64_t begin, std::int64_t count) noexcept
{
    return position >= static_cast<double>(begin) && position < static_cast<double>(begin + count);
}

} // namespace

void SoundTime::Delay(double samples)
{
    mSteps.emplace_back([=](double position) { return std::optional(position - samples); });
}

void SoundTime::Speed(double factor)
{
    mSteps.emplace_back([=](double position) { return std::optional(position * factor); });
}

void SoundTime::Lose(std::int64_t position, std::int64_t count)
{
    mSteps.emplace_back([=](double at) {
        return std::optional(at < static_cast<double>(position) ? at : at + static_cast<double>(count));
    });
}

void SoundTime::Insert(std::int64_t position, std::int64_t count)
{
    mSteps.emplace_back([=](double at) {
        return std::optional(at < static_cast<double>(position) ? at : at - static_cast<double>(count));
    });
}

void SoundTime::Silence(std::int64_t position, std::int64_t count)
{
    mSteps.emplace_back(
        [=](double at) { return IsIn(at, position, count) ? std::nullopt : std::optional(at); });
}

void SoundTime::Exchange(std::int64_t first, std::int64_t second, std::int64_t count)
{
    mSteps.emplace_back([=](double at) {
        const auto distance = static_cast<double>(second - first);
        if (IsIn(at, first, count)) {
            return std::optional(at + distance);
        }
        return std::optional(IsIn(at, second, count) ? at - distance : at);
    });
}

std::optional<double> SoundTime::ClipPositionOf(std::int64_t filePosition) const
{
    std::optional<double> position = static_cast<double>(filePosition);
    for (auto step = mSteps.rbegin(); step != mSteps.rend() && position; ++step) {
        position = (*step)(*position);
    }
    return position && *position >= 0 ? position : std::nullopt;
}

} // namespace tessel::damage
