#include "FrameMap.h"

#include <tessel/verify/catalogue/Names.h>

#include <algorithm>
#include <utility>

namespace tessel::view {
namespace {

/// The frame that picture `index` of a step shows.
std::int64_t FrameOf(const verify::EditStep& step, std::int64_t index)
{
    if (step.kind == verify::id::kOrderReversed) {
        return step.frame + step.frames - 1 - index;
    }
    // One to one, or spread evenly where a pattern repeats frames.
    return step.frame + index * step.frames / step.pictures;
}

/// A script names the two pictures of a swap by the frames that belong there: exchanges them for those that
/// they show. Swaps are told one after the other, so that two steps that follow each other are a pair.
void Exchange(std::vector<verify::EditStep>& steps)
{
    verify::EditStep* partner = nullptr;
    for (verify::EditStep& step : steps) {
        if (step.kind != verify::id::kOrderSwapped) {
            continue;
        }
        if (partner == nullptr) {
            partner = &step;
        } else {
            std::swap(partner->frame, step.frame);
            partner = nullptr;
        }
    }
}

/// The script tells reversed runs and swapped frames first and goes on as if they were put right again, so its
/// other steps cover the same pictures once more. Frames in their places come before pictures that were put in
/// elsewhere.
int RankOf(const verify::EditStep& step)
{
    if (step.kind == verify::id::kOrderReversed || step.kind == verify::id::kOrderSwapped) {
        return 0;
    }
    return step.kind == "shown" ? 1 : 2;
}

} // namespace

FrameMap MapOf(const verify::AlignmentReport& alignment)
{
    FrameMap map(static_cast<std::size_t>(std::max<std::int64_t>(alignment.frames, 0)), -1);
    const auto put = [&map](std::int64_t frame, std::int64_t picture) {
        if (frame >= 0 && frame < static_cast<std::int64_t>(map.size()) &&
            map[static_cast<std::size_t>(frame)] < 0) {
            map[static_cast<std::size_t>(frame)] = picture;
        }
    };
    if (alignment.matched == 0 || alignment.steps.empty()) {
        for (std::int64_t picture = 0; picture < alignment.pictures; ++picture) {
            put(picture, picture);
        }
        return map;
    }
    std::vector<verify::EditStep> steps = alignment.steps;
    Exchange(steps);
    std::stable_sort(steps.begin(), steps.end(),
                     [](const auto& left, const auto& right) { return RankOf(left) < RankOf(right); });
    for (const verify::EditStep& step : steps) {
        if (step.frame < 0 || step.frames < 1) {
            continue;
        }
        for (std::int64_t index = 0; index < step.pictures; ++index) {
            put(FrameOf(step, index), step.picture + index);
        }
    }
    return map;
}

} // namespace tessel::view
