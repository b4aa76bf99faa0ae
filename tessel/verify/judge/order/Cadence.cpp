#include "Cadence.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>

namespace tessel::verify::judge {
namespace {

using Frames = std::vector<std::int64_t>;

constexpr std::size_t kLongestPattern = 25; // pictures; 24 to 25 repeats every 24th frame
constexpr std::ptrdiff_t kLeastUneven = 6;  // fewer losses may lie evenly by chance
constexpr std::size_t kFewestSteps = 6;     // from picture to picture
constexpr double kSameRate = 1e-3;          // as a part of it
constexpr std::size_t kLeastKnownShare = 3; // one picture in so many shows a frame

/// The steps from picture to picture where all are known; nothing where one is not.
std::optional<Frames> Differences(const Frames& shown)
{
    Frames steps;
    for (std::size_t i = 1; i < shown.size(); ++i) {
        if (shown[i] < 0 || shown[i - 1] < 0) {
            return std::nullopt;
        }
        steps.push_back(shown[i] - shown[i - 1]);
    }
    return steps;
}

/// The shortest pattern that the steps repeat at least three times; 0: none.
std::size_t PeriodOf(const Frames& steps)
{
    for (std::size_t period = 1; period <= kLongestPattern && period * 3 <= steps.size(); ++period) {
        bool holds = true;
        for (std::size_t i = period; i < steps.size() && holds; ++i) {
            holds = steps[i] == steps[i - period];
        }
        if (holds) {
            return period;
        }
    }
    return 0;
}

/// How far the known frames lie from even distances, in frames from one side to the other. Rounding each to a
/// frame moves it by less than one frame.
double UnevennessOf(const Frames& shown, double framesPerPicture)
{
    double least = 1e300;
    double most = -1e300;
    for (std::size_t i = 0; i < shown.size(); ++i) {
        if (shown[i] >= 0) {
            const double off = static_cast<double>(shown[i]) - framesPerPicture * static_cast<double>(i);
            least = std::min(least, off);
            most = std::max(most, off);
        }
    }
    return std::max(0.0, most - least);
}

/// Every picture shows a frame, in a pattern or at even distances.
std::optional<Cadence> PatternOf(const Frames& shown)
{
    const std::optional<Frames> steps = Differences(shown);
    if (!steps || steps->size() < kFewestSteps ||
        std::any_of(steps->begin(), steps->end(), [](std::int64_t step) { return step < 0; })) {
        return std::nullopt;
    }
    const auto irregular =
        std::count_if(steps->begin(), steps->end(), [](std::int64_t step) { return step != 1; });
    if (irregular < 3) {
        return std::nullopt;
    }
    const std::size_t period = PeriodOf(*steps);
    double framesPerPicture =
        static_cast<double>(shown.back() - shown.front()) / static_cast<double>(steps->size());
    if (period != 0) {
        const auto last = steps->begin() + static_cast<std::ptrdiff_t>(period);
        framesPerPicture = static_cast<double>(std::accumulate(steps->begin(), last, std::int64_t{0})) /
                           static_cast<double>(period);
    } else if (irregular < kLeastUneven || UnevennessOf(shown, framesPerPicture) > 1.0 + 1e-6) {
        return std::nullopt;
    }
    if (framesPerPicture <= 0) {
        return std::nullopt; // one frame all the time is no cadence
    }
    Cadence cadence{1 / framesPerPicture, {}, {shown.front(), shown.back()}};
    if (period != 0 && framesPerPicture < 1) {
        // How often each frame is shown, as in "3:2".
        std::vector<std::size_t> counts;
        for (std::size_t i = 0; i < period; ++i) {
            if (i == 0 || shown[i] != shown[i - 1]) {
                counts.push_back(0);
            }
            ++counts.back();
        }
        cadence.text = fmt::format("frames are shown in the pattern {}", fmt::join(counts, ":"));
    } else if (period != 0 && framesPerPicture > 1) {
        const auto left =
            static_cast<std::size_t>(std::llround(framesPerPicture * static_cast<double>(period)));
        cadence.text = fmt::format("{} of every {} frames are left out", left - period, left);
    } else {
        cadence.text = fmt::format("{:.4g} frames are shown for each picture", framesPerPicture);
    }
    return cadence;
}

/// Frames keep their time though the movie has another rate.
std::optional<Cadence> ConversionOf(const Frames& shown, double framesPerPicture)
{
    if (std::abs(framesPerPicture - 1) < kSameRate || framesPerPicture <= 0) {
        return std::nullopt;
    }
    Frames known;
    std::copy_if(shown.begin(), shown.end(), std::back_inserter(known),
                 [](std::int64_t frame) { return frame >= 0; });
    if (known.size() <= kFewestSteps || known.size() * kLeastKnownShare < shown.size() ||
        !std::is_sorted(known.begin(), known.end())) {
        return std::nullopt;
    }
    // A blend of two frames reads as either, and the last frame may stand once more. Frames that merely run at
    // another rate are evener without a conversion.
    constexpr double kRounded = 1.0 + 1e-6;
    constexpr double kBlended = 1.5;
    const double converted = UnevennessOf(shown, framesPerPicture);
    const double asTheyAre = UnevennessOf(shown, 1);
    const bool isRounded = converted <= kRounded && asTheyAre >= 1;
    const bool isBlended = converted <= kBlended && asTheyAre >= converted + 0.5;
    if (!isRounded && !isBlended) {
        return std::nullopt;
    }
    Cadence cadence{1 / framesPerPicture,
                    fmt::format("frames keep their time at another rate: {:.4g} pictures for each frame",
                                1 / framesPerPicture),
                    {known.front(), known.back()}};
    if (const std::size_t blends = shown.size() - known.size(); blends > 0) {
        cadence.text += fmt::format("; {} {} of no single frame", blends, blends == 1 ? "is" : "are");
    }
    return cadence;
}

} // namespace

std::optional<Cadence> FindCadence(const std::vector<std::int64_t>& shown, double framesPerPicture)
{
    std::optional<Cadence> cadence = PatternOf(shown);
    return cadence ? cadence : ConversionOf(shown, framesPerPicture);
}

} // namespace tessel::verify::judge
