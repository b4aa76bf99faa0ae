#include "SoundChecks.h"
#include "SoundReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace tessel::verify::judge {
namespace {

class SoundLevelChecks : public SoundReport {
public:
    using SoundReport::SoundReport;

    void Run()
    {
        JudgeClipping();
        JudgeConstant();
        JudgeNoise();
        JudgeHarmonics();
        JudgeDepth();
    }

private:
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
        // Lossy codecs change levels by some hundredths of a decibel.
        const double least = IsLossless() ? 0.0 : 0.05;
        const double uncertainty = worst == 0 ? 0 : std::clamp(8.69 * 3 * sigma / std::abs(worst), least, 6.0);
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
};

} // namespace

void JudgeSoundLevels(const SoundEvidence& evidence, const read::SoundFacts& movie, Uncarried uncarried,
                      Findings& findings)
{
    SoundLevelChecks(evidence, movie, uncarried, findings).Run();
}

} // namespace tessel::verify::judge
