#include "ChromaFit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <set>

namespace tessel::verify::judge {
namespace {

constexpr int kHalf = EdgeProfile::kHalf;
constexpr int kReach = EdgeProfile::kReach;
constexpr int kCompared = 2 * kReach + 1;
constexpr double kLeastLeft = 6; // codes of chroma that are left of an edge

/// Chroma across an edge, 0 on one side and 1 on the other.
using Course = std::array<double, kCompared>;

/// A component of a profile at any place, whole or between; the ends go on.
double At(const float* samples, double place) noexcept
{
    const double clamped = std::clamp(place + kHalf, 0.0, EdgeProfile::kLength - 1.0);
    const int left = std::min(static_cast<int>(clamped), EdgeProfile::kLength - 2);
    const double right = clamped - left;
    return samples[left] * (1 - right) + samples[left + 1] * right;
}

struct Difference {
    double blue = 0;
    double red = 0;
};

/// The way from one side of an edge to the other.
class Scale {
public:
    explicit Scale(const EdgeProfile::Samples& samples)
    {
        for (const double place : {-1.0 * kReach, 1.0 - kReach}) {
            mFrom.blue += At(samples.blue, place) / 2;
            mFrom.red += At(samples.red, place) / 2;
            mStep.blue += At(samples.blue, -place) / 2;
            mStep.red += At(samples.red, -place) / 2;
        }
        mStep.blue -= mFrom.blue;
        mStep.red -= mFrom.red;
    }

    [[nodiscard]] double Height() const noexcept { return std::hypot(mStep.blue, mStep.red); }

