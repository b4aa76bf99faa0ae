#include "ContainerChecks.h"
#include "ContainerReport.h"

#include <fmt/format.h>

namespace tessel::verify::judge {
namespace {

class SoundFormatChecks : public ContainerReport {
public:
    using ContainerReport::ContainerReport;

    void Run()
    {
        const read::SoundFacts& sound = *mMovie.sound;
        if (sound.channels == mClip.channels) {
            mFindings.AsExpected(id::kContainerChannels);
        } else {
            Fault(id::kContainerChannels,
                  fmt::format("the sound has {} {}, not {}", sound.channels,
                              sound.channels == 1 ? "channel" : "channels", mClip.channels),
                  static_cast<double>(mClip.channels), static_cast<double>(sound.channels));
        }
        if (sound.sampleRate == mClip.sampleRate) {
            mFindings.AsExpected(id::kContainerSampleRate);
        } else {
            Fault(id::kContainerSampleRate,
                  fmt::format("the sample rate is {} Hz, not {} Hz", sound.sampleRate, mClip.sampleRate),
                  static_cast<double>(mClip.sampleRate), static_cast<double>(sound.sampleRate));
        }
        JudgeLayout(sound);
        JudgeSoundDepth(sound);
    }

private:
    /// The clip's samples are floats: 24 bits of them are what sound files of whole numbers have at best.
    void JudgeSoundDepth(const read::SoundFacts& sound)
    {
        constexpr int kBits = 24;
        if (sound.bits == 0 || sound.bits >= kBits) {
            mFindings.AsExpected(id::kContainerDepth); // lossy codecs have no bits to speak of
        } else {
            Fault(id::kContainerDepth,
                  fmt::format("samples of the sound have {} bits, not {}", sound.bits, kBits),
                  static_cast<double>(kBits), static_cast<double>(sound.bits));
        }
    }

    void JudgeLayout(const read::SoundFacts& sound)
    {
        const std::string expected = mClip.channels == 1   ? "mono"
                                     : mClip.channels == 2 ? "stereo"
                                     : mClip.channels == 6 ? "5.1"
                                                           : "";
        if (expected.empty() || sound.channels != mClip.channels || mMovie.soundStreams > 1) {
            mFindings.NotVisible(id::kContainerLayout);
            return;
        }
        if (sound.layout.empty()) {
            // Readers take one or two channels for mono or stereo, and lossy codecs have one order for six.
            if (mClip.channels <= 2 || sound.codecClass != CodecClass::Lossless) {
                mFindings.AsExpected(id::kContainerLayout);
            } else if (!mMovie.sayable.layout) {
                Unsayable(id::kContainerLayout, "say the channel layout", expected);
            } else {
                Fault(id::kContainerLayout, fmt::format("the channel layout is not said; it is {}", expected),
                      expected, std::string("not said"));
            }
            return;
        }
        FaultUnless(sound.layout.substr(0, expected.size()) == expected, id::kContainerLayout,
                    "the announced channel layout", expected, sound.layout);
    }
};

} // namespace

void JudgeSoundFormat(const ContainerCase& given, Findings& findings)
{
    SoundFormatChecks(given, findings).Run();
}

} // namespace tessel::verify::judge
