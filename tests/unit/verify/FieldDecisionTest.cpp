#include <tessel/verify/judge/fields/FieldDecision.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <vector>

namespace tessel::verify::judge {
namespace {

constexpr int kRows = 60;
constexpr int kColumns = 40;

/// A bright ring on a slanted ramp, which grows from frame to frame; the lower field is darker by `apart`.
float SceneAt(int frame, int y, int x, double apart)
{
    const double distance = std::hypot(y - 30.0, x - 20.0) - (10 + 0.8 * frame);
    const double ring = std::abs(distance) < 2.5 ? 150 : 0;
    return static_cast<float>(30 + y * 0.5 + x * 0.3 + ring - (y % 2 == 0 ? 0 : apart));
}

using Scene = std::function<double(int y, int x)>;

RowSamples Samples(const Scene& scene)
{
    RowSamples samples;
    samples.columns = kColumns;
    for (int y = 0; y < kRows; ++y) {
        for (int x = 0; x < kColumns; ++x) {
            samples.values.push_back(static_cast<float>(scene(y, x)));
        }
    }
    return samples;
}

Scene Frame(int frame, double apart)
{
    return [=](int y, int x) { return SceneAt(frame, y, x, apart); };
}

/// What is done to frame `n`, picture by picture.
using Fault = std::function<Scene(int n)>;

FieldDecision DecisionOn(const Fault& fault, double apart, double noise = 0, double movedDown = 0)
{
    std::mt19937 random(7); // NOLINT: the same noise each time
    std::normal_distribution<double> spread(0, noise > 0 ? noise : 1);
    std::vector<FieldEvidence> evidence;
    for (int n = 4; n < 8; ++n) {
        const RowSamples last = Samples(Frame(n - 1, apart));
        const RowSamples now = Samples(Frame(n, apart));
        const RowSamples next = Samples(Frame(n + 1, apart));
        RowSamples found = Samples(fault(n));
        for (float& value : found.values) {
            value += noise > 0 ? static_cast<float>(spread(random)) : 0.0F;
        }
        evidence.push_back({n, CompareFields({last, now, next, movedDown}, found)});
    }
    return Decide(evidence);
}

/// Twice: for fields of two colours, and for a frame whose fields are of one picture.
class FieldFaultsTold : public ::testing::TestWithParam<double> {
protected:
    [[nodiscard]] double Apart() const { return GetParam(); }
    [[nodiscard]] double At(int frame, int y, int x) const { return SceneAt(frame, y, x, Apart()); }

