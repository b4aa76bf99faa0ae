#include "TellingFrames.h"

#include <tessel/verify/judge/color/hypotheses/Coding.h>
#include <tessel/verify/judge/color/hypotheses/Curves.h>

#include <algorithm>
#include <cmath>

namespace tessel::verify::judge {
namespace {

constexpr int kMostWidth = 320;
constexpr std::size_t kKept = 3;

std::uint8_t ByteOf(double value) noexcept
{
    return static_cast<std::uint8_t>(std::clamp(value, 0.0, 255.0) + 0.5);
}

/// R'G'B' of a picture's sample as a player shows it.
Triple ShownAt(const read::Picture& picture, const Coding& coding, int x, int y)
{
    Triple codes{};
    for (std::size_t part = 0; part < 3; ++part) {
        const bool isChroma = part > 0 && !picture.format.isRgb;
        const read::ComponentView& own = picture.components[part];
        const read::ComponentView& view = own ? own : picture.components[0];
        const int column = std::min(isChroma ? x >> picture.format.chromaShiftX : x, view.width - 1);
        const int row = std::min(isChroma ? y >> picture.format.chromaShiftY : y, view.height - 1);
        const double full = view.isFloat ? 1.0 : std::exp2(view.bits) - 1;
        // Grey pictures have no chroma: the middle stands for it.
        codes[part] = own || !isChroma ? view.At(column, row) * 255 / full : 128;
    }
    return Decode(coding, codes);
}

} // namespace

TellingFrames::TellingFrames(const exporting::SignalSource& clip, const reference::ClipFacts& facts)
    : mPictures(clip, exporting::PictureLayout::Gbrapf32, {}, exporting::ChromaRows::Frame), mFacts(facts)
{
}

void TellingFrames::Take(const read::Picture& picture, std::int64_t frame, const read::PictureFacts& movie)
{
    const read::Picture clip = mPictures.Render(frame);
    const bool isSaid = movie.matrix != 2 && movie.matrix != 0;
    const Coding coding{picture.format.isRgb, isSaid ? movie.matrix : 1, movie.fullRange.value_or(false)};
    TellingFrame telling;
    telling.frame = frame;
    telling.picture = picture.index;
    telling.width = std::min(kMostWidth, mFacts.width);
    telling.height = std::max(1, mFacts.height * telling.width / mFacts.width);
    for (int y = 0; y < telling.height; ++y) {
        for (int x = 0; x < telling.width; ++x) {
            const auto at = [&](int place, int from, int to) { return (2 * place + 1) * to / (2 * from); };
            const int clipX = at(x, telling.width, mFacts.width);
            const int clipY = at(y, telling.height, mFacts.height);
            const Triple actual = ShownAt(picture, coding, at(x, telling.width, picture.width),
                                          at(y, telling.height, picture.height));
            for (std::size_t part = 0; part < 3; ++part) {
                double value = clip.components[part].At(clipX, clipY);
                if (mFacts.frameKind.linear) {
                    value = value < 0 ? -curves::SignalOf709(-value) : curves::SignalOf709(value);
                }
                telling.expected.push_back(ByteOf(value * 255));
                telling.actual.push_back(ByteOf(actual[part] * 255));
                const double off = (actual[part] - value) * 255;
                telling.difference.push_back(ByteOf(128 + 4 * off));
                telling.off += std::abs(off);
            }
        }
    }
    telling.off /= static_cast<double>(telling.expected.size());
    mKept.push_back(std::move(telling));
    if (mKept.size() > kKept) {
        mKept.erase(
            std::min_element(mKept.begin(), mKept.end(),
                             [](const TellingFrame& a, const TellingFrame& b) { return a.off < b.off; }));
    }
}

std::vector<TellingFrame> TellingFrames::Result() const
{
    std::vector<TellingFrame> frames = mKept;
    std::sort(frames.begin(), frames.end(),
              [](const TellingFrame& a, const TellingFrame& b) { return a.picture < b.picture; });
    return frames;
}

} // namespace tessel::verify::judge
