#include "ContainerJudge.h"

#include "ContainerChecks.h"
#include "ContainerReport.h"

#include <fmt/format.h>

#include <initializer_list>

namespace tessel::verify::judge {
namespace {

constexpr std::initializer_list<std::string_view> kPictureChecks = {
    id::kContainerSize,   id::kContainerRate,      id::kContainerConstantRate, id::kContainerAspect,
    id::kContainerFields, id::kContainerPrimaries, id::kContainerTransfer,     id::kContainerMatrix,
    id::kContainerRange,  id::kContainerSiting,    id::kContainerDepth,        id::kContainerAlpha};
constexpr std::initializer_list<std::string_view> kSoundChecks = {id::kContainerChannels, id::kContainerLayout,
                                                                  id::kContainerSampleRate};

/// Reports movies and clips that have no pictures or no sound.
class MissingStreams : public ContainerReport {
public:
    using ContainerReport::ContainerReport;

    void JudgeMissingPictures()
    {
        for (const std::string_view check : kPictureChecks) {
            mFindings.NotVisible(check, "a movie and a clip with pictures");
        }
        if (mClip.hasPicture && !mMovie.picture) {
            if (mMovie.carriesPictures) {
                Fault(id::kContainerSize, "the movie has no pictures",
                      fmt::format("{}x{}", mClip.width, mClip.height), std::string("none"));
            } else {
                mFindings.Note("the movie is of a kind without pictures: only its sound is compared");
            }
        }
    }

    void JudgeMissingSound()
    {
        for (const std::string_view check : kSoundChecks) {
            mFindings.NotVisible(check, "a movie and a clip with sound");
        }
        if (mClip.channels > 0 && !mMovie.sound) {
            if (mMovie.carriesSound) {
                Fault(id::kContainerChannels, "the movie has no sound", static_cast<double>(mClip.channels),
                      0.0);
            } else {
                mFindings.Note("the movie is of a kind without sound: only its pictures are compared");
            }
        }
    }
};

} // namespace

void JudgeContainer(const ContainerCase& given, Findings& findings)
{
    if (given.movie.picture && given.clip.hasPicture) {
        JudgePictureFormat(given, findings);
        JudgeColorTags(given, findings);
        JudgePictureSamples(given, findings);
    } else {
        MissingStreams(given, findings).JudgeMissingPictures();
    }
    if (given.movie.sound && given.clip.channels > 0) {
        JudgeSoundFormat(given, findings);
    } else {
        MissingStreams(given, findings).JudgeMissingSound();
    }
    JudgeTimes(given, findings);
}

} // namespace tessel::verify::judge
