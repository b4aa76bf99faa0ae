#include "GrowingRun.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

namespace tessel::verify::judge {
namespace {

constexpr double kFullTurn = 2 * std::numbers::pi;

double Wrapped(double angle) noexcept
{
    return std::remainder(angle, kFullTurn);
}

} // namespace

GrowingRun::GrowingRun(const TrackedBlock& block) : mConstant(block.fit.constant)
{
    run.begin = static_cast<double>(block.first);
    for (std::size_t i = 0; i < block.tones.size(); ++i) {
        if (std::abs(block.tones[i]) > 0) {
            run.tones.push_back({i, std::abs(block.tones[i]), std::arg(block.tones[i]), 0});
            mLastPhase.push_back(std::arg(block.tones[i]));
        }
    }
    const std::size_t tones = run.tones.size();
    mSumA.assign(tones, 0);
    mSumP.assign(tones, 0);
    mSumTP.assign(tones, 0);
    mSumPP.assign(tones, 0);
    Add(block);
}

bool GrowingRun::Continues(const TrackerSetup& setup, const TrackedBlock& block) const
{
    const auto since = static_cast<double>(block.first - mLastFirst);
    const double noise = ToneNoise(setup, block.fit.residual);
    double loudest = 0;
    for (const Tone& tone : run.tones) {
        loudest = std::max(loudest, tone.amplitude);
    }
    for (std::size_t i = 0; i < block.tones.size(); ++i) {
        std::complex<double> expected;
        for (std::size_t k = 0; k < run.tones.size(); ++k) {
            if (run.tones[k].index == i) {
                expected = std::polar(run.tones[k].amplitude, mLastPhase[k] + run.tones[k].slope * since);
            }
        }
        // What comes and goes at the level from which tones count is no change.
        const double tolerance = kAlikeTones * loudest + std::min(noise, 0.3 * loudest) + 1.5 * setup.onLevel;
        if (std::abs(block.tones[i] - expected) > tolerance) {
            return false;
        }
    }
    const double usual = std::sqrt(mSumResidual / static_cast<double>(std::max<std::int64_t>(mBlocks, 1)));
    const double allowed = 3 * usual + std::max(0.03 * loudest, run.IsSilent() ? setup.onLevel : 0.0) + 1e-6;
    const double allowedPeak = 9 * usual + std::max(0.12 * loudest, run.IsSilent() ? 4 * setup.onLevel : 0.0);
    return block.fit.residual <= allowed && block.fit.residualPeak <= allowedPeak;
}

void GrowingRun::Add(const TrackedBlock& block)
{
    const double time = static_cast<double>(block.first) - run.begin;
    const auto since = static_cast<double>(block.first - mLastFirst);
    ++mBlocks;
    mSumT += time;
    mSumTT += time * time;
    mSumResidual += block.fit.residual * block.fit.residual;
    mConstant += (block.fit.constant - mConstant) / static_cast<double>(mBlocks);
    const auto count = static_cast<double>(mBlocks);
    const double spread = mSumTT - mSumT * mSumT / count;
    for (std::size_t k = 0; k < run.tones.size(); ++k) {
        Tone& tone = run.tones[k];
        const std::complex<double> found = block.tones[tone.index];
        double& last = mLastPhase[k];
        if (std::abs(found) > 0) {
            const double predicted = mBlocks > 1 ? last + tone.slope * since : last;
            last = predicted + Wrapped(std::arg(found) - predicted);
        }
        mSumA[k] += std::abs(found);
        mSumP[k] += last;
        mSumTP[k] += time * last;
        mSumPP[k] += last * last;
        tone.amplitude = mSumA[k] / count;
        // Few blocks tell a slope badly.
        tone.slope = mBlocks >= 5 ? (mSumTP[k] - mSumT * mSumP[k] / count) / spread : 0.0;
    }
    mLastFirst = block.first;
}

void GrowingRun::MoveBegin(double sample)
{
    const double moved = run.begin - sample;
    const auto count = static_cast<double>(mBlocks);
    mSumTT += 2 * moved * mSumT + count * moved * moved;
    mSumT += count * moved;
    for (std::size_t k = 0; k < mSumTP.size(); ++k) {
        mSumTP[k] += moved * mSumP[k];
    }
    run.begin = sample;
}

void GrowingRun::Complete(const TrackerSetup& setup)
{
    const auto count = static_cast<double>(mBlocks);
    const double meanTime = mSumT / count;
    const double spread = mSumTT - mSumT * meanTime;
    run.middle = run.begin + meanTime + (setup.BlockLength() - 1) / 2.0;
    run.residual = std::sqrt(mSumResidual / count);
    for (std::size_t k = 0; k < run.tones.size(); ++k) {
        Tone& tone = run.tones[k];
        const double turns = setup.frequencies[tone.index] * run.middle;
        tone.phase = Wrapped(mSumP[k] / count + kFullTurn * (turns - std::floor(turns)));
        if (mBlocks >= 5) {
            const double meanPhase = mSumP[k] / count;
            const double rest = mSumPP[k] - mSumP[k] * meanPhase - tone.slope * (mSumTP[k] - mSumT * meanPhase);
            run.slopeSigma =
                std::max(run.slopeSigma, std::sqrt(std::max(0.0, rest) / (count - 2) / spread) + 1e-12);
        }
    }
}

} // namespace tessel::verify::judge
