#include "Fault.h"

#include <tessel/verify/catalogue/Names.h>

#include <array>
#include <numeric>
#include <vector>

namespace tessel::damage {
namespace {

namespace id = verify::id;

/// The frame that a value names, or the middle one of those that are rendered; as a position in the file.
std::int64_t Position(const DamagePlan& plan, FaultValue& value, Truth& truth, std::int64_t frameCount = 1)
{
    const auto pictures = static_cast<std::int64_t>(plan.order.Pictures().size());
    if (pictures < frameCount + 1) {
        value.Refuse("the clip has too few frames for it");
    }
    const std::int64_t first = plan.frames.first;
    const std::int64_t last = first + pictures - frameCount;
    const std::int64_t frame =
        value.IsAtEnd() ? std::min(first + pictures / 2, last) : value.Whole(first, last);
    truth.frames = {frame, frame + frameCount - 1};
    return frame - first;
}

void CutHead(DamagePlan& plan, FaultValue& value, Truth& truth)
{
    const auto pictures = static_cast<std::int64_t>(plan.order.Pictures().size());
    const std::int64_t count = value.Whole(1, pictures - 1);
    truth.frames = {plan.frames.first, plan.frames.first + count - 1};
    plan.order.CutHead(count);
    // Who cuts a beginning cuts picture and sound.
    const double framesPerSecond = static_cast<double>(plan.facts.timeScale) / plan.facts.sampleSize;
    plan.soundTime.Delay(-static_cast<double>(count) / framesPerSecond *
                         static_cast<double>(plan.facts.sampleRate));
}

void CutTail(DamagePlan& plan, FaultValue& value, Truth& truth)
{
    const auto pictures = static_cast<std::int64_t>(plan.order.Pictures().size());
    const std::int64_t count = value.Whole(1, pictures - 1);
    const std::int64_t end = plan.frames.first + plan.frames.count;
    truth.frames = {end - count, end - 1};
    plan.order.CutTail(count);
}

void Pulldown(DamagePlan& plan, FaultValue& value, Truth&)
{
    std::vector<int> pattern;
    while (!value.IsAtEnd()) {
        pattern.push_back(static_cast<int>(value.Whole(1, 100)));
    }
    plan.order.Pulldown(pattern);
    // The clip takes as long as before: more pictures, and more of them a second.
    const std::int64_t shown = std::accumulate(pattern.begin(), pattern.end(), std::int64_t{0});
    const auto frames = static_cast<std::int64_t>(pattern.size());
    ChangeRate(plan, std::int64_t{plan.described.timeScale} * shown,
               std::int64_t{plan.described.sampleSize} * frames);
}

constexpr std::array kOrderFaults = std::to_array<Fault>({
    {id::kOrderMissing, "FRAME", "", "a frame is left out; the frames behind it come one frame sooner",
     [](DamagePlan& plan, FaultValue& value, Truth& truth) {
         plan.order.Remove(Position(plan, value, truth));
     }},
    {id::kOrderRepeated, "FRAME", "", "a frame is shown twice; the frames behind it come one frame later",
     [](DamagePlan& plan, FaultValue& value, Truth& truth) {
         plan.order.Repeat(Position(plan, value, truth), 1);
     }},
    {id::kOrderInserted, "FRAME", "", "a black picture is put in before a frame",
     [](DamagePlan& plan, FaultValue& value, Truth& truth) {
         plan.order.InsertBlack(Position(plan, value, truth));
     }},
    {id::kOrderSwapped, "FRAME", "", "a frame and the next one change places",
     [](DamagePlan& plan, FaultValue& value, Truth& truth) {
         plan.order.SwapWithNext(Position(plan, value, truth, 2));
     }},
    {id::kOrderFrozen, "COUNT[:FRAME]", "6", "a frame stands still in place of the COUNT frames behind it",
     [](DamagePlan& plan, FaultValue& value, Truth& truth) {
         const auto pictures = static_cast<std::int64_t>(plan.order.Pictures().size());
         const std::int64_t count = value.Whole(1, std::max<std::int64_t>(pictures - 2, 1));
         const std::int64_t at = Position(plan, value, truth, count + 1);
         plan.order.Freeze(at, count);
     }},
    {id::kOrderReversed, "", "", "the frames come in reverse order",
     [](DamagePlan& plan, FaultValue&, Truth&) { plan.order.Reverse(); }},
    {id::kOrderCadence, "TIMES[:TIMES...]", "3:2",
     "frames are shown so many times each, over and over, at a rate that keeps the duration", Pulldown},
    {id::kOrderHead, "COUNT", "5", "the first frames are missing, with their sound", CutHead},
    {id::kOrderTail, "COUNT", "5", "the last frames are missing, with their sound", CutTail},
    {id::kOrderUnreadable, "FRAME", "", "a picture is covered with noise",
     [](DamagePlan& plan, FaultValue& value, Truth& truth) { plan.order.Spoil(Position(plan, value, truth)); }},
});

} // namespace

std::span<const Fault> OrderFaults() noexcept
{
    return kOrderFaults;
}

} // namespace tessel::damage
