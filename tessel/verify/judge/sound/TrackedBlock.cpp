#include "TrackedBlock.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tessel::verify::judge {

double ToneNoise(const TrackerSetup& setup, double residual) noexcept
{
    return 4 * residual * std::sqrt(2.0 / setup.BlockLength());
}

TrackedBlock FitBlock(const TrackerSetup& setup, std::span<const float> samples, std::int64_t first)
{
    TrackedBlock block;
    block.first = first;
    setup.bank.Analyse(samples, block.fit);
    const double centre = static_cast<double>(first) + (setup.BlockLength() - 1) / 2.0;
    for (std::size_t i = 0; i < block.fit.tones.size(); ++i) {
        const double amplitude = std::abs(block.fit.tones[i]);
        const double turns = setup.frequencies[i] * centre;
        const double noise = ToneNoise(setup, block.fit.residual);
        block.tones.push_back(amplitude < std::max(setup.onLevel, noise)
                                  ? std::complex<double>()
                                  : block.fit.tones[i] *
                                        std::polar(1.0, -2 * std::numbers::pi * (turns - std::floor(turns))));
        block.loudest = std::max(block.loudest, std::abs(block.tones.back()));
    }
    // Next to a loud tone, a weak one is a harmonic or the codec's.
    for (std::complex<double>& tone : block.tones) {
        if (std::abs(tone) < 0.05 * block.loudest) {
            tone = {};
        }
    }
    return block;
}

bool AreAlike(const TrackerSetup& setup, const TrackedBlock& a, const TrackedBlock& b)
{
    const double loudest = std::max(a.loudest, b.loudest);
    const double noise = ToneNoise(setup, std::max(a.fit.residual, b.fit.residual));
    for (std::size_t i = 0; i < a.tones.size(); ++i) {
        if (std::abs(a.tones[i] - b.tones[i]) > kAlikeTones * loudest + noise + setup.onLevel) {
            return false;
        }
    }
    // Half a block of tone is not alike the other half.
    const double most = std::max(0.3 * loudest, 2 * setup.onLevel);
    const bool isNoisy = a.fit.residual > most && b.fit.residual > most;
    return isNoisy ? std::abs(a.fit.residual - b.fit.residual) < 0.2 * a.fit.residual
                   : std::max(a.fit.residual, b.fit.residual) <= most;
}

} // namespace tessel::verify::judge
