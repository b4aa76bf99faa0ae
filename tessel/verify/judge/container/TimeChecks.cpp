#include "ContainerChecks.h"
#include "ContainerReport.h"

#include <fmt/format.h>

#include <cmath>

namespace tessel::verify::judge {
namespace {

using read::Rational;

class TimeChecks : public ContainerReport {
public:
    using ContainerReport::ContainerReport;

    void Run()
    {
        JudgeDuration();
        JudgeStart();
    }

private:
    void JudgeDuration()
    {
        const auto& pictures = mGiven.alignment.pictures;
        const double frame = mClip.rate.numerator > 0 ? 1 / mClip.rate.Value() : 0.04;
        const double expected = mClip.SecondsOf(mClip.frameCount);
        double found = 0;
        double uncertainty = frame / 2;
        if (!pictures.empty() && mClip.hasPicture) {
            const auto count = static_cast<double>(pictures.size());
            const auto& first = pictures.front().seconds;
            const auto& last = pictures.back().seconds;
            const Rational rate =
                mMovie.picture->averageRate.numerator > 0 ? mMovie.picture->averageRate : mClip.rate;
            // The last picture lasts as long as the others.
            found = first && last && pictures.size() > 1 ? (*last - *first) * count / (count - 1)
                                                         : count / rate.Value();
        } else if (mMovie.sound && mMovie.sound->sampleRate > 0) {
            found = static_cast<double>(mGiven.soundSamples) / mMovie.sound->sampleRate;
            // Codecs with blocks fill up the last one, and some keep what they start with.
            uncertainty = mMovie.sound->codecClass == CodecClass::Lossless ? frame / 2 : 0.15;
        } else {
            mFindings.NotVisible(id::kContainerDuration);
            return;
        }
        if (std::abs(found - expected) <= uncertainty) {
            JudgeSoundDuration(expected, frame);
            return;
        }
        Finding& finding = mFindings.Fault(
            id::kContainerDuration, fmt::format("the movie lasts {:.3f} s, not {:.3f} s", found, expected));
        finding.expected = expected;
        finding.found = found;
        finding.uncertainty = uncertainty;
    }

    /// The pictures are all there: the sound shall be as long.
    void JudgeSoundDuration(double expected, double frame)
    {
        const bool hasSound = mMovie.sound && mMovie.sound->sampleRate > 0 && mClip.channels > 0;
        const double found =
            hasSound ? static_cast<double>(mGiven.soundSamples) / mMovie.sound->sampleRate : expected;
        const double uncertainty =
            hasSound && mMovie.sound->codecClass != CodecClass::Lossless ? 0.15 : frame / 2;
        if (std::abs(found - expected) <= uncertainty) {
            mFindings.AsExpected(id::kContainerDuration);
            return;
        }
        Finding& finding =
            mFindings.Fault(id::kContainerDuration,
                            fmt::format("the sound lasts {:.3f} s, the pictures {:.3f} s", found, expected));
        finding.expected = expected;
        finding.found = found;
        finding.uncertainty = uncertainty;
    }

    void JudgeStart()
    {
        const bool isFree = mMovie.startsAnywhere;
        const double base = isFree ? mMovie.startSeconds.value_or(0.0) : 0.0;
        const double pictureStart = mMovie.picture && !mGiven.alignment.pictures.empty()
                                        ? mGiven.alignment.pictures.front().seconds.value_or(base) - base
                                        : 0.0;
        const double soundStart = mMovie.sound ? mMovie.sound->startSeconds.value_or(base) - base : 0.0;
        const double limit = mFindings.Limits().Of(id::kContainerStart) / 1000;
        // Lossy sound codecs begin with a block of their own.
        const bool isPrimed = mMovie.sound && mMovie.sound->codecClass != CodecClass::Lossless;
        const double soundLimit = isPrimed ? 0.12 : limit;
        const bool isPictureLate = std::abs(pictureStart) > limit + (isFree ? 0.12 : 0.0);
        if (!isPictureLate && std::abs(soundStart) <= soundLimit + (isFree ? 0.12 : 0.0)) {
            mFindings.AsExpected(id::kContainerStart);
            return;
        }
        const double found = isPictureLate ? pictureStart : soundStart;
        Fault(id::kContainerStart,
              fmt::format("the {} starts at {:.1f} ms, not at 0", isPictureLate ? "picture" : "sound",
                          found * 1000),
              0.0, found * 1000);
    }
};

} // namespace

void JudgeTimes(const ContainerCase& given, Findings& findings)
{
    TimeChecks(given, findings).Run();
}

} // namespace tessel::verify::judge
