#include "FrameOrder.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace tessel::damage {

FrameOrder::FrameOrder(std::int64_t first, std::int64_t count)
{
    mPictures.reserve(static_cast<std::size_t>(count));
    for (std::int64_t i = 0; i < count; ++i) {
        mPictures.push_back({OrderedPicture::Kind::Frame, first + i});
    }
}

bool FrameOrder::Has(std::int64_t at) const noexcept
{
    return at >= 0 && at < static_cast<std::int64_t>(mPictures.size());
}

void FrameOrder::Remove(std::int64_t at)
{
    if (Has(at) && mPictures.size() > 1) {
        mPictures.erase(mPictures.begin() + at);
    }
}

void FrameOrder::Repeat(std::int64_t at, std::int64_t times)
{
    if (Has(at)) {
        const OrderedPicture picture = mPictures[static_cast<std::size_t>(at)];
        mPictures.insert(mPictures.begin() + at, static_cast<std::size_t>(times), picture);
    }
}

void FrameOrder::InsertBlack(std::int64_t at)
{
    if (Has(at)) {
        const std::int64_t frame = mPictures[static_cast<std::size_t>(std::max<std::int64_t>(at - 1, 0))].frame;
        mPictures.insert(mPictures.begin() + at, {OrderedPicture::Kind::Black, frame});
    }
}

void FrameOrder::SwapWithNext(std::int64_t at)
{
    if (Has(at) && Has(at + 1)) {
        std::swap(mPictures[static_cast<std::size_t>(at)], mPictures[static_cast<std::size_t>(at + 1)]);
    }
}

void FrameOrder::Freeze(std::int64_t at, std::int64_t count)
{
    for (std::int64_t i = 1; i <= count && Has(at) && Has(at + i); ++i) {
        mPictures[static_cast<std::size_t>(at + i)] = mPictures[static_cast<std::size_t>(at)];
    }
}

void FrameOrder::Reverse()
{
    std::reverse(mPictures.begin(), mPictures.end());
}

void FrameOrder::Pulldown(std::span<const int> pattern)
{
    std::vector<OrderedPicture> shown;
    for (std::size_t i = 0; i < mPictures.size(); ++i) {
        shown.insert(shown.end(), static_cast<std::size_t>(pattern[i % pattern.size()]), mPictures[i]);
    }
    mPictures = std::move(shown);
}

void FrameOrder::CutHead(std::int64_t count)
{
    const auto most = static_cast<std::int64_t>(mPictures.size()) - 1;
    mPictures.erase(mPictures.begin(), mPictures.begin() + std::clamp<std::int64_t>(count, 0, most));
}

void FrameOrder::CutTail(std::int64_t count)
{
    const auto most = static_cast<std::int64_t>(mPictures.size()) - 1;
    mPictures.erase(mPictures.end() - std::clamp<std::int64_t>(count, 0, most), mPictures.end());
}

void FrameOrder::Spoil(std::int64_t at)
{
    if (Has(at)) {
        mPictures[static_cast<std::size_t>(at)].kind = OrderedPicture::Kind::Noise;
    }
}

} // namespace tessel::damage
