#include "DetailSampler.h"

#include <algorithm>
#include <cmath>

namespace tessel::verify::judge {
namespace {

constexpr std::int64_t kDetailFrames = 4; // looked at, spread over the clip
constexpr std::size_t kMostEdges = 400;   // of each axis, in all frames
constexpr int kDetailRows = 270;          // of a component that are looked at
constexpr int kRuns = 3;                  // in a row
constexpr int kRunLength = 16;            // samples
constexpr int kFloatBits = 16;            // floats of 0..1 count as codes of so many bits

/// Pixels are where the clip has them.
bool IsInPlace(const align::Placement& placement) noexcept
{
    return placement.orientation == align::Orientation::Upright && std::abs(placement.scaleX - 1) < 2e-3 &&
           std::abs(placement.scaleY - 1) < 2e-3 && std::abs(placement.offsetX) < 0.6 &&
           std::abs(placement.offsetY) < 0.6;
}

std::uint32_t CodeAt(const read::ComponentView& view, int x, int y) noexcept
{
    const double value = view.At(x, y);
    return static_cast<std::uint32_t>(view.isFloat ? std::clamp(value, 0.0, 1.0) * 65535 + 0.5 : value);
}

} // namespace

DetailSampler::DetailSampler(const exporting::SignalSource& clip, const reference::ClipFacts& facts)
    : mClip(clip), mFacts(facts), mStride(std::max<std::int64_t>(1, facts.frameCount / kDetailFrames))
{
}

void DetailSampler::Choose(const read::Picture& picture, std::int64_t frame, const read::PictureFacts& movie)
{
    mIsChosen = true;
    std::optional<exporting::PictureLayout> layout = reference::LayoutFor(picture.format);
    if (!layout && !picture.format.isFloat) {
        // 12-bit samples, say: edges are compared with finer ones, codes are not.
        read::SampleFormat finer = picture.format;
        finer.bits = 16;
        layout = reference::LayoutFor(finer);
    }
    if (!layout) {
        return;
    }
    // Chroma of pictures with fields may be subsampled by field or by frame; the nearer way is the movie's.
    const bool hasFields = mFacts.fields != read::FieldOrder::Progressive || mFacts.fileKind.fieldPicture;
    const bool hasTwoWays = picture.format.chromaShiftY > 0 && hasFields;
    double least = 1e300;
    for (const exporting::ChromaRows rows : {exporting::ChromaRows::Frame, exporting::ChromaRows::Field}) {
        auto pictures = std::make_unique<reference::ClipPictures>(mClip, *layout,
                                                                  reference::CodingFor(mFacts, movie), rows);
        double off = 0;
        if (hasTwoWays) {
            const read::Picture was = pictures->Render(frame);
            const read::ComponentView& expected = was.components[1];
            for (int y = 0; y < expected.height; ++y) {
                for (int x = 0; x < expected.width; x += 8) {
                    off += std::abs(expected.At(x, y) - picture.components[1].At(x, y));
                }
            }
        }
        if (off < least) {
            least = off;
            mPictures = std::move(pictures);
            mHasFields = mFacts.fields != read::FieldOrder::Progressive ||
                         (hasTwoWays && rows == exporting::ChromaRows::Field);
        }
        if (!hasTwoWays) {
            break;
        }
    }
}

void DetailSampler::TakeCodes(const read::Picture& was, const read::Picture& is)
{
    for (std::size_t part = 0; part < 3; ++part) {
        const read::ComponentView& expected = was.components[part];
        const read::ComponentView& found = is.components[part];
        if (!expected || !found || expected.width < 2 * kRunLength || expected.bits != found.bits) {
            continue;
        }
        const bool isLevel = is.format.isRgb || part == 0;
        std::optional<CodeCounts>& counts = isLevel ? mLevels : mChroma;
        if (!counts) {
            counts.emplace(found.isFloat ? kFloatBits : found.bits);
        }
        const int stride = std::max(1, expected.height / kDetailRows);
        for (int y = 0; y < expected.height; y += stride) {
            for (int run = 0; run < kRuns; ++run) {
                const int first = (2 * run + 1) * expected.width / (2 * kRuns) - kRunLength / 2;
                const std::uint32_t level = CodeAt(expected, first, y);
                double sum = 0;
                bool isEven = true;
                std::uint32_t last = level;
                for (int x = first; x < first + kRunLength; ++x) {
                    const std::uint32_t code = CodeAt(expected, x, y);
                    const std::uint32_t came = CodeAt(found, x, y);
                    counts->Take(code, came, x > first && code == last);
                    last = code;
                    isEven = isEven && code == level;
                    sum += came;
                }
                if (isLevel && isEven) {
                    mStairs.push_back({static_cast<double>(level), sum / kRunLength});
                }
            }
        }
    }
}

void DetailSampler::Take(const read::Picture& picture, std::int64_t frame, const align::Placement& placement,
                         const read::PictureFacts& movie)
{
    if (picture.width != mFacts.width || picture.height != mFacts.height || !IsInPlace(placement)) {
        return;
    }
    if (!mIsChosen) {
        Choose(picture, frame, movie);
    }
    if (!mPictures) {
        return;
    }
    const read::Picture was = mPictures->Render(frame);
    TakeCodes(was, picture);
    const ChromaPicture wasChroma = ChromaOf(was);
    const ChromaPicture isChroma = ChromaOf(picture);
    const std::size_t share = kMostEdges / kDetailFrames * static_cast<std::size_t>(mTaken + 1);
    FindEdges(wasChroma, isChroma, Axis::Across, std::min(share, kMostEdges), mAcross, mLumaAcross);
    if (!mHasFields) {
        FindEdges(wasChroma, isChroma, Axis::Down, std::min(share, kMostEdges), mDown, mLumaDown);
        TakeRowSteps(wasChroma, isChroma, mSteps);
    }
    ++mTaken;
}

} // namespace tessel::verify::judge
