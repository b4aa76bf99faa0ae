#include "SoundChecks.h"
#include "SoundReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace tessel::verify::judge {
namespace {

class SoundTimeChecks : public SoundReport {
public:
    using SoundReport::SoundReport;

    void Run()
    {
        JudgeSegments();
        JudgeSpeed();
        JudgeStepsOf(id::kAudioLost, "missing", +1);
        JudgeStepsOf(id::kAudioInserted, "added", -1);
        TellBlindness();
        JudgeGaps();
    }

private:
    void JudgeSegments()
    {
        if (!mMap.strays.empty()) {
            const StrayTone& first = mMap.strays.front();
            Finding& finding = mFindings.Fault(
                id::kAudioSegments,
                fmt::format("{} {} out of order; the first is {}{:.0f} Hz, which belongs at {:.2f} s and is at "
                            "{:.2f} s",
                            mMap.strays.size(), mMap.strays.size() == 1 ? "segment is" : "segments are",
                            first.isPause ? "a pause of " : "", mClip.frequencies[first.tone], first.clipBegin,
                            mMap.ClipSeconds(first.begin)));
            finding.expected = fmt::format("{:.2f} s", first.clipBegin);
            finding.found = fmt::format("{:.2f} s", mMap.ClipSeconds(first.begin));
            for (const StrayTone& stray : mMap.strays) {
                finding.samples.push_back(ClipSpan(stray.begin, stray.end));
            }
        } else if (mClip.frequencies.size() > 1 && mMap.hasEdges) {
            mFindings.AsExpected(id::kAudioSegments);
        } else {
            mFindings.NotVisible(id::kAudioSegments, "a BLITS identification");
        }
    }

    void JudgeSpeed()
    {
        const double tolerance = mFindings.Limits().Of(id::kAudioPitch);
        const double uncertainty = 3 * mMap.pitchSigma;
        const double off = mMap.pitch - 1;
        const double ppm = off * 1e6;
        if (std::abs(off) > tolerance + uncertainty) {
            Finding& finding = mFindings.Fault(
                id::kAudioPitch, fmt::format("tones are {:.3f} % {} than the clip's ({:.5f} times)",
                                             std::abs(off) * 100, off > 0 ? "higher" : "lower", mMap.pitch));
            finding.expected = 1.0;
            finding.found = mMap.pitch;
            finding.uncertainty = uncertainty;
        } else {
            mFindings.AsExpected(id::kAudioPitch);
        }
        if (mMap.IsStretched()) {
            // Where pieces were laid over each other, phases slip, which looks like another clock.
            mFindings.NotVisible(id::kAudioDrift, "sound that was not stretched");
            return;
        }
        // A measure is to be four times as fine as the tolerance. Else the sound is too short, or too much
        // changed, to show a good clock; a bad one may show all the same, but not where nothing is known well.
        constexpr double kRough = 3e-5;
        const double drift = mFindings.Limits().Of(id::kAudioDrift);
        const bool isCoarse = 4 * uncertainty * 1e6 > drift;
        if (mMap.pitchSigma > kRough || (isCoarse && std::abs(ppm) <= drift + uncertainty * 1e6)) {
            mFindings.NotVisible(id::kAudioDrift);
            return;
        }
        static_cast<void>(mFindings.Judge(
            id::kAudioDrift, {0, ppm, uncertainty * 1e6},
            fmt::format("the sound's clock runs {:.1f} ppm {}", std::abs(ppm), ppm > 0 ? "fast" : "slow")));
    }

