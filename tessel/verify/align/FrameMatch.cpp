#include "FrameMatch.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace tessel::verify::align {
namespace {

constexpr std::int64_t kMostComparisons = 50'000'000;
constexpr int kMostAcross = 160; // samples compared in width, and in height
// Frame and picture fit when their correlation leaves less than this share of what the stretched frame leaves.
constexpr double kPlainlyBetter = 0.5;
constexpr double kLeastCorrelation = 0.9;
// Places whose correlations differ by less are equally good.
constexpr double kEquallyGood = 1e-5;

/// A component as floats, for speed.
struct Grey {
    int width = 0;
    int height = 0;
    std::vector<float> values;

    explicit Grey(const read::ComponentView& view) : width(view.width), height(view.height)
    {
        values.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                values.push_back(static_cast<float>(view.At(x, y)));
            }
        }
    }

    [[nodiscard]] double At(int x, int y) const noexcept
    {
        return static_cast<double>(values[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                                          static_cast<std::size_t>(x)]);
    }
};

/// Pearson's correlation, gathered sample by sample.
class Correlation {
public:
    void Add(double a, double b) noexcept
    {
        ++mCount;
        mA += a;
        mB += b;
        mAA += a * a;
        mBB += b * b;
        mAB += a * b;
    }
    [[nodiscard]] double Value() const noexcept
    {
        const double spread = (mAA - mA * mA / mCount) * (mBB - mB * mB / mCount);
        return mCount > 1 && spread > 1e-6 ? (mAB - mA * mB / mCount) / std::sqrt(spread) : 0.0;
    }

private:
    double mCount = 0;
    double mA = 0;
    double mB = 0;
    double mAA = 0;
    double mBB = 0;
    double mAB = 0;
};

/// Places along one axis: where the clip's first sample may lie in the movie, in samples.
struct Range {
    int first = 0;
    int last = 0;

    Range(int clip, int movie) noexcept : first(std::min(0, movie - clip)), last(std::max(0, movie - clip)) {}
    [[nodiscard]] double Middle() const noexcept { return (first + last) / 2.0; }
};

double Compared(const Grey& clip, const Grey& movie, int left, int top, int step) noexcept
{
    Correlation correlation;
    for (int y = std::max(0, top); y < std::min(movie.height, top + clip.height); y += step) {
        for (int x = std::max(0, left); x < std::min(movie.width, left + clip.width); x += step) {
            correlation.Add(clip.At(x - left, y - top), movie.At(x, y));
        }
    }
    return correlation.Value();
}

double ComparedStretched(const Grey& clip, const Grey& movie) noexcept
{
    Correlation correlation;
    for (int y = 0; y < movie.height; ++y) {
        for (int x = 0; x < movie.width; ++x) {
            correlation.Add(clip.At((2 * x + 1) * clip.width / (2 * movie.width),
                                    (2 * y + 1) * clip.height / (2 * movie.height)),
                            movie.At(x, y));
        }
    }
    return correlation.Value();
}

} // namespace

std::optional<Placement> MatchFrame(const read::ComponentView& clip, const read::ComponentView& movie)
{
    if (!clip || !movie || (clip.width == movie.width && clip.height == movie.height)) {
        return std::nullopt;
    }
    const Grey frame(clip);
    const Grey picture(movie);
    const Range across(clip.width, movie.width);
    const Range down(clip.height, movie.height);
    const int overlap = std::max(std::min(clip.width, movie.width), std::min(clip.height, movie.height));
    const std::int64_t places = std::int64_t{across.last - across.first + 1} * (down.last - down.first + 1);
    int step = std::max(1, overlap / kMostAcross);
    const std::int64_t samples =
        std::int64_t{std::min(clip.width, movie.width)} * std::min(clip.height, movie.height);
    if (places * samples / (step * step) > kMostComparisons) {
        return std::nullopt; // so much is cut or added that the number's plate is either gone or whole
    }
    struct Place {
        int left = 0;
        int top = 0;
        double correlation = -1;
        double offMiddle = 0;
    };
    Place best;
    for (int top = down.first; top <= down.last; ++top) {
        for (int left = across.first; left <= across.last; ++left) {
            const Place place{left, top, Compared(frame, picture, left, top, step),
                              std::hypot(left - across.Middle(), top - down.Middle())};
            const double better = place.correlation - best.correlation;
            if (better > kEquallyGood || (better > -kEquallyGood && place.offMiddle < best.offMiddle)) {
                best = place;
            }
        }
    }
    const double stretched = ComparedStretched(frame, picture);
    if (best.correlation < kLeastCorrelation || 1 - best.correlation > kPlainlyBetter * (1 - stretched)) {
        return std::nullopt;
    }
    Placement placement;
    placement.clipWidth = clip.width;
    placement.clipHeight = clip.height;
    placement.offsetX = best.left;
    placement.offsetY = best.top;
    return placement;
}

} // namespace tessel::verify::align
