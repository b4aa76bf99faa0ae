#include "SoundJudge.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <string_view>

namespace tessel::verify::judge {
namespace {

using reference::ChannelName;

constexpr std::array kChecks{id::kAudioOrder,    id::kAudioPolarity, id::kAudioGain,    id::kAudioSilence,
                             id::kAudioClipping, id::kAudioDc,       id::kAudioNoise,   id::kAudioHarmonics,
                             id::kAudioPitch,    id::kAudioDrift,    id::kAudioLost,    id::kAudioInserted,
                             id::kAudioDropout,  id::kAudioDepth,    id::kAudioDownmix, id::kAudioUpmix,
                             id::kAudioSegments};

/// Of a channel's energy, so much may come from elsewhere: -40 dB, and what delivery codecs leave.
constexpr double kAloneExact = 1e-4;
constexpr double kAloneCoded = 2e-3;
/// A known mixture fits up to so much of the level.
constexpr double kMixFits = 0.05;

double Decibels(double ratio) noexcept
{
    return ratio > 1e-10 ? 20 * std::log10(ratio) : -200;
}

std::string Joined(const std::vector<std::string>& parts)
{
    std::string text;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        text += i == 0 ? "" : i + 1 == parts.size() ? " and " : ", ";
        text += parts[i];
    }
    return text;
}

class Judging {
public:
    Judging(const SoundEvidence& evidence, const read::SoundFacts& facts, Uncarried uncarried,
            Findings& findings)
        : mClip(evidence.clip), mMovie(evidence.movie), mMap(evidence.map), mMix(evidence.mix),
          mClipBits(evidence.clipBits), mFacts(facts), mUncarried(uncarried), mFindings(findings)
    {
    }

    void Run()
    {
        JudgeRouting();
        JudgeSegments();
        JudgeSpeed();
        JudgeSteps();
        JudgeGaps();
        JudgeClipping();
        JudgeConstant();
        JudgeNoise();
        JudgeHarmonics();
        JudgeDepth();
    }

private:
    [[nodiscard]] std::size_t Sources() const { return mClip.channels.size(); }
    [[nodiscard]] std::size_t Channels() const { return mMovie.channels.size(); }
    [[nodiscard]] std::string NameOf(std::size_t channel) const
    {
        return ChannelName(static_cast<int>(channel), static_cast<int>(Channels()));
    }
    [[nodiscard]] std::string SourceName(int source) const
    {
        return ChannelName(source, static_cast<int>(Sources()));
    }
    [[nodiscard]] bool IsLossless() const { return mFacts.codecClass == CodecClass::Lossless; }
    /// The clip's channel is heard in the clip.
    [[nodiscard]] bool IsHeard(std::size_t source) const
    {
        return source < mMix.isHeard.size() && mMix.isHeard[source];
    }

    /// Samples of the clip's sound between two times of the movie: from what `first` would be if nothing had
    /// happened before it.
    [[nodiscard]] Span ClipSpan(double first, double last) const
    {
        constexpr double kBefore = 1e-4;
        const double begin = mMap.ClipSeconds(first - kBefore) + kBefore * mMap.tempo;
        const double end = mMap.ClipSeconds(last);
        return {std::llround(std::min(begin, end) * mClip.rate),
                std::llround(std::max(begin, end) * mClip.rate)};
    }

    // Which channel is where.

    void JudgeRouting()
    {
        const double most = IsLossless() ? kAloneExact : kAloneCoded;
        bool isRouting = true;
        for (const MixRow& row : mMix.rows) {
            // Where gain depends on level, neither one channel nor a mixture explains everything.
            isRouting = isRouting && (row.isSilent || row.alone < std::max(most, 4 * row.unexplained));
        }
        // Cutting makes loud tones softer and leaves soft ones alone, which looks like a mixture.
        isRouting = isRouting || (Channels() == Sources() && !CutChannels().empty());
        const auto identified =
            static_cast<std::size_t>(std::count(mMix.isIdentified.begin(), mMix.isIdentified.end(), true));
        const auto heard = static_cast<std::size_t>(std::count(mMix.isHeard.begin(), mMix.isHeard.end(), true));
        const bool canTellOrder = heard >= 2 && identified >= heard;
        if (isRouting) {
            JudgeOrder(canTellOrder);
            JudgeMixing(canTellOrder);
            JudgePolarity();
            JudgeGain();
            JudgeSilence();
            return;
        }
        JudgeMixture();
        // Levels and places of channels that are mixtures mean nothing.
        for (const std::string_view check : {id::kAudioOrder, id::kAudioPolarity, id::kAudioGain}) {
            if (!mFindings.HasFault(check)) {
                mFindings.NotVisible(check, "a movie whose channels are not mixed");
            }
        }
        mFindings.AsExpected(id::kAudioSilence);
    }

