#include "HarmonicMeter.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tessel::verify::judge {
namespace {

std::vector<double> Multiples(double cycles)
{
    std::vector<double> list{cycles};
    for (int order = 2; order <= HarmonicBank::kHighest && order * cycles < 0.45; ++order) {
        list.push_back(order * cycles);
    }
    return list;
}

/// Whether the tops of a tone are cut: samples in a row that stay near the largest one for so long that a sine
/// would have fallen far below it.
/// @param band  how near, as a part of the largest sample
bool HasFlatTops(std::span<const float> samples, double amplitude, double cycles, double peak, double band)
{
    const double level = peak * (1 - band) - 2e-6;
    int longest = 0;
    int row = 0;
    for (const float sample : samples) {
        row = std::abs(static_cast<double>(sample)) >= level ? row + 1 : 0;
        longest = std::max(longest, row);
    }
    const double halfWidth = std::numbers::pi * cycles * (longest - 1);
    const double fall = amplitude * (1 - std::cos(std::min(halfWidth, std::numbers::pi)));
    // A tone whose amplitude is above its peak has been cut, or is sampled beside its tops: those rows are
    // short.
    return longest >= 3 && fall > 4 * (peak - level) && amplitude > peak * 1.001;
}

} // namespace

HarmonicBank::HarmonicBank(double cyclesPerSample, int length)
    : cycles(cyclesPerSample), bank(Multiples(cyclesPerSample), length)
{
}

void HarmonicMeter::TakeRest(const BlockTones& fit)
{
    ++mBlocks;
    mConstant += fit.constant;
    mConstantSquares += fit.constant * fit.constant;
    mNoise += fit.residual * fit.residual;
}

void HarmonicMeter::TakeTone(const HarmonicBank& bank, std::span<const float> samples)
{
    BlockTones fit;
    bank.bank.Analyse(samples, fit);
    const double amplitude = std::abs(fit.tones.front());
    if (amplitude <= 0) {
        return;
    }
    TakeRest(fit);
    ++mToneBlocks;
    const double phase = std::arg(fit.tones.front());
    for (std::size_t i = 1; i < fit.tones.size(); ++i) {
        const auto order = static_cast<double>(i + 1);
        const std::complex<double> part = fit.tones[i] / amplitude * std::polar(1.0, -order * phase);
        mHarmonics[i + 1] += part;
        mHarmonicSquares[i + 1] += std::norm(part);
    }
    ++mShapeBlocks;
    // Exact samples stay exactly where they are cut; what a codec has been through ripples.
    constexpr double kExact = 0.002;
    constexpr double kRippled = 0.03;
    const double band = fit.residual > 0.003 * amplitude ? kRippled : kExact;
    if (HasFlatTops(samples, amplitude, bank.cycles, fit.peak, kExact) ||
        HasFlatTops(samples, amplitude, bank.cycles, fit.peak, band)) {
        ++mFlatBlocks;
        mFlatLevel = std::max(mFlatLevel, fit.peak);
    }
}

void HarmonicMeter::TakeOther(const BlockTones& fit, bool isSilent)
{
    TakeRest(fit);
    mSilentBlocks += isSilent ? 1 : 0;
}

void HarmonicMeter::FillIn(ChannelStatistics& statistics, double samplesPerBlock) const
{
    statistics.toneSamples = static_cast<double>(mToneBlocks) * samplesPerBlock;
    statistics.silentSamples = static_cast<double>(mSilentBlocks) * samplesPerBlock;
    statistics.flatBlocks = mFlatBlocks;
    statistics.toneBlocks = mShapeBlocks;
    statistics.flatLevel = mFlatLevel;
    if (mBlocks > 0) {
        const auto count = static_cast<double>(mBlocks);
        statistics.constant = mConstant / count;
        const double variance = mConstantSquares / count - statistics.constant * statistics.constant;
        statistics.constantSigma = std::sqrt(std::max(0.0, variance) / count);
        statistics.noise = std::sqrt(mNoise / count);
    }
    if (mToneBlocks > 0) {
        const auto count = static_cast<double>(mToneBlocks);
        double sum = 0;
        double spread = 0;
        for (std::size_t order = 2; order < mHarmonics.size(); ++order) {
            const double mean = std::norm(mHarmonics[order] / count);
            const double variance = std::max(0.0, mHarmonicSquares[order] / count - mean) / count;
            sum += std::max(0.0, mean - variance); // what noise alone would leave is no harmonic
            spread += variance;
        }
        statistics.harmonics = std::sqrt(sum);
        statistics.harmonicsSigma = std::sqrt(spread);
    }
}

} // namespace tessel::verify::judge
