#include "VectorSine.h"

#include <bit>
#include <cstddef>
#include <cstdint>

namespace ImporterTessel {
namespace {

// Pi in three parts, the first two of 30 bits: n × part is exact for n below 2^23. Together they are pi to
// 2^-113, so that a phase beside a multiple of pi keeps a relative error near a double's own. All are positive,
// which lets a phase of -0 keep its sign.
constexpr double kPiHigh = 0x1.921fb54000000p+1;
constexpr double kPiMiddle = 0x1.10b4611800000p-29;
constexpr double kPiLow = 0x1.313198a2e0370p-60;
constexpr double kOneOverPi = 0x1.45f306dc9c883p-2;
static_assert(kLargestVectorPhase * kOneOverPi < 0x1p23);

/// 1.5 × 2^52: adding it rounds a double of less than 2^51 to a whole number, whose lowest bit is then the
/// sum's lowest bit.
constexpr double kRoundToWhole = 0x1.8p52;

// sin(r) = r·(1 + z·(c0 + c1·z + ... + c6·z^6)), z = r², on |r| ≤ π/2: the polynomial of this degree with the
// least relative error, 1.6e-16, found by Remez exchange.
constexpr double kC0 = -0x1.55555555554a8p-3;
constexpr double kC1 = 0x1.111111110a576p-7;
constexpr double kC2 = -0x1.a01a019a65be2p-13;
constexpr double kC3 = 0x1.71de3806b7c79p-19;
constexpr double kC4 = -0x1.ae6355adc2243p-26;
constexpr double kC5 = 0x1.60e6bf5ad21cep-33;
constexpr double kC6 = -0x1.9f1526a6a914cp-41;

[[gnu::always_inline]] inline void FillSinesLoop(const double* __restrict phases, std::size_t count,
                                                 double amplitude, float* __restrict out) noexcept
{
    for (std::size_t k = 0; k < count; ++k) {
        const double phase = phases[k];
        const double shifted = phase * kOneOverPi + kRoundToWhole;
        const double halfCycles = shifted - kRoundToWhole;
        const double r = ((phase - halfCycles * kPiHigh) - halfCycles * kPiMiddle) - halfCycles * kPiLow;
        const double z = r * r;
        const double z2 = z * z;
        const double z4 = z2 * z2;
        const double polynomial = ((kC0 + kC1 * z) + (kC2 + kC3 * z) * z2) + ((kC4 + kC5 * z) + kC6 * z2) * z4;
        // The product, not r + r·z·p, again for the sign of -0.
        const double sine = r * (1.0 + z * polynomial);
        // Odd half cycles have the other sign.
        const std::uint64_t sign = std::bit_cast<std::uint64_t>(shifted) << 63U;
        const auto signedSine = std::bit_cast<double>(std::bit_cast<std::uint64_t>(sine) ^ sign);
        out[k] = static_cast<float>(signedSine * amplitude);
    }
}

} // namespace

void FillSines(std::span<const double> phases, double amplitude, float* out, VectorWidth width) noexcept
{
    qelaccelerate::RunWithVectors(width, [=] { FillSinesLoop(phases.data(), phases.size(), amplitude, out); });
}

} // namespace ImporterTessel
