#include "NumberInk.h"

#include "FillRow.h"
#include "PixelSpans.h"

#include <algorithm>
#include <cstring>

namespace pixmill {

namespace {

constexpr ColorBGRA kBlackColor{0, 0, 0, 1};
constexpr ColorBGRA kWhiteColor{1, 1, 1, 1};

/// from + (to - from)·coverage/255, rounded to nearest; `to` may be the smaller one.
[[nodiscard]] std::uint32_t Mixed(std::uint32_t from, std::uint32_t to, std::uint32_t coverage) noexcept
{
    return (from * (255 - coverage) + to * coverage + 127) / 255;
}

/// Walks the luma samples of a v210 row.
class V210Luma {
public:
    V210Luma(std::byte* row, std::uint32_t x) noexcept
        : mGroup(row + std::size_t{x / 6} * 16), mPlace(kV210Luma.data() + x % 6)
    {
    }

    /// Replaces the sample and goes on to the next pixel's.
    void SetAndStep(std::uint32_t luma) noexcept
    {
        std::byte* word = mGroup + mPlace->offset;
        StoreWord(word, (LoadWord(word) & ~(kV210Mask << mPlace->shift)) | luma << mPlace->shift);
        if (++mPlace == kV210Luma.data() + kV210Luma.size()) {
            mPlace = kV210Luma.data();
            mGroup += 16;
        }
    }

private:
    std::byte* mGroup;
    const V210Place* mPlace;
};

/// Like `FillRow`, for short stretches whose length need only be a multiple of the pattern's period.
void FillShort(std::byte* target, std::size_t bytes, const FillPattern& pattern) noexcept
{
    if (bytes < pattern.size()) {
        std::memcpy(target, pattern.data(), bytes);
        return;
    }
    std::size_t at = 0;
    for (; at + pattern.size() <= bytes; at += pattern.size()) {
        std::memcpy(target + at, pattern.data(), pattern.size());
    }
    // What is left is shorter than the pattern: write it together with bytes that hold the pattern already.
    std::memcpy(target + bytes - pattern.size(), pattern.data(), pattern.size());
}

} // namespace

NumberInk::NumberInk(std::uint32_t code) noexcept
    : mCode(code), mLayout((code & kBitV210) != 0    ? Layout::V210
                           : (code & kBit422) != 0   ? Layout::Subsampled8
                           : (code & kBitFloat) != 0 ? Layout::Floats4
                                                     : Layout::Bytes4),
      mBlack(ConvertColor(code, kBlackColor)), mWhite(ConvertColor(code, kWhiteColor)),
      mLumaAt((code & kBitSwapped) != 0 ? 0 : 1)
{
    if (mLayout == Layout::Floats4) {
        return;
    }
    const std::uint32_t black = LoadWord(mBlack.pattern.data());
    const std::uint32_t white = LoadWord(mWhite.pattern.data());
    for (std::uint32_t coverage = 0; coverage < mCodes.size(); ++coverage) {
        const auto mixed = [=](std::uint32_t shift, std::uint32_t mask) {
            return Mixed(black >> shift & mask, white >> shift & mask, coverage);
        };
        if (mLayout == Layout::Bytes4) {
            mCodes[coverage] =
                mixed(0, 0xFF) | mixed(8, 0xFF) << 8 | mixed(16, 0xFF) << 16 | mixed(24, 0xFF) << 24;
        } else if (mLayout == Layout::Subsampled8) {
            mCodes[coverage] = mixed(static_cast<std::uint32_t>(mLumaAt) * 8, 0xFF);
        } else {
            mCodes[coverage] = mixed(kV210Luma[0].shift, kV210Mask);
        }
    }
}

void NumberInk::PaintPlate(std::byte* row, std::uint32_t x, std::uint32_t count) const noexcept
{
    PaintSpan(row, mCode, x, count, mBlack);
}

template <NumberInk::Layout kLayout>
inline void NumberInk::PaintSolid(std::byte* row, std::uint32_t x, std::uint32_t count) const noexcept
{
    switch (kLayout) {
    case Layout::Bytes4:
        FillShort(row + std::size_t{x} * 4, std::size_t{count} * 4, mWhite.pattern);
        break;
    case Layout::Floats4:
        FillShort(row + std::size_t{x} * 16, std::size_t{count} * 16, mWhite.pattern);
        break;
    case Layout::Subsampled8:
        // White's chroma samples are equal, so its pattern repeats every two bytes and may begin anywhere.
        FillShort(row + std::size_t{x} * 2, std::size_t{count} * 2, mWhite.pattern);
        break;
    case Layout::V210: {
        const std::uint32_t white = mCodes[255];
        const std::uint32_t head = std::min((6 - x % 6) % 6, count);
        const std::uint32_t groups = (count - head) / 6;
        V210Luma luma(row, x);
        for (std::uint32_t i = 0; i < head; ++i) {
            luma.SetAndStep(white);
        }
        x += head;
        // White's chroma is the plate's, so that whole groups can be replaced.
        FillShort(row + std::size_t{x / 6} * 16, std::size_t{groups} * 16, mWhite.pattern);
        V210Luma tail(row, x + groups * 6);
        for (std::uint32_t i = head + groups * 6; i < count; ++i) {
            tail.SetAndStep(white);
        }
        break;
    }
    }
}

template <NumberInk::Layout kLayout>
inline void NumberInk::PaintEdges(std::byte* row, std::uint32_t x, std::uint32_t count,
                                  const std::uint8_t* coverages) const noexcept
{
    switch (kLayout) {
    case Layout::Bytes4:
        for (std::uint32_t i = 0; i < count; ++i) {
            std::memcpy(row + std::size_t{x + i} * 4, &mCodes[coverages[i]], 4);
        }
        break;
    case Layout::Floats4:
        for (std::uint32_t i = 0; i < count; ++i) {
            BlendPixel(row, mCode, x + i, mWhite, static_cast<float>(coverages[i]) / 255.0F);
        }
        break;
    case Layout::Subsampled8:
        for (std::uint32_t i = 0; i < count; ++i) {
            row[std::size_t{x + i} * 2 + mLumaAt] = static_cast<std::byte>(mCodes[coverages[i]]);
        }
        break;
    case Layout::V210: {
        V210Luma luma(row, x);
        for (std::uint32_t i = 0; i < count; ++i) {
            luma.SetAndStep(mCodes[coverages[i]]);
        }
        break;
    }
    }
}

template <NumberInk::Layout kLayout>
void NumberInk::PaintRunsAs(std::byte* row, std::uint32_t x, const GlyphMask& mask,
                            std::span<const InkRun> runs) const noexcept
{
    for (const InkRun& run : runs) {
        if (run.edges == InkRun::kSolid) {
            PaintSolid<kLayout>(row, x + run.x, run.length);
        } else {
            PaintEdges<kLayout>(row, x + run.x, run.length, mask.Edges(run));
        }
    }
}

void NumberInk::PaintRuns(std::byte* row, std::uint32_t x, const GlyphMask& mask,
                          std::span<const InkRun> runs) const noexcept
{
    switch (mLayout) {
    case Layout::Bytes4:
        return PaintRunsAs<Layout::Bytes4>(row, x, mask, runs);
    case Layout::Floats4:
        return PaintRunsAs<Layout::Floats4>(row, x, mask, runs);
    case Layout::Subsampled8:
        return PaintRunsAs<Layout::Subsampled8>(row, x, mask, runs);
    case Layout::V210:
        return PaintRunsAs<Layout::V210>(row, x, mask, runs);
    }
}

void NumberInk::BlendRuns(std::byte* row, std::uint32_t x, const GlyphMask& mask,
                          std::span<const InkRun> runs) const noexcept
{
    for (const InkRun& run : runs) {
        for (std::uint32_t i = 0; i < run.length; ++i) {
            const float coverage =
                run.edges == InkRun::kSolid ? 1.0F : static_cast<float>(mask.Edges(run)[i]) / 255.0F;
            BlendPixel(row, mCode, x + run.x + i, mWhite, coverage);
        }
    }
}

} // namespace pixmill
