/// Which rows of a frame are equal. Test pictures repeat most of their rows, so that converting and measuring
/// each kind of row once takes a fraction of the time.
#pragma once

#include <tessel/export/convert/AlignedBuffer.h>
#include <tessel/export/convert/FrameView.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <unordered_map>
#include <vector>

namespace tessel::view {

/// Threads: one object, one thread at a time.
class DistinctRows {
public:
    /// Looks at each `step`th row from the first one on. Cost: reading these rows about twice.
    void Find(const exporting::FrameView& frame, int step);

    /// A row of the frame for each kind, in the order in which they come.
    [[nodiscard]] const std::vector<int>& Firsts() const noexcept { return mFirsts; }
    /// How many rows there are of each kind.
    [[nodiscard]] const std::vector<std::uint32_t>& Counts() const noexcept { return mCounts; }
    /// The kind of each row that was looked at.
    [[nodiscard]] const std::vector<int>& Kinds() const noexcept { return mKinds; }

private:
    std::vector<int> mFirsts;
    std::vector<std::uint32_t> mCounts;
    std::vector<int> mKinds;
    std::unordered_multimap<std::uint64_t, int> mByHash;
};

/// Hands out rows of a frame as small frames of `kRows` rows, for what works on frames of one size.
/// Threads: one object, one thread at a time.
class RowBatches {
public:
    static constexpr int kRows = 16;

    RowBatches(BR::PixelFormat format, std::int32_t width);

    /// @param use  gets a frame of `kRows` rows, the index in `rows` of its first one, and how many of its rows
    ///             come from `rows`; the rest is undefined. The frame is gone when it returns.
    void ForEach(const exporting::FrameView& frame, const std::vector<int>& rows,
                 const std::function<void(const exporting::FrameView& batch, int first, int count)>& use);

private:
    std::size_t mRowBytes;
    exporting::AlignedBuffer mBytes;
};

} // namespace tessel::view
