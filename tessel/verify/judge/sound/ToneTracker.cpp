#include "ToneTracker.h"

#include "Transition.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tessel::verify::judge {
namespace {

/// Blocks in a row that continue nothing: neither silence nor tones.
constexpr std::size_t kMostPending = 12;
/// Blocks behind a change that are not measured: codecs spread what happens there.
constexpr std::int64_t kUnmeasured = 3;

} // namespace

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
    TrackedBlock block = FitBlock(mSetup, samples, mPosition);
    mPosition += static_cast<std::int64_t>(samples.size());
    if (mHasRun && mRun.Continues(mSetup, block)) {
        if (!mPending.empty()) {
            mKept.insert(mKept.end(), samples.begin(), samples.end());
            Resume();
        } else {
            MeasureLast();
        }
        mRun.Add(block);
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
    if (!mPending.empty() && AreAlike(mSetup, mPending.back(), block)) {
        // The first of the two may have a bit of the change in it.
        Change(GrowingRun(block));
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

std::vector<double> ToneTracker::AllKeptAs(const GrowingRun& completed) const
{
    std::vector<double> samples(mKept.size());
    SteadySound(mSetup.frequencies, completed.run, completed.Constant())
        .Render(static_cast<double>(mKeptFirst), samples);
    return samples;
}

/// The run goes on after something else: a gap, a click, or only a codec's trouble.
void ToneTracker::Resume()
{
    GrowingRun completed = mRun;
    completed.Complete(mSetup);
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
void ToneTracker::Change(GrowingRun next)
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
            GrowingRun completed = mRun;
            completed.Complete(mSetup);
            const std::vector<double> behind = AllKeptAs(completed);
            const std::vector<double> silence(mKept.size(), 0.0);
            const Transition place =
                FindTransition(mKept, silence, behind, completed.run.residual, /*allowsGap=*/false);
            mRun.MoveBegin(static_cast<double>(mKeptFirst) + static_cast<double>(place.begin));
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
    GrowingRun completed = mRun;
    completed.Complete(mSetup);
    GrowingRun begun = next;
    begun.Complete(mSetup);
    std::vector<double> before(mKept.size());
    std::vector<double> behind(mKept.size());
    const auto at = static_cast<double>(mKeptFirst);
    SteadySound(mSetup.frequencies, completed.run, completed.Constant()).Render(at, before);
    SteadySound(mSetup.frequencies, begun.run, begun.Constant()).Render(at, behind);
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
    next.MoveBegin(begin);
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
    mRun.Complete(mSetup);
    mRun.run.end = end;
    mTrack.runs.push_back(mRun.run);
}

ChannelTrack ToneTracker::Finish()
{
    const double end = static_cast<double>(mPosition) + static_cast<double>(mPartial.size());
    if (mHasRun) {
        // Blocks and a part of one that do not continue the run: it ends where silence explains more.
        mKept.insert(mKept.end(), mPartial.begin(), mPartial.end());
        GrowingRun completed = mRun;
        completed.Complete(mSetup);
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
