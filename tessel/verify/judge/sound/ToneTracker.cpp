#include "ToneTracker.h"

#include "Transition.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tessel::verify::judge {
namespace {

constexpr double kTwoPi = 2 * std::numbers::pi;

/// Blocks in a row that continue nothing: neither silence nor tones.
constexpr std::size_t kMostPending = 12;
/// Blocks behind a change that are not measured: codecs spread what happens there.
constexpr std::int64_t kUnmeasured = 3;
/// How far a block's tone may be from the run's, as a part of it.
constexpr double kAlike = 0.08;

int LengthFor(const std::vector<double>& frequencies)
{
    // 20 ms at 48 kHz; a fit with a constant wants more than a period of the lowest tone.
    double length = 960;
    for (const double cycles : frequencies) {
        length = std::max(length, 1.6 / cycles);
    }
    return static_cast<int>(std::min(length, 9600.0));
}

std::vector<HarmonicBank> BanksFor(const std::vector<double>& frequencies, int length)
{
    std::vector<HarmonicBank> banks;
    banks.reserve(frequencies.size());
    for (const double cycles : frequencies) {
        banks.emplace_back(cycles, length);
    }
    return banks;
}

double Wrapped(double angle) noexcept
{
    return std::remainder(angle, kTwoPi);
}

} // namespace

TrackerSetup::TrackerSetup(std::vector<double> cyclesPerSample, double level)
    : frequencies(std::move(cyclesPerSample)), onLevel(level), bank(frequencies, LengthFor(frequencies)),
      harmonics(BanksFor(frequencies, bank.Length()))
{
}

ToneTracker::ToneTracker(const TrackerSetup& setup) : mSetup(setup) {}

void ToneTracker::Take(std::span<const float> samples)
{
    mGrid.Take(samples);
    for (const float sample : samples) {
        mTrack.statistics.peak = std::max(mTrack.statistics.peak, std::abs(static_cast<double>(sample)));
    }
    const auto length = static_cast<std::size_t>(mSetup.BlockLength());
    while (!samples.empty()) {
        if (mPartial.empty() && samples.size() >= length) {
            TakeBlock(samples.first(length));
            samples = samples.subspan(length);
            continue;
        }
        const std::size_t count = std::min(length - mPartial.size(), samples.size());
        mPartial.insert(mPartial.end(), samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(count));
        samples = samples.subspan(count);
        if (mPartial.size() == length) {
            const std::vector<float> block = std::move(mPartial);
            mPartial.clear();
            TakeBlock(block);
        }
    }
}

