#include "ColorTimeline.h"

#include <tessel/verify/reference/MovieLayout.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace tessel::verify::align {
namespace {

constexpr std::size_t kKeys = 33; // curves of a gradient in linear light are straight enough between them
constexpr int kColumns = 8;
constexpr std::size_t kComponents = 3;
/// Rounding alone, in codes.
constexpr double kLeastDistance = 0.29;
/// Errors of neighbouring places are alike: so many of them count as one.
constexpr double kAlike = 4;

double DistanceSquared(const ColorSignature& a, const ColorSignature& b) noexcept
{
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const double off = static_cast<double>(a[i]) - static_cast<double>(b[i]);
        sum += off * off;
    }
    return sum;
}

} // namespace

ColorTimeline::ColorTimeline(const exporting::SignalSource& clip, const reference::ClipFacts& facts,
                             const read::PictureFacts& movie)
    : mFrameCount(facts.frameCount)
{
    const std::optional<exporting::PictureLayout> layout = reference::LayoutFor(movie.format);
    if (!layout || mFrameCount < 2) {
        return;
    }
    reference::ClipPictures pictures(clip, *layout, reference::CodingFor(facts, movie),
                                     exporting::ChromaRows::Frame);
    const std::size_t count = std::min(kKeys, static_cast<std::size_t>(mFrameCount));
    mKeys.resize(count);
    for (std::size_t key = 0; key < count; ++key) {
        const auto frame = static_cast<std::int64_t>(FrameOf(key));
        mKeys[key] = SignatureOf(pictures.Render(frame));
    }
}

ColorTimeline::ColorTimeline(std::vector<ColorSignature> keys, std::int64_t frameCount)
    : mFrameCount(frameCount), mKeys(std::move(keys))
{
}

double ColorTimeline::FrameOf(std::size_t key) const noexcept
{
    return std::floor(static_cast<double>(key) * static_cast<double>(mFrameCount - 1) /
                      static_cast<double>(mKeys.size() - 1));
}

bool ColorTimeline::Tells() const noexcept
{
    // Pictures that stand still have no way to be on.
    constexpr double kLeastWay = 4; // codes, root of the mean square, from the first frame to the last
    return mKeys.size() > 1 && DistanceSquared(mKeys.front(), mKeys.back()) >
                                   kLeastWay * kLeastWay * static_cast<double>(mKeys.front().size());
}

ColorSignature ColorTimeline::SignatureOf(const read::Picture& picture)
{
    ColorSignature signature;
    signature.reserve(kRows * kComponents);
    for (int row = 0; row < kRows; ++row) {
        for (std::size_t part = 0; part < kComponents; ++part) {
            const read::ComponentView& own = picture.components[part];
            const read::ComponentView& view = own ? own : picture.components[0];
            const double y = (row + 0.5) / kRows * view.height - 0.5;
            const int top = std::clamp(static_cast<int>(std::floor(y)), 0, view.height - 1);
            const int bottom = std::min(top + 1, view.height - 1);
            const double below = std::clamp(y - top, 0.0, 1.0);
            double sum = 0;
            for (int column = 0; column < kColumns; ++column) {
                // The right side: numbers too small to be read stand on the left.
                const double share = 0.6 + 0.35 * column / kColumns;
                const int x = std::min(static_cast<int>(share * view.width), view.width - 1);
                sum += view.At(x, top) * (1 - below) + view.At(x, bottom) * below;
            }
            // 8-bit units, so that a code is a code.
            const double unit = view.isFloat ? 1.0 / 255 : std::exp2(view.bits - 8);
            signature.push_back(static_cast<float>(sum / kColumns / unit));
        }
    }
    return signature;
}

ColorSignature ColorTimeline::At(double frame) const
{
    std::size_t key = 0;
    while (key + 2 < mKeys.size() && FrameOf(key + 1) <= frame) {
        ++key;
    }
    const double from = FrameOf(key);
    const double share = (frame - from) / std::max(1.0, FrameOf(key + 1) - from);
    ColorSignature signature(mKeys[key].size());
    for (std::size_t i = 0; i < signature.size(); ++i) {
        signature[i] = static_cast<float>(mKeys[key][i] * (1 - share) + mKeys[key + 1][i] * share);
    }
    return signature;
}

std::optional<ColorReading> ColorTimeline::Read(const ColorSignature& signature) const
{
    if (mKeys.size() < 2 || signature.size() != mKeys.front().size()) {
        return std::nullopt;
    }
    std::optional<ColorReading> best;
    double nearest = 1e300;
    const auto size = static_cast<double>(signature.size());
    for (std::size_t key = 0; key + 1 < mKeys.size(); ++key) {
        const ColorSignature& from = mKeys[key];
        const ColorSignature& to = mKeys[key + 1];
        double along = 0;
        double length = 0;
        for (std::size_t i = 0; i < from.size(); ++i) {
            const double way = static_cast<double>(to[i]) - static_cast<double>(from[i]);
            along += way * (static_cast<double>(signature[i]) - static_cast<double>(from[i]));
            length += way * way;
        }
        if (length <= 0) {
            continue;
        }
        // The ends reach a little further, so that errors there are seen as such.
        const double low = key == 0 ? -0.5 : 0.0;
        const double high = key + 2 == mKeys.size() ? 1.5 : 1.0;
        const double share = std::clamp(along / length, low, high);
        double distance = 0;
        for (std::size_t i = 0; i < from.size(); ++i) {
            const double at = from[i] + share * (static_cast<double>(to[i]) - static_cast<double>(from[i]));
            distance += (signature[i] - at) * (signature[i] - at);
        }
        if (distance < nearest) {
            nearest = distance;
            const double frames = FrameOf(key + 1) - FrameOf(key);
            ColorReading reading;
            reading.frame = FrameOf(key) + share * frames;
            reading.distance = std::sqrt(distance / size);
            const double wayOfAFrame = std::sqrt(length) / frames;
            reading.uncertainty = std::max(reading.distance, kLeastDistance) / wayOfAFrame * std::sqrt(kAlike);
            best = reading;
        }
    }
    return best;
}

ColorTimeline ColorTimeline::Changed(const ColorChange& change) const
{
    ColorTimeline changed = *this;
    for (ColorSignature& key : changed.mKeys) {
        for (std::size_t place = 0; place + kComponents <= key.size(); place += kComponents) {
            const std::array<double, kComponents> codes =
                change({static_cast<double>(key[place]), static_cast<double>(key[place + 1]),
                        static_cast<double>(key[place + 2])});
            for (std::size_t part = 0; part < kComponents; ++part) {
                key[place + part] = static_cast<float>(codes[part]);
            }
        }
    }
    return changed;
}

double ConfidenceOf(const ColorReading& reading) noexcept
{
    const double off = std::abs(reading.frame - std::round(reading.frame));
    const auto below = [&](double distance) {
        return 0.5 * std::erfc(-distance / (reading.uncertainty * std::sqrt(2.0)));
    };
    return std::clamp(below(0.5 - off) + below(0.5 + off) - 1, 0.0, 1.0);
}

} // namespace tessel::verify::align