    void JudgeOrder(bool canTell)
    {
        std::vector<std::string> wrong;
        std::vector<int> found;
        for (std::size_t m = 0; m < Channels(); ++m) {
            const MixRow& row = mMix.rows[m];
            found.push_back(row.isSilent ? -1 : row.source);
            const bool isOther = !row.isSilent && row.source != static_cast<int>(m);
            // More channels than the clip has, or fewer, have no order to keep: that is mixing.
            if (isOther && Channels() == Sources()) {
                wrong.push_back(fmt::format("{} carries {}", NameOf(m), SourceName(row.source)));
            }
        }
        if (wrong.empty()) {
            if (canTell && Channels() == Sources()) {
                mFindings.AsExpected(id::kAudioOrder);
            } else {
                mFindings.NotVisible(id::kAudioOrder,
                                     Channels() == Sources() ? std::string() : "a movie with as many channels");
            }
            return;
        }
        std::string text = Joined(wrong);
        for (std::size_t a = 0; a < found.size() && wrong.size() == 2; ++a) {
            const auto b = static_cast<std::size_t>(std::max(found[a], 0));
            if (found[a] > static_cast<int>(a) && found[b] == static_cast<int>(a)) {
                text = fmt::format("{} and {} are swapped", NameOf(a), NameOf(b));
            }
        }
        Finding& finding = mFindings.Fault(id::kAudioOrder, text);
        std::string expected;
        std::string actual;
        for (std::size_t m = 0; m < Channels(); ++m) {
            const char* const gap = m == 0 ? "" : " ";
            expected += fmt::format("{}{}", gap, NameOf(m));
            actual += fmt::format("{}{}", gap, found[m] < 0 ? "silence" : SourceName(found[m]));
        }
        finding.expected = expected;
        finding.found = actual;
    }

    /// Channels that are copies.
    void JudgeMixing(bool canTell)
    {
        const auto sounding =
            std::count_if(mMix.rows.begin(), mMix.rows.end(), [](const MixRow& row) { return !row.isSilent; });
        if (Sources() == 1
                ? Channels() > 1 && sounding > 1
                : canTell && Channels() > Sources() && sounding > static_cast<std::ptrdiff_t>(Sources())) {
            std::vector<std::string> copies;
            for (std::size_t m = 0; m < Channels(); ++m) {
                if (!mMix.rows[m].isSilent) {
                    copies.push_back(fmt::format("{} has {}", NameOf(m), SourceName(mMix.rows[m].source)));
                }
            }
            Finding& finding = mFindings.Fault(id::kAudioUpmix, "channels are copies: " + Joined(copies));
            finding.expected = fmt::format("{} channels", Sources());
            finding.found = fmt::format("{} channels", Channels());
        } else if (canTell || Sources() == 1) {
            mFindings.AsExpected(id::kAudioUpmix);
        } else {
            mFindings.NotVisible(id::kAudioUpmix);
        }
        if (canTell) {
            mFindings.AsExpected(id::kAudioDownmix);
        } else {
            mFindings.NotVisible(id::kAudioDownmix);
        }
    }

    void JudgeMixture()
    {
        const bool isUp = Channels() > Sources();
        const std::string_view check = isUp ? id::kAudioUpmix : id::kAudioDownmix;
        mFindings.AsExpected(isUp ? id::kAudioDownmix : id::kAudioUpmix);
        const MixMatch match = NearestMix(mMix, Sources());
        const std::string counts = fmt::format(
            "{} made of {}", Channels() == 1 ? "1 channel is" : fmt::format("{} channels are", Channels()),
            Sources());
        std::string text;
        if (!match.name.empty() && match.residual < kMixFits) {
            text =
                fmt::format("{}: {} at {:+.1f} dB (residual {:.1f} %{})", counts, match.name,
                            Decibels(match.gain), match.residual * 100,
                            match.runnerUp.empty() ? std::string()
                                                   : fmt::format("; next best {:.1f} %: {}",
                                                                 match.runnerUpResidual * 100, match.runnerUp));
            if (!match.runnerUp.empty() && match.runnerUpResidual < kMixFits &&
                match.runnerUpResidual < 1.5 * match.residual + 1e-3) {
                text = fmt::format("{}: one of {} and {}", counts, match.name, match.runnerUp);
            }
        } else {
            text = fmt::format("{} by no known matrix: {}", counts, MatrixText());
        }
        Finding& finding = mFindings.Fault(check, text);
        finding.expected = std::string("the clip's channels");
        finding.found = !match.name.empty() && match.residual < kMixFits ? match.name : MatrixText();
    }

