#include <tessel/verify/report/Findings.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace tessel::verify {
namespace {

Report Concluded(const Findings& findings, const Findings::Choice& choice = {})
{
    Report report;
    findings.Conclude(choice, report);
    return report;
}

TEST(Findings, FaultOnlyBeyondToleranceAndUncertainty)
{
    // color.offset has a tolerance of 1 code in lossless codecs.
    const struct {
        double found;
        double uncertainty;
        Verdict verdict;
    } kCases[] = {{0.0, 0.5, Verdict::AsExpected},    {0.5, 0.5, Verdict::AsExpected},
                  {0.75, 0.5, Verdict::Undecided},    {1.5, 0.5, Verdict::Undecided},
                  {1.6, 0.5, Verdict::NotAsExpected}, {-1.6, 0.5, Verdict::NotAsExpected}};
    for (const auto& [found, uncertainty, verdict] : kCases) {
        Findings findings{Tolerances{}};
        static_cast<void>(findings.Judge(id::kColorOffset, {0, found, uncertainty}, "moved"));
        EXPECT_EQ(Concluded(findings).verdict, verdict) << found;
    }
}

TEST(Findings, ToleranceGoesByTheCodecClassAndByWhatAPersonSays)
{
    Tolerances tolerances;
    tolerances.picture = CodecClass::Delivery;
    EXPECT_EQ(tolerances.Of(id::kColorOffset), 2.5);
    EXPECT_EQ(tolerances.Of(id::kAudioGain), 0.05); // the sound is lossless
    tolerances.chosen.emplace("color.offset", 7);
    EXPECT_EQ(tolerances.Of(id::kColorOffset), 7);
}

TEST(Findings, WhatFollowsFromAFaultStandsInsideIt)
{
    Findings findings{Tolerances{}};
    findings.Fault(id::kFidelityExact, "not exact");
    findings.Fault(id::kColorRange, "squeezed");
    const Report report = Concluded(findings);
    ASSERT_EQ(report.findings.size(), 1U);
    EXPECT_EQ(report.findings[0].id, id::kColorRange);
    ASSERT_EQ(report.findings[0].consequences.size(), 1U);
    EXPECT_EQ(report.findings[0].consequences[0].id, id::kFidelityExact);
}

TEST(Findings, AFaultWithoutItsCauseStandsAlone)
{
    Findings findings{Tolerances{}};
    findings.Fault(id::kFidelityExact, "not exact");
    findings.AsExpected(id::kColorRange);
    EXPECT_EQ(Concluded(findings).findings.size(), 1U);
}

TEST(Findings, WhatFollowsInThisMovieAloneStandsInsideItsCause)
{
    Findings findings{Tolerances{}};
    findings.Because(id::kOrderCadence, id::kFieldsInterlaced);
    findings.Fault(id::kFieldsInterlaced, "woven");
    EXPECT_EQ(Concluded(findings).findings.at(0).id, id::kFieldsInterlaced) << "no cause, no consequence";
    findings.Fault(id::kOrderCadence, "pulldown");
    const Report report = Concluded(findings);
    ASSERT_EQ(report.findings.size(), 1U);
    EXPECT_EQ(report.findings[0].id, id::kOrderCadence);
    EXPECT_EQ(report.findings[0].consequences.at(0).id, id::kFieldsInterlaced);
}

TEST(Findings, AnAcceptedFaultTakesItsConsequencesAlong)
{
    Findings findings{Tolerances{}};
    findings.Fault(id::kColorRange, "squeezed");
    findings.Fault(id::kFidelityExact, "not exact");
    findings.AsExpected(id::kContainerSize);
    const Report report = Concluded(findings, {{}, {"color.range"}});
    EXPECT_TRUE(report.findings.empty());
    EXPECT_EQ(report.verdict, Verdict::AsExpected);
    ASSERT_EQ(report.notes.size(), 1U);
    EXPECT_EQ(report.notes[0], "accepted: squeezed (color.range)");
}

TEST(Findings, OnlyNarrowsTheVerdict)
{
    Findings findings{Tolerances{}};
    findings.Fault(id::kColorRange, "squeezed");
    findings.AsExpected(id::kContainerSize);
    const Report report = Concluded(findings, {{"container.size"}, {}});
    EXPECT_EQ(report.verdict, Verdict::AsExpected);
    EXPECT_EQ(report.asExpected, std::vector<std::string>{"container.size"});
    EXPECT_TRUE(report.notChecked.empty());
}

TEST(Findings, WhatNobodyMentionedIsNotCheckedAndNeverPassed)
{
    Findings findings{Tolerances{}};
    findings.AsExpected(id::kContainerSize);
    findings.NotVisible(id::kColorHue);
    const Report report = Concluded(findings);
    EXPECT_EQ(report.asExpected.size(), 1U);
    ASSERT_EQ(report.notVisible.size(), 1U);
    EXPECT_EQ(report.notVisible[0].use, FindCheck(id::kColorHue)->use);
    EXPECT_EQ(report.notChecked.size(), id::kAll.size() - 2);
}

TEST(Findings, NothingComparedIsUndecided)
{
    EXPECT_EQ(Concluded(Findings{Tolerances{}}).verdict, Verdict::Undecided);
}

TEST(Findings, TheWorseOfTwoVerdictsStays)
{
    Findings findings{Tolerances{}};
    findings.Fault(id::kColorRange, "squeezed");
    findings.AsExpected(id::kColorRange);
    findings.Undecided(id::kColorRange, "hm");
    EXPECT_EQ(Concluded(findings).findings.at(0).message, "squeezed");
}

TEST(Report, SpansGatherNeighboursAndReadWell)
{
    const std::vector<Span> spans = SpansOf({3, 7, 8, 9, 12});
    EXPECT_EQ(spans, (std::vector<Span>{{3, 3}, {7, 9}, {12, 12}}));
    EXPECT_EQ(TextOf(spans), "3, 7 to 9 and 12");
    EXPECT_EQ(TextOf(SpansOf({200, 201})), "200 and 201");
    EXPECT_EQ(TextOf(SpansOf({1, 3, 5, 7, 9, 11, 13})), "1, 3, 5, 7, 9 and 2 more");
}

} // namespace
} // namespace tessel::verify
