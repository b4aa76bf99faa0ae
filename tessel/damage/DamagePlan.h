/// Everything that is done to one clip on its way into a file.
#pragma once

#include "order/FrameOrder.h"
#include "picture/WorkPicture.h"
#include "sound/ChannelFaults.h"
#include "sound/SoundTime.h"

#include <tessel/document/OpenClip.h>
#include <tessel/export/Render.h>
#include <tessel/export/plan/OutputPlan.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessel::damage {

/// Gives the clean picture at a position of the file; positions beyond the ends give the nearest picture.
using PictureAt = std::function<WorkPicture(std::int64_t position)>;

/// Makes the damaged picture of a position; `before` gives the pictures as the faults before this one left
/// them.
using PictureFault = std::function<WorkPicture(const PictureAt& before, std::int64_t position)>;

/// A span of the clip's frames, or of the file's samples; both ends included.
struct Span {
    std::int64_t first = 0;
    std::int64_t last = 0;
};

/// What was put in, for the truth that stands beside the file.
struct Truth {
    std::string fault;
    std::string value;
    std::optional<Span> frames;
    std::optional<Span> samples;
};

struct DamagePlan {
    DamagePlan(const document::ClipFacts& clipFacts, const exporting::FrameRange& range)
        : facts(clipFacts), described(clipFacts), frames(range), order(range.first, range.count)
    {
    }

    const document::ClipFacts facts;    ///< of the clip as it is
    document::ClipFacts described;      ///< with the file's rate and sound: what its output is planned for
    std::int32_t width = facts.width;   ///< of the file's pictures
    std::int32_t height = facts.height; ///< likewise
    const exporting::FrameRange frames; ///< of the clip
    FrameOrder order;
    std::vector<PictureFault> pictures; ///< one after the other
    SoundTime soundTime;
    std::vector<ChannelFault> channels; ///< one after the other
    std::vector<std::function<void(exporting::OutputPlan&)>> announcements;
    /// The time of each picture in frame durations where it is not its position.
    std::function<std::int64_t(std::int64_t position)> pictureTime;
    /// Samples that the sound goes on behind the last picture; negative where it ends sooner.
    std::int64_t soundTailSamples = 0;
    std::int64_t startFrames = 0; ///< time of the first picture, in frame durations
    std::string soundCodec;       ///< as `--audio-codec` takes it; empty: as a person chose it
    bool dropsAlpha = false;      ///< the file is to have no alpha
    std::vector<Truth> truths;
};

/// Gives the file another rate, with as many pictures as before. @throws FaultError  where it is no 32-bit
/// fraction
void ChangeRate(DamagePlan& plan, std::int64_t numerator, std::int64_t denominator);

} // namespace tessel::damage