    [[nodiscard]] std::string MatrixText() const
    {
        std::vector<std::string> rows;
        for (std::size_t m = 0; m < Channels(); ++m) {
            std::string row;
            for (std::size_t s = 0; s < Sources(); ++s) {
                const double gain = mMix.rows[m].gains[s];
                if (std::abs(gain) > 0.01) {
                    row += fmt::format("{}{:.2f} {}",
                                       row.empty() ? ""
                                       : gain < 0  ? " "
                                                   : " + ",
                                       gain, SourceName(static_cast<int>(s)));
                }
            }
            rows.push_back(fmt::format("{} = {}", NameOf(m), row.empty() ? "0" : row));
        }
        return Joined(rows);
    }

    void JudgePolarity()
    {
        std::vector<std::string> turned;
        std::size_t sounding = 0;
        for (std::size_t m = 0; m < Channels(); ++m) {
            if (!mMix.rows[m].isSilent) {
                ++sounding;
                if (mMix.rows[m].gain < 0) {
                    turned.push_back(NameOf(m));
                }
            }
        }
        if (turned.empty()) {
            if (sounding > 1 || (sounding == 1 && !mMap.isAmbiguous)) {
                mFindings.AsExpected(id::kAudioPolarity);
            } else {
                mFindings.NotVisible(id::kAudioPolarity,
                                     "a channel identification, or a tone with silence before it");
            }
            return;
        }
        const bool isOneOf = mMap.isAmbiguous && turned.size() * 2 == sounding;
        Finding& finding = mFindings.Fault(
            id::kAudioPolarity,
            isOneOf ? fmt::format("channels are of opposite polarity: {} or the others", Joined(turned))
                    : fmt::format("{} {} upside down", Joined(turned), turned.size() == 1 ? "is" : "are"));
        finding.expected = std::string("upright");
        finding.found = Joined(turned) + " inverted";
    }

    void JudgeGain()
    {
        std::vector<double> levels;
        for (const MixRow& row : mMix.rows) {
            if (!row.isSilent) {
                levels.push_back(Decibels(std::abs(row.gain)));
            }
        }
        if (levels.empty()) {
            mFindings.NotVisible(id::kAudioGain);
            return;
        }
        std::vector<double> sorted = levels;
        std::sort(sorted.begin(), sorted.end());
        const double common = sorted[sorted.size() / 2];
        const double tolerance = mFindings.Limits().Of(id::kAudioGain);
        // The levels of lossy codecs waver by some hundredths of a decibel.
        const double uncertainty = IsLossless() ? 0.002 : 0.05;
        const bool isCommon = sorted.back() - sorted.front() <= 2 * tolerance;
        double worst = common;
        std::vector<std::string> parts;
        std::size_t place = 0;
        for (std::size_t m = 0; m < Channels(); ++m) {
            if (mMix.rows[m].isSilent) {
                continue;
            }
            const double level = levels[place++];
            if (!isCommon && std::abs(level) > tolerance) {
                parts.push_back(
                    fmt::format("{} is {:.2f} dB {}", NameOf(m), std::abs(level), level < 0 ? "low" : "high"));
            }
            worst = std::abs(level) > std::abs(worst) ? level : worst;
        }
        const double found = isCommon ? common : worst;
        const std::string text =
            isCommon ? fmt::format("{} {:.2f} dB {}", levels.size() == 1 ? "the sound is" : "everything is",
                                   std::abs(common), common < 0 ? "low" : "high")
                     : Joined(parts);
        static_cast<void>(mFindings.Judge(id::kAudioGain, {0, found, uncertainty}, text));
    }

    void JudgeSilence()
    {
        std::vector<std::string> silent;
        for (std::size_t m = 0; m < std::min(Channels(), Sources()); ++m) {
            const bool isElsewhere = std::any_of(mMix.rows.begin(), mMix.rows.end(), [&](const MixRow& row) {
                return !row.isSilent && row.source == static_cast<int>(m) && Channels() != Sources();
            });
            if (!mMix.rows[m].isSilent || !IsHeard(m) || isElsewhere) {
                continue;
            }
            if (mMix.rows[m].isOutOfBand && mUncarried == Uncarried::Note) {
                mFindings.Note(fmt::format("{} keeps low frequencies alone of the LFE channel, and the clip's "
                                           "tones are above them [{}]",
                                           mFacts.codec, id::kAudioSilence));
            } else {
                silent.push_back(NameOf(m));
            }
        }
        if (silent.empty()) {
            mFindings.AsExpected(id::kAudioSilence);
            return;
        }
        Finding& finding = mFindings.Fault(
            id::kAudioSilence, fmt::format("{} {} silent", Joined(silent), silent.size() == 1 ? "is" : "are"));
        finding.expected = std::string("tones");
        finding.found = Joined(silent) + " silent";
    }