    [[nodiscard]] double Of(const Difference& value) const noexcept
    {
        return ((value.blue - mFrom.blue) * mStep.blue + (value.red - mFrom.red) * mStep.red) /
               (Height() * Height());
    }

private:
    Difference mFrom;
    Difference mStep;
};

/// Gives one chroma component at a place, counted from the profile's middle.
using Filter = std::function<double(const float* samples, int place, int middle)>;

/// R'G'B' of a place with other chroma, clipped, and its differences again.
Difference Clipped(double luma, const Difference& chroma) noexcept
{
    const double red = std::clamp(luma + 1.5748 * chroma.red, 0.0, 255.0);
    const double blue = std::clamp(luma + 1.8556 * chroma.blue, 0.0, 255.0);
    const double green = std::clamp(
        (luma - 0.2126 * (luma + 1.5748 * chroma.red) - 0.0722 * (luma + 1.8556 * chroma.blue)) / 0.7152, 0.0,
        255.0);
    const double clippedLuma = 0.2126 * red + 0.7152 * green + 0.0722 * blue;
    return {(blue - clippedLuma) / 1.8556, (red - clippedLuma) / 1.5748};
}

Course Predict(const EdgeProfile& profile, const Filter& filter, bool clips)
{
    const Scale scale(profile.was);
    Course course{};
    for (int i = 0; i < kCompared; ++i) {
        const int place = i - kReach;
        Difference chroma{filter(profile.was.blue, place, profile.place),
                          filter(profile.was.red, place, profile.place)};
        if (clips) {
            chroma = Clipped(At(profile.was.luma, place), chroma);
        }
        course[static_cast<std::size_t>(i)] = scale.Of(chroma);
    }
    return course;
}

Course Found(const EdgeProfile& profile)
{
    const Scale scale(profile.is);
    Course course{};
    for (int i = 0; i < kCompared; ++i) {
        const double place = i - kReach;
        course[static_cast<std::size_t>(i)] = scale.Of({At(profile.is.blue, place), At(profile.is.red, place)});
    }
    return course;
}

/// Where the edge is, in samples: exact for every symmetric filter.
double PlaceOf(const Course& course) noexcept
{
    double place = 0;
    for (const double value : course) {
        place += 1 - value;
    }
    return place;
}

double SquaresBetween(const Course& a, const Course& b) noexcept
{
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sum += (a[i] - b[i]) * (a[i] - b[i]);
    }
    return sum;
}

Filter Shifted(double samples)
{
    return [samples](const float* values, int place, int /*middle*/) { return At(values, place - samples); };
}

/// How chroma is thinned to one sample of `count`, and brought back.
enum class Keeping { First, Mean, Tent };
enum class Return { Repeated, LinearFromFirst, LinearFromMiddle };

Filter Thinned(int count, Keeping keeping, Return back)
{
    return [=](const float* values, int place, int middle) {
        const auto kept = [&](int group) {
            // The first sample of the group, counted from the profile's middle.
            const int first = group * count - middle;
            if (keeping == Keeping::First) {
                return At(values, first);
            }
            double sum = 0;
            if (keeping == Keeping::Mean) {
                for (int i = 0; i < count; ++i) {
                    sum += At(values, first + i) / count;
                }
                return sum;
            }
            double weights = 0;
            for (int i = 1 - count; i < count; ++i) {
                const double weight = count - std::abs(i);
                sum += weight * At(values, first + i);
                weights += weight;
            }
            return sum / weights;
        };
        const double at = middle + place - (back == Return::LinearFromMiddle ? (count - 1) / 2.0 : 0.0);
        const int group = static_cast<int>(std::floor(at / count));
        const double share = back == Return::Repeated ? 0 : at / count - group;
        return kept(group) * (1 - share) + kept(group + 1) * share;
    };
}

/// Root of the mean square over all edges; only the edge itself counts, not its flat sides.
double ResidualOf(const std::vector<EdgeProfile>& profiles, const std::vector<Course>& found,
                  const Filter& filter, bool clips)
{
    constexpr double kSamplesOfAnEdge = 4;
    double sum = 0;
    for (std::size_t i = 0; i < profiles.size(); ++i) {
        sum += SquaresBetween(Predict(profiles[i], filter, clips), found[i]);
    }
    return std::sqrt(sum / static_cast<double>(profiles.size()) / kSamplesOfAnEdge);
}

/// The shift of one edge, in samples: where the clip's edge is moved as far as the found one is.
double ShiftOf(const EdgeProfile& profile, const Course& found, bool clips)
{
    const double target = PlaceOf(found);
    const double plain = PlaceOf(Predict(profile, Shifted(0), clips));
    if (!clips || std::abs(target - plain) < 1e-3) {
        return target - plain;
    }
    // Clipping takes a part of the shift away: search for what gives the found place.
    constexpr double kMost = 3;
    double low = -kMost;
    double high = kMost;
    for (int turn = 0; turn < 14; ++turn) {
        const double middle = (low + high) / 2;
        (PlaceOf(Predict(profile, Shifted(middle), clips)) < target ? low : high) = middle;
    }
    return (low + high) / 2;
}

double MedianOf(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

} // namespace

ChromaFit FitChroma(const std::vector<EdgeProfile>& all, bool clips, int perChroma)
{
    ChromaFit fit;
    std::vector<EdgeProfile> profiles;
    std::vector<Course> found;
    std::vector<double> shifts;
    std::set<int> places;
    for (const EdgeProfile& profile : all) {
        if (Scale(profile.is).Height() < kLeastLeft) {
            continue;
        }
        profiles.push_back(profile);
        places.insert(profile.place);
        found.push_back(Found(profile));
        shifts.push_back(ShiftOf(profile, found.back(), clips));
    }
    if (profiles.empty()) {
        return fit;
    }
    fit.edges = static_cast<int>(profiles.size());
    fit.places = static_cast<int>(places.size());
    const double shift = MedianOf(shifts);
    std::vector<double> deviations;
    deviations.reserve(shifts.size());
    for (const double each : shifts) {
        deviations.push_back(std::abs(each - shift));
    }
    // 1.48 times the median deviation is the standard deviation of normal errors; edges of one column are
    // alike, so that more than a few do not help.
    constexpr double kOwnError = 0.03; // unknown filters do not shift linearly
    const double deviation = 1.48 * MedianOf(deviations);
    const double independent = std::min(25.0, std::max(1.0, fit.edges / 4.0));
    fit.shift = shift * perChroma;
    fit.shiftUncertainty = perChroma * (kOwnError + 2 * deviation / std::sqrt(independent));
    fit.plainResidual = ResidualOf(profiles, found, Shifted(0), clips);
    fit.shiftedResidual = ResidualOf(profiles, found, Shifted(shift), clips);
    fit.thinnedResidual = 1e9;
    for (const int count : {2, 4}) {
        if (count * perChroma > 4) {
            continue; // nobody keeps fewer
        }
        for (const Keeping keeping : {Keeping::First, Keeping::Mean, Keeping::Tent}) {
            for (const Return back : {Return::Repeated, Return::LinearFromFirst, Return::LinearFromMiddle}) {
                const double residual = ResidualOf(profiles, found, Thinned(count, keeping, back), clips);
                if (residual < fit.thinnedResidual) {
                    fit.thinnedResidual = residual;
                    fit.thinned = count * perChroma;
                }
            }
        }
    }
    return fit;
}

} // namespace tessel::verify::judge
