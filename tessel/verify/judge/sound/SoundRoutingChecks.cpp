#include "SoundChecks.h"
#include "SoundReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace tessel::verify::judge {
namespace {

/// Of a channel's energy, so much may come from elsewhere: -40 dB, and what delivery codecs leave.
constexpr double kAloneExact = 1e-4;
constexpr double kAloneCoded = 2e-3;
/// A known mixture fits up to so much of the level.
constexpr double kMixFits = 0.05;

class SoundRoutingChecks : public SoundReport {
public:
    using SoundReport::SoundReport;

    void Run()
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

private:
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
};

} // namespace

void JudgeSoundRouting(const SoundEvidence& evidence, const read::SoundFacts& movie, Uncarried uncarried,
                       Findings& findings)
{
    SoundRoutingChecks(evidence, movie, uncarried, findings).Run();
}

} // namespace tessel::verify::judge
