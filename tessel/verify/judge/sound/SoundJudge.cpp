#include "SoundJudge.h"

#include "SoundChecks.h"

#include <array>
#include <string>
#include <string_view>

namespace tessel::verify::judge {
namespace {

constexpr std::array kChecks{id::kAudioOrder,    id::kAudioPolarity, id::kAudioGain,    id::kAudioSilence,
                             id::kAudioClipping, id::kAudioDc,       id::kAudioNoise,   id::kAudioHarmonics,
                             id::kAudioPitch,    id::kAudioDrift,    id::kAudioLost,    id::kAudioInserted,
                             id::kAudioDropout,  id::kAudioDepth,    id::kAudioDownmix, id::kAudioUpmix,
                             id::kAudioSegments};

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
        findings.AsExpected(id::kSignalOther);
        JudgeSoundRouting(evidence, movie, uncarried, findings);
        JudgeSoundTimes(evidence, movie, uncarried, findings);
        JudgeSoundLevels(evidence, movie, uncarried, findings);
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