    void JudgeSegments()
    {
        if (!mMap.strays.empty()) {
            const StrayTone& first = mMap.strays.front();
            Finding& finding = mFindings.Fault(
                id::kAudioSegments,
                fmt::format(
                    "{} {} out of order; the first is {:.0f} Hz, which belongs at {:.2f} s and is at {:.2f} s",
                    mMap.strays.size(), mMap.strays.size() == 1 ? "segment is" : "segments are",
                    mClip.frequencies[first.tone], first.clipBegin, mMap.ClipSeconds(first.begin)));
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

    // How fast it runs, and what is missing.

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

    void JudgeSteps()
    {
        JudgeStepsOf(id::kAudioLost, "missing", +1);
        JudgeStepsOf(id::kAudioInserted, "added", -1);
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

    // What is beside the tones.

    /// Channels whose tops are cut.
    [[nodiscard]] std::vector<std::string> CutChannels() const
    {
        std::vector<std::string> cut;
        for (std::size_t m = 0; m < Channels(); ++m) {
            const ChannelStatistics& own = mMovie.channels[m].statistics;
            if (own.flatBlocks >= 3 && own.flatBlocks * 20 > own.toneBlocks) {
                cut.push_back(NameOf(m));
            }
        }
        return cut;
    }

    void JudgeClipping()
    {
        const std::vector<std::string> cut = CutChannels();
        double level = 0;
        double measured = 0;
        for (const ChannelTrack& channel : mMovie.channels) {
            level = std::max(level, channel.statistics.flatLevel);
            measured += static_cast<double>(channel.statistics.toneBlocks);
        }
        if (!cut.empty()) {
            Finding& finding = mFindings.Fault(
                id::kAudioClipping,
                fmt::format("tops are cut off at {:.2f} dBFS on {}", Decibels(level),
                            cut.size() == Channels() && cut.size() > 2 ? "all channels" : Joined(cut)));
            finding.expected = std::string("sines");
            finding.found = fmt::format("flat at {:.2f} dBFS", Decibels(level));
        } else if (measured > 0) {
            mFindings.AsExpected(id::kAudioClipping);
        } else {
            mFindings.NotVisible(id::kAudioClipping);
        }
    }

    /// A level that has to be below a limit.
    void JudgeLevel(std::string_view check, double level, double uncertainty, const std::string& text)
    {
        const double limit = mFindings.Limits().Of(check);
        if (level <= limit - uncertainty) {
            mFindings.AsExpected(check);
            return;
        }
        Finding& finding = level > limit + uncertainty
                               ? mFindings.Fault(check, text)
                               : mFindings.Undecided(check, text + ", within the uncertainty of the tolerance");
        finding.expected = limit;
        finding.found = level;
        finding.uncertainty = uncertainty;
    }

    void JudgeConstant()
    {
        double worst = 0;
        double sigma = 0;
        std::size_t place = 0;
        for (std::size_t m = 0; m < Channels(); ++m) {
            const ChannelStatistics& own = mMovie.channels[m].statistics;
            if (std::abs(own.constant) > std::abs(worst)) {
                worst = own.constant;
                sigma = own.constantSigma;
                place = m;
            }
        }
        const double level = Decibels(std::abs(worst));
        const double uncertainty = worst == 0 ? 0 : std::min(6.0, 8.69 * 3 * sigma / std::abs(worst));
        JudgeLevel(id::kAudioDc, level, uncertainty,
                   fmt::format("{} has a constant part of {:+.5f} ({:.1f} dBFS)", NameOf(place), worst, level));
    }

    void JudgeNoise()
    {
        double worst = 0;
        std::size_t place = 0;
        double samples = 0;
        for (std::size_t m = 0; m < Channels(); ++m) {
            const ChannelStatistics& own = mMovie.channels[m].statistics;
            samples += own.toneSamples + own.silentSamples;
            if (own.noise > worst) {
                worst = own.noise;
                place = m;
            }
        }
        // The clip's frequencies are learnt from the same short time, and a small error of theirs looks like
        // noise.
        constexpr double kLeastSeconds = 0.25;
        if (samples < kLeastSeconds * mMovie.rate * static_cast<double>(Channels())) {
            mFindings.NotVisible(id::kAudioNoise);
            return;
        }
        const double level = Decibels(worst);
        JudgeLevel(id::kAudioNoise, level, 0.5,
                   fmt::format("{} has noise of {:.1f} dBFS between its tones", NameOf(place), level));
    }

    void JudgeHarmonics()
    {
        double worst = 0;
        double sigma = 0;
        std::size_t place = 0;
        double samples = 0;
        for (std::size_t m = 0; m < Channels(); ++m) {
            const ChannelStatistics& own = mMovie.channels[m].statistics;
            samples += own.toneSamples;
            if (own.harmonics > worst) {
                worst = own.harmonics;
                sigma = own.harmonicsSigma;
                place = m;
            }
        }
        if (samples <= 0) {
            mFindings.NotVisible(id::kAudioHarmonics);
            return;
        }
        // A tone that is bent has another level, by as much as its harmonics at most.
        double gain = 0;
        for (const MixRow& row : mMix.rows) {
            gain = std::max(gain, row.isSilent ? 0.0 : std::abs(std::abs(row.gain) - 1));
        }
        if (gain < 3 * worst) {
            mFindings.Because(id::kAudioHarmonics, id::kAudioGain);
        }
        const double level = Decibels(worst);
        JudgeLevel(id::kAudioHarmonics, level, worst > 0 ? std::min(6.0, 0.1 + 8.69 * 2 * sigma / worst) : 0.0,
                   fmt::format("tones on {} have harmonics of {:.1f} dB ({:.2f} %)", NameOf(place), level,
                               worst * 100));
    }

    void JudgeDepth()
    {
        if (!IsLossless() || mFacts.bits <= 0) {
            mFindings.NotVisible(id::kAudioDepth, "a codec that loses nothing, such as pcm24 or flac");
            return;
        }
        if (Channels() != Sources()) {
            mFindings.NotVisible(id::kAudioDepth, "a movie with as many channels");
            return;
        }
        int expected = 0;
        int found = 0;
        for (std::size_t m = 0; m < Channels(); ++m) {
            expected = std::max(expected, mClipBits[m]);
            found = std::max(found, mMovie.channels[m].statistics.usedBits);
        }
        if (found == 0 || found >= expected) {
            mFindings.AsExpected(id::kAudioDepth);
            return;
        }
        Finding& finding =
            mFindings.Fault(id::kAudioDepth,
                            fmt::format("samples of {} bits use {}: the rest is always 0", mFacts.bits, found));
        finding.expected = static_cast<double>(expected);
        finding.found = static_cast<double>(found);
        finding.uncertainty = 0;
        // Samples times a power of two end with zeros.
        const double zeros = std::exp2(expected - found);
        if (std::all_of(mMix.rows.begin(), mMix.rows.end(), [zeros](const MixRow& row) {
                return row.isSilent || std::abs(std::abs(row.gain) / zeros - 1) < 1e-3;
            })) {
            mFindings.Because(id::kAudioGain, id::kAudioDepth);
        }
    }

    const SoundTrack& mClip;
    const SoundTrack& mMovie;
    const TimeMap& mMap;
    const MixFit& mMix;
    const std::vector<int>& mClipBits;
    const read::SoundFacts& mFacts;
    Uncarried mUncarried;
    Findings& mFindings;
};

} // namespace

void JudgeSound(const SoundEvidence& evidence, const read::SoundFacts& movie, Uncarried uncarried,
                Findings& findings)
{
    const auto hide = [&](const char* use) {
        for (const std::string_view check : kChecks) {
            findings.NotVisible(check, use);
        }
    };
    switch (evidence.trouble) {
    case SoundTrouble::None:
        Judging(evidence, movie, uncarried, findings).Run();
        break;
    case SoundTrouble::NoClipSound:
        hide("a clip with sound");
        break;
    case SoundTrouble::UnfitTone:
        hide("a tone between 16 Hz and 0.47 of the sample rate");
        break;
    case SoundTrouble::NoMovieSound:
        hide("a movie with sound");
        break;
    case SoundTrouble::TooShort:
        hide("a movie with more of the sound");
        break;
    case SoundTrouble::Silent: {
        hide("a movie whose sound is heard");
        Finding& finding = findings.Fault(id::kAudioSilence, "the sound is silent throughout");
        finding.expected = std::string("tones");
        finding.found = std::string("silence");
        break;
    }
    case SoundTrouble::SomethingElse: {
        hide("a movie with this clip's sound");
        Finding& finding = findings.Fault(id::kSignalOther, "the sound is not this clip's");
        finding.expected = std::string("the clip's tones");
        finding.found = std::string("something else");
        break;
    }
    }
}

} // namespace tessel::verify::judge
