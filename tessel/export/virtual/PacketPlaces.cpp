#include "PacketPlaces.h"

#include <tessel/export/AudioBlocks.h>

#include <algorithm>

namespace tessel::exporting {

std::int64_t PacketPlaces::StartSample(std::int64_t index) const noexcept
{
    return std::min(FrameStartSample(index, mShape.rateNumerator, mShape.rateDenominator, mShape.sampleRate),
                    mShape.sampleCount);
}

std::int64_t PacketPlaces::NextCut(std::int64_t sample, std::int64_t index) const noexcept
{
    std::int64_t cut = std::min((sample / mShape.soundBlock + 1) * mShape.soundBlock, mShape.sampleCount);
    if (mShape.pictureCount == 0) {
        // Sound alone is written a second at a time.
        return std::min(cut, (sample / mShape.sampleRate + 1) * mShape.sampleRate);
    }
    for (; index <= mShape.pictureCount; ++index) {
        if (const std::int64_t start = StartSample(index); start > sample) {
            return std::min(cut, start);
        }
    }
    return cut;
}

std::int64_t PacketPlaces::SamplesBefore(std::int64_t index) const noexcept
{
    if (index <= 0 || index >= mShape.pictureCount) {
        return index <= 0 ? 0 : mShape.sampleCount;
    }
    const std::int64_t start = StartSample(index);
    // The picture's time in samples is a whole number and `rest / rateNumerator`.
    const std::int64_t units = index * mShape.rateDenominator % mShape.rateNumerator * mShape.sampleRate;
    const std::int64_t rest = units % mShape.rateNumerator;
    const bool isRoundedDown = rest != 0 && 2 * rest < mShape.rateNumerator;
    // Sound of the picture that was rounded to a sample before its time is sorted before it: one packet,
    // because the next one begins later.
    return isRoundedDown && start < mShape.sampleCount ? NextCut(start, index + 1) : start;
}

std::int64_t PacketPlaces::PictureAt(std::int64_t offset) const noexcept
{
    std::int64_t first = 0;
    std::int64_t end = mShape.pictureCount;
    while (end - first > 1) {
        const std::int64_t middle = first + (end - first) / 2;
        (PictureOffset(middle) <= offset ? first : end) = middle;
    }
    return first;
}

} // namespace tessel::exporting
