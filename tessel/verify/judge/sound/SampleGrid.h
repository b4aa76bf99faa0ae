/// How fine samples are, by the values that they have.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace tessel::verify::judge {

/// Counts on which grids of n bits samples lie. A sample of n bits is a whole multiple of 2^(1-n).
/// Threads: one object, one thread at a time.
class SampleGrid {
public:
    void Take(std::span<const float> samples);

    /// The least bits that hold all samples but a few in a hundred thousand (a decoder's rounding at a border);
    /// 0: all samples are zero; 25: floats, which lie on no grid.
    [[nodiscard]] int UsedBits() const noexcept;

private:
    std::array<std::int64_t, 26> mCounts{}; ///< samples that need so many bits
};

} // namespace tessel::verify::judge