    void JudgeStepsOf(std::string_view check, const char* what, int sign)
    {
        double total = 0;
        double uncertainty = 0;
        double period = 0;
        std::vector<Span> places;
        for (const TimeStep& step : mMap.steps) {
            if (step.skipped * sign > 0) {
                total += std::abs(step.skipped) * mClip.rate;
                uncertainty += step.uncertainty * mClip.rate;
                period = std::max(period, step.period);
                places.push_back(ClipSpan(step.first, step.last));
            }
        }
        if (places.empty()) {
            mFindings.AsExpected(check);
            return;
        }
        const double first = static_cast<double>(places.front().first) / mClip.rate;
        std::string text = fmt::format("{:.0f} samples are {} at {:.3f} s", total, what, first);
        if (places.size() > 1) {
            text = fmt::format("{:.0f} samples are {} in {} places, first at {:.3f} s", total, what,
                               places.size(), first);
        }
        if (period > 0) {
            text += fmt::format(", give or take whole periods of {:.2f} samples", period * mClip.rate);
        }
        if (Finding* finding = mFindings.Judge(check, {0, total, uncertainty}, text)) {
            finding->samples = places;
        }
    }

    /// Without a beginning or an end of a tone, phases alone show steps, and those of whole periods not at all.
    void TellBlindness()
    {
        if (!mMap.hasEdges && mMap.period > 0) {
            mFindings.Note(fmt::format("the tone repeats every {:.6g} samples: whole periods of it that are "
                                       "missing or added leave no trace [{}, {}]",
                                       mMap.period * mClip.rate, id::kAudioLost, id::kAudioInserted));
        }
    }

    void JudgeGaps()
    {
        std::vector<Span> places;
        double samples = 0;
        std::size_t clicks = 0;
        std::string where;
        for (std::size_t m = 0; m < Channels(); ++m) {
            for (const Gap& gap : mMovie.channels[m].gaps) {
                // Lossy codecs spread what begins and ends, and waver.
                if (!IsLossless() && !gap.isSilent && gap.size < 0.5) {
                    continue;
                }
                Add(places, ClipSpan(mMovie.SecondsOf(gap.first), mMovie.SecondsOf(gap.last)));
                samples = std::max(samples, gap.last - gap.first + 1);
                clicks += gap.isSilent ? 0U : 1U;
                where = where.empty() ? NameOf(m) : where == NameOf(m) ? where : "several channels";
            }
        }
        bool isSilent = false;
        for (const Deviation& deviation : mMix.deviations) {
            if (deviation.isSilent) {
                Add(places, ClipSpan(deviation.begin, deviation.end));
                samples = std::max(samples, (deviation.end - deviation.begin) * mMovie.rate);
                where = where.empty()                        ? NameOf(deviation.channel)
                        : where == NameOf(deviation.channel) ? where
                                                             : "several channels";
                isSilent = true;
            }
        }
        if (places.empty()) {
            mFindings.AsExpected(id::kAudioDropout);
            return;
        }
        std::sort(places.begin(), places.end(), [](const Span& a, const Span& b) { return a.first < b.first; });
        const bool areClicks = clicks > 0 && !isSilent;
        Finding& finding =
            mFindings.Fault(id::kAudioDropout,
                            fmt::format("{} {} on {}, {:.0f} samples long{}, first at {:.3f} s", places.size(),
                                        areClicks ? (places.size() == 1 ? "click" : "clicks")
                                                  : (places.size() == 1 ? "gap" : "gaps"),
                                        where, samples, places.size() > 1 ? " at most" : "",
                                        static_cast<double>(places.front().first) / mClip.rate));
        finding.expected = 0.0;
        finding.found = samples;
        finding.uncertainty = IsLossless() ? 4.0 : 1100.0;
        finding.samples = places;
    }

    /// Several channels lose the same moment.
    static void Add(std::vector<Span>& places, const Span& span)
    {
        for (Span& other : places) {
            if (span.first <= other.last + 64 && span.last + 64 >= other.first) {
                other = {std::min(span.first, other.first), std::max(span.last, other.last)};
                return;
            }
        }
        places.push_back(span);
    }
};

} // namespace

void JudgeSoundTimes(const SoundEvidence& evidence, const read::SoundFacts& movie, Uncarried uncarried,
                     Findings& findings)
{
    SoundTimeChecks(evidence, movie, uncarried, findings).Run();
}

} // namespace tessel::verify::judge