    void Expect(FieldKind kind, const Fault& fault) const
    {
        for (const double noise : {0.0, 6.0}) {
            const FieldDecision decision = DecisionOn(fault, Apart(), noise);
            EXPECT_EQ(static_cast<int>(decision.best.kind), static_cast<int>(kind)) << "noise " << noise;
            EXPECT_TRUE(decision.isSure);
            EXPECT_FALSE(decision.isSecondAsLikely);
            EXPECT_NEAR(decision.residual, noise, noise == 0 ? 0.01 : 0.5);
            EXPECT_GT(decision.secondResidual, decision.residual);
        }
    }
};

TEST_P(FieldFaultsTold, NoneInTheClipsOwnRows)
{
    Expect(FieldKind::Right, [&](int n) { return Frame(n, Apart()); });
}

TEST_P(FieldFaultsTold, ExchangedFields)
{
    Expect(FieldKind::Swapped, [&](int n) { return [&, n](int y, int x) { return At(n, y ^ 1, x); }; });
}

TEST_P(FieldFaultsTold, PicturesThatAreOneRowTooLow)
{
    Expect(FieldKind::OneRowOff, [&](int n) { return [&, n](int y, int x) { return At(n, y - 1, x); }; });
}

TEST_P(FieldFaultsTold, FieldsOfTwoFrames)
{
    for (const int other : {-1, 1}) {
        for (const int late : {0, 1}) {
            Expect(FieldKind::Shifted, [&](int n) {
                return [&, n](int y, int x) { return At(y % 2 == late ? n + other : n, y, x); };
            });
        }
    }
}

TEST_P(FieldFaultsTold, FieldsThatAreMixed)
{
    Expect(FieldKind::Blended,
           [&](int n) { return [&, n](int y, int x) { return (At(n, y, x) + At(n, y ^ 1, x)) / 2; }; });
    Expect(FieldKind::Blended, [&](int n) {
        return [&, n](int y, int x) { return (At(n, y - 1, x) + 2 * At(n, y, x) + At(n, y + 1, x)) / 4; };
    });
}

TEST_P(FieldFaultsTold, OneFieldOnAllRows)
{
    for (const int kept : {0, 1}) {
        Expect(FieldKind::OneField,
               [&](int n) { return [&, n](int y, int x) { return At(n, y % 2 == kept ? y : y ^ 1, x); }; });
        Expect(FieldKind::OneField, [&](int n) {
            return [&, n](int y, int x) {
                return y % 2 == kept ? At(n, y, x) : (At(n, y - 1, x) + At(n, y + 1, x)) / 2;
            };
        });
    }
}

TEST_P(FieldFaultsTold, FieldsInTurns)
{
    for (const int first : {0, 1}) {
        Expect(FieldKind::Bobbed, [&](int n) {
            return [&, n](int y, int x) { return At(n, y % 2 == (n + first) % 2 ? y : y ^ 1, x); };
        });
    }
}

TEST_P(FieldFaultsTold, MixedFrames)
{
    Expect(FieldKind::FramesMixed,
           [&](int n) { return [&, n](int y, int x) { return (At(n, y, x) + At(n + 1, y, x)) / 2; }; });
}

INSTANTIATE_TEST_SUITE_P(OfTwoColorsAndOfOnePicture, FieldFaultsTold, ::testing::Values(60.0, 0.0),
                         [](const auto& info) { return info.param == 0 ? "OnePicture" : "TwoColors"; });

TEST(FieldDecision, HalfARowOfMovementIsNoFaultOfFields)
{
    const auto half = [](int n) {
        return [n](int y, int x) { return (SceneAt(n, y, x, 60) + SceneAt(n, y - 1, x, 60)) / 2.0; };
    };
    EXPECT_EQ(DecisionOn(half, 60, 2, 0.5).best.kind, FieldKind::Moved);
}

TEST(FieldDecision, WhatALossyCodecLeavesOutOfRowsIsNoBlend)
{
    // A ripple of one code from row to row on a ring that is moved: a codec drops the ripple, as a mixture of
    // rows would. The mixture differs from the right rows by one code, which is less than is asked for.
    const auto rippled = [](int n, double ripple) {
        return [n, ripple](int y, int x) { return 30.0 + n + x * 0.3 + (y % 2 == 0 ? ripple : -ripple); };
    };
    std::vector<FieldEvidence> evidence;
    for (int n = 4; n < 8; ++n) {
        const RowSamples last = Samples(rippled(n - 1, 0.5));
        const RowSamples now = Samples(rippled(n, 0.5));
        const RowSamples next = Samples(rippled(n + 1, 0.5));
        evidence.push_back({n, CompareFields({last, now, next, 0}, Samples(rippled(n, 0)))});
    }
    EXPECT_EQ(Decide(evidence).best.kind, FieldKind::Blended);
    const FieldDecision lossy = Decide(evidence, 1);
    EXPECT_EQ(lossy.best.kind, FieldKind::Right);
    EXPECT_FALSE(lossy.isVisible[static_cast<std::size_t>(FieldKind::Blended)]);
    EXPECT_TRUE(lossy.isVisible[static_cast<std::size_t>(FieldKind::Swapped)]);
}

TEST(FieldDecision, FieldsThatAreAlikeTellNothing)
{
    // A vertical ramp without edges, and nothing that changes: any weave is the frame itself.
    const Scene flat = [](int, int x) { return x * 3.0; };
    const RowSamples still = Samples(flat);
    const std::vector<FieldEvidence> evidence{{0, CompareFields({still, still, still, 0}, still)}};
    const FieldDecision decision = Decide(evidence);
    EXPECT_EQ(decision.best.kind, FieldKind::Right);
    for (const bool isVisible : decision.isVisible) {
        EXPECT_FALSE(isVisible);
    }
}

TEST(FieldDecision, ASinglePictureCannotShowFieldsInTurns)
{
    const RowSamples last = Samples(Frame(3, 60));
    const RowSamples now = Samples(Frame(4, 60));
    const std::vector<FieldEvidence> evidence{{0, CompareFields({last, now, now, 0}, now)}};
    const FieldDecision decision = Decide(evidence);
    EXPECT_FALSE(decision.isVisible[static_cast<std::size_t>(FieldKind::Bobbed)]);
    EXPECT_TRUE(decision.isVisible[static_cast<std::size_t>(FieldKind::OneField)]);
    EXPECT_TRUE(decision.isVisible[static_cast<std::size_t>(FieldKind::Swapped)]);
}

} // namespace
} // namespace tessel::verify::judge
