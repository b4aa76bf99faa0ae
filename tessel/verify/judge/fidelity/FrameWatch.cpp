#include "FrameWatch.h"

#include <tessel/verify/read/Rows.h>
#include <tessel/verify/reference/MovieLayout.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace tessel::verify::judge {
namespace {

constexpr int kWatchedRows = 16;
// Suspicious beyond twice what is usual and one code more.
constexpr double kTimesUsual = 2;
constexpr double kBeyondUsual = 1;    // 8-bit codes
constexpr double kForgetting = 0.125; // share of the newest picture in what is usual

/// What 8-bit codes are multiplied by to become codes of the component.
double UnitOf(const read::ComponentView& view) noexcept
{
    return view.isFloat ? 1 / 255.0 : std::exp2(view.bits - 8);
}

} // namespace

FrameWatch::FrameWatch(const exporting::SignalSource& clip, const reference::ClipFacts& facts)
    : mClip(clip), mFacts(facts)
{
}

bool FrameWatch::IsSuspicious(const read::Picture& picture, std::int64_t frame, const read::PictureFacts& movie)
{
    if (picture.width != mFacts.width || picture.height != mFacts.height) {
        return false;
    }
    if (!mPictures) {
        mPictures.emplace(mClip,
                          picture.format.isRgb ? exporting::PictureLayout::Gbrp16
                                               : exporting::PictureLayout::Yuv422p10,
                          reference::CodingFor(mFacts, movie), exporting::ChromaRows::Frame);
        mExpected.resize(static_cast<std::size_t>(mFacts.width));
        mFound.resize(mExpected.size());
    }
    // G of R'G'B', else Y'.
    const int part = picture.format.isRgb ? 1 : 0;
    const read::ComponentView& found = picture.components[part];
    const int count = std::min(kWatchedRows, mFacts.height);
    const int step = mFacts.height / count;
    const int first = step / 2;
    const read::Picture clip = mPictures->RenderRows(frame, first, count, step);
    const read::ComponentView& expected = clip.components[part];
    const auto foundUnit = static_cast<float>(1 / UnitOf(found));
    const auto expectedUnit = static_cast<float>(1 / UnitOf(expected));
    double sum = 0;
    for (int row = 0; row < count; ++row) {
        read::LoadRow(expected, row, mExpected.data());
        read::LoadRow(found, first + row * step, mFound.data());
        float inRow = 0;
        for (std::size_t x = 0; x < mFound.size(); ++x) {
            inRow += std::abs(mFound[x] * foundUnit - mExpected[x] * expectedUnit);
        }
        sum += static_cast<double>(inRow);
    }
    const double off = sum / (static_cast<double>(count) * mFacts.width);
    if (!mHasUsual) {
        mHasUsual = true;
        mUsual = off;
        return false; // measured anyway
    }
    if (off > kTimesUsual * mUsual + kBeyondUsual) {
        return true;
    }
    mUsual += kForgetting * (off - mUsual);
    return false;
}

} // namespace tessel::verify::judge
