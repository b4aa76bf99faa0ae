#include "SampleGrid.h"

#include <algorithm>
#include <cmath>

namespace tessel::verify::judge {

void SampleGrid::Take(std::span<const float> samples)
{
    for (const float sample : samples) {
        if (sample == 0.0F || !std::isfinite(sample)) {
            continue;
        }
        const double scaled = static_cast<double>(sample) * 8388608; // 2^23: 24 bits
        const auto whole = static_cast<std::int64_t>(scaled);
        if (static_cast<double>(whole) != scaled) {
            ++mCounts[25];
            continue;
        }
        int bits = 24;
        std::int64_t rest = whole;
        while ((rest & 1) == 0 && bits > 1) {
            rest /= 2;
            --bits;
        }
        ++mCounts[static_cast<std::size_t>(bits)];
    }
}

int SampleGrid::UsedBits() const noexcept
{
    std::int64_t total = 0;
    for (const std::int64_t count : mCounts) {
        total += count;
    }
    if (total == 0) {
        return 0;
    }
    std::int64_t above = 0;
    for (int bits = 25; bits > 1; --bits) {
        above += mCounts[static_cast<std::size_t>(bits)];
        if (above * 20'000 > total) {
            return bits;
        }
    }
    return 1;
}

} // namespace tessel::verify::judge
