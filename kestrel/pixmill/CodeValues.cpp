#include "CodeValues.h"

#include <cmath>
#include <cstddef>
#include <utility>

namespace pixmill {
namespace {

/// A sum of doubles without rounding error: partial sums other than 0 that do not overlap, in growing magnitude
/// (J. R. Shewchuk, "Adaptive precision floating-point arithmetic", 1997).
class ExactSum {
public:
    void Add(double value) noexcept
    {
        std::size_t kept = 0;
        for (std::size_t i = 0; i < mCount; ++i) {
            double partial = mPartials[i];
            if (std::abs(value) < std::abs(partial)) {
                std::swap(value, partial);
            }
            const double high = value + partial;
            const double low = partial - (high - value);
            if (low != 0) {
                mPartials[kept++] = low;
            }
            value = high;
        }
        if (value != 0) {
            mPartials[kept++] = value;
        }
        mCount = kept;
    }

    /// `weight` is an integer below 2^23 in magnitude, `value` may use all 53 bits.
    void AddProduct(double weight, double value) noexcept
    {
        // Veltkamp's splitting: two halves of at most 26 bits, whose products with the weight are exact.
        const double spread = value * 0x1p27;
        const double high = spread - (spread - value);
        Add(weight * high);
        Add(weight * (value - high));
    }

    /// The largest partial outweighs the others. None of them is 0, so it is not 0 where only small ones are
    /// left.
    [[nodiscard]] bool IsNegative() const noexcept { return mCount > 0 && mPartials[mCount - 1] < 0; }

private:
    static constexpr std::size_t kMostTerms = 9; // four products in halves, one limit
    std::array<double, kMostTerms> mPartials{};
    std::size_t mCount = 0;
};

} // namespace

std::uint32_t ExactCode(const CodeRules& rules, std::size_t index, const Components& components) noexcept
{
    ExactSum weighted;
    for (std::size_t i = 0; i < components.size(); ++i) {
        weighted.AddProduct(rules.weights[i][index], components[i]);
    }
    // The largest code k with weights·components >= divisor·(k - offset - 0.5). The end codes need no proof.
    auto lowest = static_cast<std::uint32_t>(rules.lowest[index]);
    auto highest = static_cast<std::uint32_t>(rules.highest[index]);
    while (lowest < highest) {
        const std::uint32_t code = (lowest + highest + 1) / 2;
        ExactSum excess = weighted;
        excess.Add(-rules.divisor[index] * (code - rules.offset[index] - 0.5));
        if (excess.IsNegative()) {
            highest = code - 1;
        } else {
            lowest = code;
        }
    }
    return lowest;
}

} // namespace pixmill