ToneTracker::Block ToneTracker::Fitted(std::span<const float> samples, std::int64_t first) const
{
    Block block;
    block.first = first;
    mSetup.bank.Analyse(samples, block.fit);
    const double centre = static_cast<double>(first) + (mSetup.BlockLength() - 1) / 2.0;
    for (std::size_t i = 0; i < block.fit.tones.size(); ++i) {
        const double amplitude = std::abs(block.fit.tones[i]);
        const double turns = mSetup.frequencies[i] * centre;
        // Noise alone gives that much of any frequency.
        const double noise = 4 * block.fit.residual * std::sqrt(2.0 / mSetup.BlockLength());
        block.tones.push_back(amplitude < std::max(mSetup.onLevel, noise)
                                  ? std::complex<double>()
                                  : block.fit.tones[i] *
                                        std::polar(1.0, -kTwoPi * (turns - std::floor(turns))));
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

bool ToneTracker::AreAlike(const Block& a, const Block& b) const
{
    const double loudest = std::max(a.loudest, b.loudest);
    const double noise = 4 * std::max(a.fit.residual, b.fit.residual) * std::sqrt(2.0 / mSetup.BlockLength());
    for (std::size_t i = 0; i < a.tones.size(); ++i) {
        if (std::abs(a.tones[i] - b.tones[i]) > kAlike * loudest + noise + mSetup.onLevel) {
            return false;
        }
    }
    // Half a block of tone is not alike the other half.
    const double most = std::max(0.3 * loudest, 2 * mSetup.onLevel);
    const bool isNoisy = a.fit.residual > most && b.fit.residual > most;
    return isNoisy ? std::abs(a.fit.residual - b.fit.residual) < 0.2 * a.fit.residual
                   : std::max(a.fit.residual, b.fit.residual) <= most;
}

bool ToneTracker::Continues(const Block& block) const
{
    const ToneRun& run = mRun.run;
    const double since = static_cast<double>(block.first - mRun.lastFirst);
    const double noise = 4 * block.fit.residual * std::sqrt(2.0 / mSetup.BlockLength());
    double loudest = 0;
    for (const Tone& tone : run.tones) {
        loudest = std::max(loudest, tone.amplitude);
    }
    for (std::size_t i = 0; i < block.tones.size(); ++i) {
        std::complex<double> expected;
        for (std::size_t k = 0; k < run.tones.size(); ++k) {
            if (run.tones[k].index == i) {
                expected = std::polar(run.tones[k].amplitude, mRun.lastPhase[k] + run.tones[k].slope * since);
            }
        }
        // What comes and goes at the level from which tones count is no change.
        const double tolerance = kAlike * loudest + std::min(noise, 0.3 * loudest) + 1.5 * mSetup.onLevel;
        if (std::abs(block.tones[i] - expected) > tolerance) {
            return false;
        }
    }
    const double usual =
        std::sqrt(mRun.sumResidual / static_cast<double>(std::max<std::int64_t>(mRun.blocks, 1)));
    const double allowed = 3 * usual + std::max(0.03 * loudest, run.IsSilent() ? mSetup.onLevel : 0.0) + 1e-6;
    const double allowedPeak = 9 * usual + std::max(0.12 * loudest, run.IsSilent() ? 4 * mSetup.onLevel : 0.0);
    return block.fit.residual <= allowed && block.fit.residualPeak <= allowedPeak;
}

ToneTracker::Growing ToneTracker::Begun(const Block& block) const
{
    Growing growing;
    growing.run.begin = static_cast<double>(block.first);
    growing.constant = block.fit.constant;
    for (std::size_t i = 0; i < block.tones.size(); ++i) {
        if (std::abs(block.tones[i]) > 0) {
            growing.run.tones.push_back({i, std::abs(block.tones[i]), std::arg(block.tones[i]), 0});
            growing.lastPhase.push_back(std::arg(block.tones[i]));
        }
    }
    const std::size_t tones = growing.run.tones.size();
    growing.sumA.assign(tones, 0);
    growing.sumP.assign(tones, 0);
    growing.sumTP.assign(tones, 0);
    growing.sumPP.assign(tones, 0);
    Add(growing, block);
    return growing;
}

void ToneTracker::Add(Growing& growing, const Block& block) const
{
    const double time = static_cast<double>(block.first) - growing.run.begin;
    const double since = static_cast<double>(block.first - growing.lastFirst);
    ++growing.blocks;
    growing.sumT += time;
    growing.sumTT += time * time;
    growing.sumResidual += block.fit.residual * block.fit.residual;
    growing.constant += (block.fit.constant - growing.constant) / static_cast<double>(growing.blocks);
    const auto count = static_cast<double>(growing.blocks);
    const double spread = growing.sumTT - growing.sumT * growing.sumT / count;
    for (std::size_t k = 0; k < growing.run.tones.size(); ++k) {
        Tone& tone = growing.run.tones[k];
        const std::complex<double> found = block.tones[tone.index];
        double& last = growing.lastPhase[k];
        if (std::abs(found) > 0) {
            const double predicted = growing.blocks > 1 ? last + tone.slope * since : last;
            last = predicted + Wrapped(std::arg(found) - predicted);
        }
        growing.sumA[k] += std::abs(found);
        growing.sumP[k] += last;
        growing.sumTP[k] += time * last;
        growing.sumPP[k] += last * last;
        tone.amplitude = growing.sumA[k] / count;
        // Few blocks tell a slope badly.
        tone.slope =
            growing.blocks >= 5 ? (growing.sumTP[k] - growing.sumT * growing.sumP[k] / count) / spread : 0.0;
    }
    growing.lastFirst = block.first;
}

void ToneTracker::Complete(Growing& growing) const
{
    const auto count = static_cast<double>(growing.blocks);
    const double meanTime = growing.sumT / count;
    const double spread = growing.sumTT - growing.sumT * meanTime;
    growing.run.middle = growing.run.begin + meanTime + (mSetup.BlockLength() - 1) / 2.0;
    growing.run.residual = std::sqrt(growing.sumResidual / count);
    for (std::size_t k = 0; k < growing.run.tones.size(); ++k) {
        Tone& tone = growing.run.tones[k];
        const double turns = mSetup.frequencies[tone.index] * growing.run.middle;
        tone.phase = Wrapped(growing.sumP[k] / count + kTwoPi * (turns - std::floor(turns)));
        if (growing.blocks >= 5) {
            const double meanPhase = growing.sumP[k] / count;
            const double rest = growing.sumPP[k] - growing.sumP[k] * meanPhase -
                                tone.slope * (growing.sumTP[k] - growing.sumT * meanPhase);
            growing.run.slopeSigma =
                std::max(growing.run.slopeSigma, std::sqrt(std::max(0.0, rest) / (count - 2) / spread) + 1e-12);
        }
    }
}

/// Measures the block before, now that the next one continues it: where something changes, the last block
/// before it has some of the change.
void ToneTracker::MeasureLast()
{
    if (mCleanBlocks <= kUnmeasured) {
        return;
    }
    if (mRun.run.tones.size() == 1) {
        mMeter.TakeTone(mSetup.harmonics[mRun.run.tones.front().index], mKept);
    } else {
        mMeter.TakeOther(mLastFit, mRun.run.IsSilent());
    }
}

void ToneTracker::TakeBlock(std::span<const float> samples)
{
    Block block = Fitted(samples, mPosition);
    mPosition += static_cast<std::int64_t>(samples.size());
    if (mHasRun && Continues(block)) {
        if (!mPending.empty()) {
            mKept.insert(mKept.end(), samples.begin(), samples.end());
            Resume();
        } else {
            MeasureLast();
        }
        Add(mRun, block);
        ++mCleanBlocks;
        mLastFit = block.fit;
        mKept.assign(samples.begin(), samples.end());
        mKeptFirst = block.first;
        return;
    }
    mCleanBlocks = 0;
    if (mKept.empty()) {
        mKeptFirst = block.first;
    }
    mKept.insert(mKept.end(), samples.begin(), samples.end());
    if (!mPending.empty() && AreAlike(mPending.back(), block)) {
        // The first of the two may have a bit of the change in it.
        Change(Begun(block));
        mLastFit = block.fit;
        mKept.assign(samples.begin(), samples.end());
        mKeptFirst = block.first;
        return;
    }
    mPending.push_back(std::move(block));
    if (mPending.size() > kMostPending) {
        GiveUp();
    }
}

std::vector<double> ToneTracker::AllKeptAs(const Growing& completed) const
{
    std::vector<double> samples(mKept.size());
    SteadySound(mSetup.frequencies, completed.run, completed.constant)
        .Render(static_cast<double>(mKeptFirst), samples);
    return samples;
}

/// The run goes on after something else: a gap, a click, or only a codec's trouble.
void ToneTracker::Resume()
{
    Growing completed = mRun;
    Complete(completed);
    const std::vector<double> expected = AllKeptAs(completed);
    double loudest = 0;
    for (const Tone& tone : completed.run.tones) {
        loudest = std::max(loudest, tone.amplitude);
    }
    const double threshold = std::max({0.1 * loudest, 6 * completed.run.residual, 2 * mSetup.onLevel});
    std::size_t first = mKept.size();
    std::size_t last = 0;
    double largest = 0;
    for (std::size_t i = 0; i < mKept.size(); ++i) {
        if (std::abs(static_cast<double>(mKept[i]) - expected[i]) > threshold) {
            first = std::min(first, i);
            last = i;
            largest = std::max(largest, std::abs(static_cast<double>(mKept[i]) - expected[i]));
        }
    }
    mPending.clear();
    if (first > last) {
        return;
    }
    double found = 0;
    double wanted = 0;
    for (std::size_t i = first; i <= last; ++i) {
        found += static_cast<double>(mKept[i]) * static_cast<double>(mKept[i]);
        wanted += expected[i] * expected[i];
    }
    const auto at = static_cast<double>(mKeptFirst);
    KeepExcerpt(true);
    const bool isSilence = !completed.run.IsSilent() && found < 0.2 * wanted;
    const double size = loudest > 0 ? largest / loudest : 0.0;
    mTrack.gaps.push_back({at + static_cast<double>(first), at + static_cast<double>(last), isSilence, size});
}

/// Another run begins somewhere in what is kept.
void ToneTracker::Change(Growing next)
{
    mPending.clear();
    if (!mHasRun) {
        // The stream begins: what lies before the first clear block belongs to it unless silence explains it
        // better.
        next.run.isFirst = true;
        const double first = next.run.begin;
        if (!next.run.tones.empty()) {
            KeepExcerpt(false);
        }
        mHasRun = true;
        mRun = std::move(next);
        if (first > static_cast<double>(mKeptFirst)) {
            Growing completed = mRun;
            Complete(completed);
            const std::vector<double> behind = AllKeptAs(completed);
            const std::vector<double> silence(mKept.size(), 0.0);
            const Transition place =
                FindTransition(mKept, silence, behind, completed.run.residual, /*allowsGap=*/false);
            mRun.run.begin = static_cast<double>(mKeptFirst) + static_cast<double>(place.begin);
            // The sums count from the first block.
            const double moved = first - mRun.run.begin;
            const auto count = static_cast<double>(mRun.blocks);
            mRun.sumTT += 2 * moved * mRun.sumT + count * moved * moved;
            mRun.sumT += count * moved;
            for (std::size_t k = 0; k < mRun.sumTP.size(); ++k) {
                mRun.sumTP[k] += moved * mRun.sumP[k];
            }
            // A sine's first samples are no different from silence.
            if (static_cast<double>(place.begin) > 2 + place.uncertainty) {
                mRun.run.isFirst = false;
                mRun.run.uncertainty = place.uncertainty;
                ToneRun silent;
                silent.isFirst = true;
                silent.begin = 0;
                silent.end = mRun.run.begin;
                silent.middle = silent.end / 2;
                mTrack.runs.push_back(silent);
            }
        }
        return;
    }
    Growing completed = mRun;
    Complete(completed);
    Growing begun = next;
    Complete(begun);
    std::vector<double> before(mKept.size());
    std::vector<double> behind(mKept.size());
    const auto at = static_cast<double>(mKeptFirst);
    SteadySound(mSetup.frequencies, completed.run, completed.constant).Render(at, before);
    SteadySound(mSetup.frequencies, begun.run, begun.constant).Render(at, behind);
    const bool areTones = !completed.run.tones.empty() && !begun.run.tones.empty();
    const double noise = std::max(completed.run.residual, begun.run.residual);
    const Transition place = FindTransition(mKept, before, behind, noise, areTones);
    const double end = at + static_cast<double>(place.end);
    const double begin = at + static_cast<double>(place.begin);
    if (begin > end + 2) {
        mTrack.gaps.push_back({end, begin - 1, true, 1});
    }
    KeepExcerpt(areTones);
    Close(end);
    const double moved = next.run.begin - begin;
    const auto count = static_cast<double>(next.blocks);
    next.sumTT += 2 * moved * next.sumT + count * moved * moved;
    next.sumT += count * moved;
    for (std::size_t k = 0; k < next.sumTP.size(); ++k) {
        next.sumTP[k] += moved * next.sumP[k];
    }
    next.run.begin = begin;
    next.run.uncertainty = place.uncertainty;
    mRun = std::move(next);
}

/// What comes is neither silence nor known tones.
void ToneTracker::GiveUp()
{
    const auto begin = static_cast<double>(mPending.front().first);
    if (mHasRun) {
        Close(begin);
        mHasRun = false;
    }
    if (!mTrack.runs.empty() && mTrack.runs.back().isOther) {
        mTrack.runs.back().end = static_cast<double>(mPosition);
    } else {
        ToneRun other;
        other.isOther = true;
        other.begin = mTrack.runs.empty() ? 0.0 : begin;
        other.isFirst = mTrack.runs.empty();
        other.end = static_cast<double>(mPosition);
        mTrack.runs.push_back(other);
    }
    mPending.clear();
    mKept.clear();
}

void ToneTracker::KeepExcerpt(bool isFault)
{
    constexpr std::ptrdiff_t kMost = 2;
    const auto alike = std::count_if(mTrack.excerpts.begin(), mTrack.excerpts.end(),
                                     [&](const Excerpt& other) { return other.isFault == isFault; });
    if (alike < kMost) {
        mTrack.excerpts.push_back({static_cast<double>(mKeptFirst), isFault, mKept});
    }
}

void ToneTracker::Close(double end)
{
    Complete(mRun);
    mRun.run.end = end;
    mTrack.runs.push_back(mRun.run);
}

ChannelTrack ToneTracker::Finish()
{
    const double end = static_cast<double>(mPosition) + static_cast<double>(mPartial.size());
    if (mHasRun) {
        // Blocks and a part of one that do not continue the run: it ends where silence explains more.
        mKept.insert(mKept.end(), mPartial.begin(), mPartial.end());
        Growing completed = mRun;
        Complete(completed);
        const std::vector<double> before = AllKeptAs(completed);
        const std::vector<double> silence(mKept.size(), 0.0);
        const Transition place =
            FindTransition(mKept, before, silence, completed.run.residual, /*allowsGap=*/false);
        const bool isToEnd = mRun.run.tones.empty() || place.end + 2 >= mKept.size();
        Close(isToEnd ? end : static_cast<double>(mKeptFirst) + static_cast<double>(place.end));
        mTrack.runs.back().isLast = isToEnd;
        if (!isToEnd) {
            ToneRun silent;
            silent.begin = mTrack.runs.back().end;
            silent.end = end;
            silent.middle = (silent.begin + end) / 2;
            silent.isLast = true;
            mTrack.runs.push_back(silent);
        }
    }
    mTrack.statistics.usedBits = mGrid.UsedBits();
    mMeter.FillIn(mTrack.statistics, static_cast<double>(mSetup.BlockLength()));
    return std::move(mTrack);
}

} // namespace tessel::verify::judge
