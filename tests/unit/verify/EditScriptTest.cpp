#include <tessel/verify/catalogue/Names.h>
#include <tessel/verify/judge/order/EditScript.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <tuple>

namespace tessel::verify::judge {
namespace {

using Frames = std::vector<std::int64_t>;

Frames Counting(std::int64_t from, std::int64_t to)
{
    Frames frames(static_cast<std::size_t>(to - from));
    std::iota(frames.begin(), frames.end(), from);
    return frames;
}

Frames operator+(Frames left, const Frames& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

/// Kind, picture, pictures, frame, frames; without what is in its place.
using Brief = std::tuple<std::string_view, int, int, int, int>;

std::vector<Brief> FaultsOf(const Frames& shown, std::int64_t frameCount, double framesPerPicture = 1)
{
    std::vector<Brief> faults;
    for (const EditStep& step : MakeEditScript(shown, frameCount, framesPerPicture).steps) {
        if (step.kind != "shown") {
            std::string_view name;
            for (const std::string_view known : id::kAll) {
                name = known == step.kind ? known : name;
            }
            faults.emplace_back(name, step.picture, step.pictures, step.frame, step.frames);
        }
    }
    return faults;
}

using Briefs = std::vector<Brief>;

TEST(EditScript, SaysNothingOfAWholeClip)
{
    EXPECT_EQ(FaultsOf(Counting(0, 50), 50), Briefs{});
    EXPECT_EQ(MakeEditScript(Counting(0, 50), 50).steps.size(), 1U);
    EXPECT_EQ(FaultsOf({0}, 1), Briefs{});
}

TEST(EditScript, NamesMissingFrames)
{
    EXPECT_EQ(FaultsOf(Counting(0, 12) + Counting(13, 50), 50), (Briefs{{id::kOrderMissing, 12, 0, 12, 1}}));
    EXPECT_EQ(FaultsOf(Counting(0, 12) + Counting(15, 20) + Counting(22, 50), 50),
              (Briefs{{id::kOrderMissing, 12, 0, 12, 3}, {id::kOrderMissing, 17, 0, 20, 2}}));
}

TEST(EditScript, NamesTrimmedHeadAndTail)
{
    EXPECT_EQ(FaultsOf(Counting(3, 45), 50),
              (Briefs{{id::kOrderHead, 0, 0, 0, 3}, {id::kOrderTail, 42, 0, 45, 5}}));
}

TEST(EditScript, NamesARepeatedFrame)
{
    EXPECT_EQ(FaultsOf(Counting(0, 21) + Frames{20, 20} + Counting(21, 50), 50),
              (Briefs{{id::kOrderRepeated, 21, 2, 20, 1}}));
    EXPECT_EQ(FaultsOf(Counting(0, 50) + Frames{49}, 50), (Briefs{{id::kOrderRepeated, 50, 1, 49, 1}}));
}

TEST(EditScript, TakesRepetitionsInPlaceOfFramesForAFreeze)
{
    EXPECT_EQ(FaultsOf(Counting(0, 21) + Frames{20, 20, 20} + Counting(24, 50), 50),
              (Briefs{{id::kOrderFrozen, 21, 3, 21, 3}}));
}

TEST(EditScript, NamesExchangedFrames)
{
    Frames near = Counting(0, 50);
    std::swap(near[20], near[21]);
    EXPECT_EQ(FaultsOf(near, 50),
              (Briefs{{id::kOrderSwapped, 20, 1, 20, 1}, {id::kOrderSwapped, 21, 1, 21, 1}}));
    Frames far = Counting(0, 50);
    std::swap(far[10], far[30]);
    EXPECT_EQ(FaultsOf(far, 50),
              (Briefs{{id::kOrderSwapped, 10, 1, 10, 1}, {id::kOrderSwapped, 30, 1, 30, 1}}));
    Frames first = Counting(0, 50);
    std::swap(first[0], first[1]);
    EXPECT_EQ(FaultsOf(first, 50), (Briefs{{id::kOrderSwapped, 0, 1, 0, 1}, {id::kOrderSwapped, 1, 1, 1, 1}}));
}

TEST(EditScript, NamesAFrameThatIsShownAgainElsewhere)
{
    EXPECT_EQ(FaultsOf(Counting(0, 30) + Frames{5} + Counting(30, 50), 50),
              (Briefs{{id::kOrderInserted, 30, 1, 5, 1}}));
}

TEST(EditScript, NamesForeignPicturesBetweenFramesAndUnreadableOnesInTheirPlace)
{
    EXPECT_EQ(FaultsOf(Counting(0, 30) + Frames{-1, -1} + Counting(30, 50), 50),
              (Briefs{{id::kOrderInserted, 30, 2, -1, 0}}));
    EXPECT_EQ(FaultsOf(Counting(0, 30) + Frames{-1, -1} + Counting(32, 50), 50),
              (Briefs{{id::kOrderUnreadable, 30, 2, 30, 2}}));
    EXPECT_EQ(FaultsOf(Frames{-1, -1, -1} + Counting(0, 50), 50), (Briefs{{id::kOrderInserted, 0, 3, -1, 0}}));
    EXPECT_EQ(FaultsOf(Frames{-1, -1} + Counting(2, 50), 50), (Briefs{{id::kOrderUnreadable, 0, 2, 0, 2}}));
    EXPECT_EQ(FaultsOf(Frames(50, -1), 50), (Briefs{{id::kOrderUnreadable, 0, 50, 0, 50}}));
}

TEST(EditScript, NamesReversedRuns)
{
    Frames backwards = Counting(0, 50);
    std::reverse(backwards.begin(), backwards.end());
    EXPECT_EQ(FaultsOf(backwards, 50), (Briefs{{id::kOrderReversed, 0, 50, 0, 50}}));
    Frames part = Counting(0, 50);
    std::reverse(part.begin() + 10, part.begin() + 20);
    EXPECT_EQ(FaultsOf(part, 50), (Briefs{{id::kOrderReversed, 10, 10, 10, 10}}));
}

TEST(EditScript, NamesPulldownByItsPattern)
{
    Frames shown;
    for (std::int64_t frame = 0; frame < 24; ++frame) {
        shown.insert(shown.end(), frame % 2 == 0 ? 3 : 2, frame);
    }
    const EditScript script = MakeEditScript(shown, 24);
    EXPECT_EQ(script.cadence, "frames are shown in the pattern 3:2");
    EXPECT_NEAR(script.cadenceRatio, 2.5, 1e-9);
    EXPECT_EQ(FaultsOf(shown, 24).size(), 1U);
}

TEST(EditScript, NamesConversionsOfTheRate)
{
    Frames faster; // 25 to 30 frames per second, nearest frame
    for (std::int64_t picture = 0; picture < 60; ++picture) {
        faster.push_back(picture * 25 / 30);
    }
    EXPECT_NEAR(MakeEditScript(faster, 50).cadenceRatio, 1.2, 1e-9);
    EXPECT_EQ(FaultsOf(faster, 50).size(), 1U);
    Frames slower; // 30 to 24
    for (std::int64_t picture = 0; picture < 48; ++picture) {
        slower.push_back(picture * 30 / 24);
    }
    EXPECT_EQ(MakeEditScript(slower, 60).cadence, "1 of every 5 frames are left out");
    EXPECT_EQ(FaultsOf(slower, 60).size(), 1U);
}

TEST(EditScript, NamesConversionsWhosePicturesBetweenShowNoFrame)
{
    // 24 to 48 frames per second: between two frames stands a blend of both, and the last frame is held.
    Frames shown;
    for (std::int64_t frame = 0; frame < 30; ++frame) {
        shown.push_back(frame);
        shown.push_back(frame < 29 ? -1 : 29);
    }
    const EditScript script = MakeEditScript(shown, 30, 0.5);
    EXPECT_NEAR(script.cadenceRatio, 2, 1e-9);
    EXPECT_NE(script.cadence.find("29 are of no single frame"), std::string::npos) << script.cadence;
    EXPECT_EQ(FaultsOf(shown, 30, 0.5), (Briefs{{id::kOrderCadence, 0, 60, 0, 30}}));
    // At the clip's own rate the same pictures have been put in.
    EXPECT_EQ(std::get<0>(FaultsOf(shown, 30).front()), id::kOrderInserted);
}

TEST(EditScript, NamesConversionsTooShortForTheirPattern)
{
    // 24 to 25: each 24th frame twice, so that 30 frames repeat one or two.
    Frames shown;
    for (std::int64_t picture = 0; picture < 31; ++picture) {
        shown.push_back(picture * 24 / 25);
    }
    EXPECT_EQ(FaultsOf(shown, 30, 24.0 / 25), (Briefs{{id::kOrderCadence, 0, 31, 0, 29}}));
    // By the nearest frame, one is repeated.
    EXPECT_EQ(FaultsOf(Counting(0, 12) + Counting(11, 30), 30, 24.0 / 25),
              (Briefs{{id::kOrderCadence, 0, 31, 0, 30}}));
    // The same frames, each once, at the other rate.
    EXPECT_TRUE(FaultsOf(Counting(0, 30), 30, 24.0 / 25).empty());
}

TEST(EditScript, ThreeSingleLossesAreNoPattern)
{
    EXPECT_EQ(FaultsOf(Counting(0, 3) + Counting(4, 17) + Counting(18, 30) + Counting(31, 50), 50).size(), 3U);
}

} // namespace
} // namespace tessel::verify::judge
