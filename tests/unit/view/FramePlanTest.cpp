#include <tessel/view/model/FramePlan.h>

#include <gtest/gtest.h>

#include <vector>

namespace tessel::view {
namespace {

using Frames = std::vector<std::int64_t>;

Transport Playing(std::int64_t count, double rate, int speed = 1)
{
    Transport transport(count, rate);
    for (int made = 1; made <= speed; made *= 2) {
        transport.Forward(0);
    }
    return transport;
}

TEST(FramePlan, QuickFramesAreMadeOneAfterTheOther)
{
    const Transport transport = Playing(1000, 25);
    const FramePlan plan = PlanFrames(transport, 100, {.seconds = 0.01, .threads = 2}, 3);
    EXPECT_EQ(plan.frames, (Frames{100, 101, 102, 103}));
    EXPECT_EQ(plan.keep, Frames{});
}

TEST(FramePlan, WhatTakesLongerThanItIsShownIsBegunEarlier)
{
    // 60 ms at 25 frames a second are 1.5 frames; two threads keep up with that.
    const FramePlan plan = PlanFrames(Playing(1000, 25), 100, {.seconds = 0.06, .threads = 2}, 2);
    EXPECT_EQ(plan.keep, (Frames{100, 101, 102}));
    EXPECT_EQ(plan.frames, (Frames{103, 104, 105}));
}

TEST(FramePlan, ThreadsThatCannotMakeAllFramesMakeEveryFewthInTime)
{
    // 100 ms at 60 frames a second are 6 frames, on two threads every third one.
    const Transport transport = Playing(1000, 60);
    const FramePlan plan = PlanFrames(transport, 100, {.seconds = 0.1, .threads = 2}, 2);
    EXPECT_EQ(plan.keep, (Frames{102, 105, 108}));
    EXPECT_EQ(plan.frames, (Frames{111, 114}));
    // The same ones a frame later, so that what is begun stays of use.
    const FramePlan next = PlanFrames(transport, 101, {.seconds = 0.1, .threads = 2}, 2);
    EXPECT_EQ(next.frames, (Frames{111, 114}));
}

TEST(FramePlan, EveryFrameIsMadeWhereNoneMayBeDropped)
{
    Transport transport = Playing(1000, 60);
    transport.SetPace(Pace::EveryFrame, 0);
    const FramePlan plan = PlanFrames(transport, 100, {.seconds = 1, .threads = 2}, 3);
    EXPECT_EQ(plan.frames, (Frames{100, 101, 102, 103}));
}

TEST(FramePlan, AtDoubleSpeedEverySecondFrameIsMade)
{
    const FramePlan plan = PlanFrames(Playing(1000, 25, 2), 101, {.seconds = 0.01, .threads = 2}, 2);
    EXPECT_EQ(plan.frames, (Frames{102, 104}));
}

TEST(FramePlan, EndsWithTheClipUnlessItPlaysInALoop)
{
    Transport transport = Playing(10, 25);
    EXPECT_EQ(PlanFrames(transport, 8, {}, 3).frames, (Frames{8, 9}));
    transport.SetLooping(true);
    EXPECT_EQ(PlanFrames(transport, 8, {}, 3).frames, (Frames{8, 9, 0, 1}));
}

} // namespace
} // namespace tessel::view
