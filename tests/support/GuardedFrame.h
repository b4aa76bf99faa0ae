/// A frame with guard bytes before, after and between its rows, for whatever writes pixels.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace testsupport {

/// Everything starts as 0xCC, the rows' own bytes too. The program under test writes to the rows; afterwards
/// `GuardsAreUntouched` says where it wrote beside them.
class GuardedFrame {
public:
    static constexpr std::byte kGuard{0xCC};

    /// @param usedBytes     Bytes of a row that may be written.
    /// @param guardBytes    Between one row and the next; 0 makes the rows one run.
    /// @param misalignment  Added to the address of the first row, which is else a multiple of 64.
    GuardedFrame(std::size_t usedBytes, std::uint32_t rows, std::size_t guardBytes = 64,
                 std::size_t misalignment = 0)
        : mUsedBytes(usedBytes), mStep(usedBytes + guardBytes), mRows(rows),
          mBytes(mStep * rows + 2 * kMargin + kAlignment, kGuard)
    {
        const auto address = reinterpret_cast<std::uintptr_t>(mBytes.data()) + kMargin;
        mFirst = kMargin + (kAlignment - address % kAlignment) % kAlignment + misalignment;
    }

    [[nodiscard]] std::ptrdiff_t RowBytes() const { return static_cast<std::ptrdiff_t>(mStep); }
    [[nodiscard]] std::uint32_t Rows() const { return mRows; }

    /// Rows in the order of memory.
    [[nodiscard]] std::span<std::byte> Row(std::uint32_t row)
    {
        return std::span(mBytes).subspan(mFirst + row * mStep, mUsedBytes);
    }

    [[nodiscard]] ::testing::AssertionResult GuardsAreUntouched()
    {
        std::size_t from = 0;
        for (std::uint32_t row = 0; row <= mRows; ++row) {
            const std::size_t to = row < mRows ? mFirst + row * mStep : mBytes.size();
            for (std::size_t at = from; at < to; ++at) {
                if (mBytes[at] != kGuard) {
                    return ::testing::AssertionFailure()
                           << "byte " << static_cast<std::ptrdiff_t>(at - mFirst)
                           << " from the first row's start is " << std::to_integer<int>(mBytes[at]) << "; "
                           << mRows << " rows are " << mUsedBytes << " bytes every " << mStep;
                }
            }
            from = to + mUsedBytes;
        }
        return ::testing::AssertionSuccess();
    }

private:
    static constexpr std::size_t kAlignment = 64;
    static constexpr std::size_t kMargin = 256;

    std::size_t mUsedBytes;
    std::size_t mStep;
    std::uint32_t mRows;
    std::vector<std::byte> mBytes;
    std::size_t mFirst = 0;
};

/// Whether two rows of bytes are equal; says where they differ first.
[[nodiscard]] inline ::testing::AssertionResult SameBytes(std::span<const std::byte> actual,
                                                          std::span<const std::byte> expected)
{
    if (actual.size() != expected.size()) {
        return ::testing::AssertionFailure() << actual.size() << " bytes instead of " << expected.size();
    }
    const auto [a, e] = std::mismatch(actual.begin(), actual.end(), expected.begin());
    if (a == actual.end()) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << "byte " << a - actual.begin() << " of " << actual.size() << " is " << std::to_integer<int>(*a)
           << " instead of " << std::to_integer<int>(*e);
}

} // namespace testsupport
