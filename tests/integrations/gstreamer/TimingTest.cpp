#include <gtest/gtest.h>
#include <integrations/gstreamer/Pace.h>
#include <integrations/gstreamer/Timing.h>

#include <atomic>
#include <thread>

namespace {

using tessel::gstreamer::Pace;
using tessel::gstreamer::StartOf;
using tessel::gstreamer::UnitAt;
using tessel::gstreamer::UnitRate;
using tessel::gstreamer::UnitsBefore;

TEST(Timing, AUnitsStartLiesInTheUnitAndTheTimeBeforeInTheOneBefore)
{
    for (const UnitRate rate :
         {UnitRate{25, 1}, UnitRate{24000, 1001}, UnitRate{30000, 1001}, UnitRate{60000, 1001},
          UnitRate{48000, 1}, UnitRate{44100, 1}, UnitRate{2147483647, 2147483646}}) {
        for (const guint64 unit : {1ULL, 2ULL, 3ULL, 1000ULL, 107'892ULL, 2'589'408ULL, 123'456'789ULL}) {
            EXPECT_EQ(UnitAt(rate, StartOf(rate, unit)), unit);
            EXPECT_EQ(UnitAt(rate, StartOf(rate, unit) - 1), unit - 1);
            EXPECT_EQ(UnitsBefore(rate, StartOf(rate, unit)), unit);
        }
    }
}

TEST(Timing, AnHourOfNtscHasItsKnownLength)
{
    // 107892 frames × 1001 / 30000 s = 3599.9964 s, the hour of drop-frame timecode.
    EXPECT_EQ(StartOf({30000, 1001}, 107'892), 3'599'996'400'000ULL);
}

TEST(Pace, AnUnlinkedStreamWaitsForTheLinkedOneAndNotForItsEnd)
{
    Pace pace;
    const Pace::Id linked = pace.Add();
    const Pace::Id unlinked = pace.Add();
    pace.SetLinked(unlinked, false);
    pace.Advance(unlinked, 10);
    std::atomic<bool> hasTurn = false;
    std::thread waiting([&] { hasTurn = pace.WaitForTurn(unlinked); });
    pace.Advance(linked, 9);
    EXPECT_FALSE(hasTurn);
    pace.Advance(linked, 10);
    waiting.join();
    EXPECT_TRUE(hasTurn);
    pace.Advance(unlinked, 20);
    pace.End(linked);
    EXPECT_TRUE(pace.WaitForTurn(unlinked));
}

TEST(Pace, ALinkThatIsMadeWhileABufferIsOnItsWayEndsTheWait)
{
    Pace pace;
    static_cast<void>(pace.Add());
    const Pace::Id late = pace.Add();
    EXPECT_TRUE(pace.WaitForTurn(late));
    pace.Advance(late, 10);
    pace.Reconfigure(late);
    pace.SetLinked(late, false); // what became of a buffer that was sent before
    EXPECT_TRUE(pace.WaitForTurn(late));
}

TEST(Pace, FlushingEndsEveryWait)
{
    Pace pace;
    static_cast<void>(pace.Add());
    const Pace::Id stream = pace.Add();
    pace.SetLinked(stream, false);
    pace.Advance(stream, 10);
    pace.SetFlushing(stream, true);
    EXPECT_FALSE(pace.WaitForTurn(stream));
    EXPECT_FALSE(pace.WaitForOthersToStart(stream));
    pace.SetFlushing(stream, false);
    pace.Start(0);
    pace.Start(stream);
    EXPECT_TRUE(pace.WaitForOthersToStart(stream));
}

} // namespace
