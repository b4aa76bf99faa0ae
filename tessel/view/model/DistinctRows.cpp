#include "DistinctRows.h"

#include <algorithm>
#include <cstring>

namespace tessel::view {
namespace {

/// Four sums side by side, which processors work on at once. Equal rows have equal hashes; others hardly ever.
std::uint64_t HashOf(const std::byte* row, std::size_t size) noexcept
{
    constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15; // 2^64 through the golden ratio
    std::uint64_t sums[4] = {1, 2, 3, 4};
    std::size_t at = 0;
    for (; at + sizeof sums <= size; at += sizeof sums) {
        std::uint64_t words[4];
        std::memcpy(words, row + at, sizeof words);
        for (int i = 0; i < 4; ++i) {
            sums[i] = (sums[i] ^ words[i]) * kOdd;
            sums[i] ^= sums[i] >> 29;
        }
    }
    std::uint64_t hash = sums[0] ^ (sums[1] << 1) ^ (sums[2] << 2) ^ (sums[3] << 3);
    for (; at < size; ++at) {
        hash = (hash ^ std::to_integer<std::uint64_t>(row[at])) * kOdd;
    }
    return hash;
}

} // namespace

void DistinctRows::Find(const exporting::FrameView& frame, int step)
{
    mFirsts.clear();
    mCounts.clear();
    mKinds.clear();
    mByHash.clear();
    const std::size_t size = exporting::BytesOfRow(frame.format, frame.width);
    for (int y = 0; y < frame.height; y += step) {
        const std::byte* const row = frame.top + y * frame.rowBytes;
        const std::uint64_t hash = HashOf(row, size);
        int kind = -1;
        const auto [begin, end] = mByHash.equal_range(hash);
        for (auto known = begin; known != end && kind < 0; ++known) {
            const int first = mFirsts[static_cast<std::size_t>(known->second)];
            if (std::memcmp(frame.top + first * frame.rowBytes, row, size) == 0) {
                kind = known->second;
            }
        }
        if (kind < 0) {
            kind = static_cast<int>(mFirsts.size());
            mFirsts.push_back(y);
            mCounts.push_back(0);
            mByHash.emplace(hash, kind);
        }
        ++mCounts[static_cast<std::size_t>(kind)];
        mKinds.push_back(kind);
    }
}

RowBatches::RowBatches(BR::PixelFormat format, std::int32_t width)
    : mRowBytes((exporting::BytesOfRow(format, width) + 63) / 64 * 64), mBytes(mRowBytes * kRows)
{
    std::memset(mBytes.Bytes(), 0, mBytes.Size());
}

void RowBatches::ForEach(
    const exporting::FrameView& frame, const std::vector<int>& rows,
    const std::function<void(const exporting::FrameView& batch, int first, int count)>& use)
{
    const std::size_t size = exporting::BytesOfRow(frame.format, frame.width);
    const int total = static_cast<int>(rows.size());
    for (int first = 0; first < total; first += kRows) {
        const int count = std::min(kRows, total - first);
        for (int i = 0; i < count; ++i) {
            std::memcpy(mBytes.Bytes() + static_cast<std::size_t>(i) * mRowBytes,
                        frame.top + rows[static_cast<std::size_t>(first + i)] * frame.rowBytes, size);
        }
        use({.format = frame.format,
             .width = frame.width,
             .height = kRows,
             .top = mBytes.Bytes(),
             .rowBytes = static_cast<std::ptrdiff_t>(mRowBytes),
             .owner = nullptr},
            first, count);
    }
}

} // namespace tessel::view
