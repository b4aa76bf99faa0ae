#include <tessel/view/model/Transport.h>

#include <gtest/gtest.h>

namespace tessel::view {
namespace {

// 25 frames a second: 0.04 s each. Times are taken in the middle of a frame.
constexpr double Middle(int frame)
{
    return 0.04 * frame + 0.02;
}

TEST(Transport, PlaysInRealTimeAndStopsAtTheEnd)
{
    Transport transport(10, 25);
    transport.Forward(0);
    EXPECT_EQ(transport.Due(Middle(0)), 0);
    EXPECT_EQ(transport.Due(Middle(7)), 7);
    EXPECT_EQ(transport.Due(Middle(12)), 9);
    EXPECT_EQ(transport.Speed(), 0);
}

TEST(Transport, LoopsWhereAsked)
{
    Transport transport(10, 25);
    transport.SetLooping(true);
    transport.Forward(0);
    EXPECT_EQ(transport.Due(Middle(12)), 2);
    EXPECT_EQ(transport.Speed(), 1);
}

TEST(Transport, EachFurtherPressDoublesTheSpeed)
{
    Transport transport(1000, 25);
    transport.Forward(0);
    transport.Forward(0);
    EXPECT_EQ(transport.Due(Middle(4)), 9); // 4.5 × 2
    for (int i = 0; i < 5; ++i) {
        transport.Forward(Middle(4));
    }
    EXPECT_EQ(transport.Speed(), Transport::kFastest);
    transport.Backward(1);
    EXPECT_EQ(transport.Speed(), -1);
    transport.Stop(1);
    EXPECT_EQ(transport.Speed(), 0);
}

TEST(Transport, PlaysBackwardsFromWhereItIs)
{
    Transport transport(100, 25);
    transport.Go(50, 0);
    transport.Backward(0);
    EXPECT_EQ(transport.Due(0), 50);
    EXPECT_EQ(transport.Due(Middle(0)), 50);
    EXPECT_EQ(transport.Due(Middle(3)), 47);
    EXPECT_EQ(transport.Due(Middle(60)), 0);
    EXPECT_EQ(transport.Speed(), 0);
}

TEST(Transport, StepsStopAndStayInTheClip)
{
    Transport transport(10, 25);
    transport.Forward(0);
    transport.Step(1, Middle(3));
    EXPECT_EQ(transport.Speed(), 0);
    EXPECT_EQ(transport.Due(100), 4);
    transport.Step(-9, 100);
    EXPECT_EQ(transport.Due(100), 0);
    transport.Go(99, 100);
    EXPECT_EQ(transport.Due(100), 9);
}

TEST(Transport, CountsFramesThatWereNotShown)
{
    Transport transport(1000, 25);
    transport.Forward(0);
    for (const int frame : {0, 1, 2, 5, 6, 6, 9}) { // 3, 4, 7 and 8 are left out
        transport.Showed(frame, Middle(frame));
    }
    EXPECT_EQ(transport.Dropped(), 4);
    EXPECT_EQ(transport.Shown(), 6);
    transport.Go(500, Middle(10));
    transport.Showed(500, Middle(10));
    EXPECT_EQ(transport.Dropped(), 4); // who goes elsewhere drops nothing
    transport.Stop(Middle(11));
    transport.Forward(Middle(12));
    EXPECT_EQ(transport.Dropped(), 0);
}

TEST(Transport, AcrossTheLoopFramesAreCountedAsWell)
{
    Transport transport(10, 25);
    transport.SetLooping(true);
    transport.Forward(0);
    transport.Showed(8, Middle(8));
    transport.Showed(1, Middle(11)); // 9 and 0 are left out
    EXPECT_EQ(transport.Dropped(), 2);
}

TEST(Transport, EveryFrameWaitsForEachAndIsNeverTooFast)
{
    Transport transport(10, 25);
    transport.SetPace(Pace::EveryFrame, 0);
    transport.Forward(0);
    EXPECT_EQ(transport.Due(10), 0); // whatever the time, the first one was not shown yet
    transport.Showed(0, 10);
    EXPECT_EQ(transport.Due(10.02), 0);
    EXPECT_EQ(transport.Due(10.05), 1);
    transport.Showed(1, 20);
    EXPECT_EQ(transport.Due(20.05), 2);
    EXPECT_EQ(transport.Dropped(), 0);
}

TEST(Transport, TheSecondFieldComesInTheSecondHalfOfAFrame)
{
    Transport transport(10, 25);
    transport.Forward(0);
    EXPECT_FALSE(transport.IsInSecondHalf(0.05));
    EXPECT_TRUE(transport.IsInSecondHalf(0.07));
}

TEST(Transport, KnowsWhatFollows)
{
    Transport transport(10, 25);
    EXPECT_EQ(transport.Following(8, 1), 9);
    EXPECT_EQ(transport.Following(9, 1), -1);
    transport.SetLooping(true);
    transport.Forward(0);
    EXPECT_EQ(transport.Following(9, 2), 1);
    transport.Backward(0);
    EXPECT_EQ(transport.Following(0, 1), 9);
}

TEST(Transport, TellsHowLateAFrameIs)
{
    Transport transport(10, 25);
    transport.Forward(0);
    EXPECT_EQ(transport.Lateness(3, 5), 2);
    EXPECT_GT(transport.Lateness(6, 5), 1000);
    EXPECT_DOUBLE_EQ(transport.FramesIn(0.08), 2);
    transport.SetLooping(true);
    EXPECT_EQ(transport.Lateness(9, 1), 2); // 9, 0, 1
    transport.Backward(0);
    EXPECT_EQ(transport.Lateness(5, 3), 2);
    EXPECT_EQ(transport.Lateness(1, 9), 2);
}

TEST(Transport, AnotherClipIsShownAtTheSameFrameIfItHasThat)
{
    Transport transport(100, 25);
    transport.Go(60, 0);
    transport.SetClip(50, 50, 1);
    EXPECT_EQ(transport.Due(1), 49);
    transport.SetClip(100, 25, 2);
    EXPECT_EQ(transport.Due(2), 49);
}

} // namespace
} // namespace tessel::view
