#include <tessel/damage/catalogue/Fault.h>
#include <tessel/verify/catalogue/Names.h>

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace tessel::damage {
namespace {

document::ClipFacts SomeClip()
{
    document::ClipFacts facts;
    facts.width = 320;
    facts.height = 180;
    facts.timeScale = 25;
    facts.sampleSize = 1;
    facts.frameCount = 100;
    facts.sampleRate = 48000;
    facts.channelCount = 2;
    return facts;
}

std::string Refusal(const std::string& fault, const document::ClipFacts& facts = SomeClip())
{
    try {
        DamagePlan plan(facts, {0, 100});
        AddFault(plan, fault);
    } catch (const FaultError& error) {
        return error.what();
    }
    return {};
}

TEST(FaultCatalogue, HasAFaultForEveryNameThatIsNoMeasure)
{
    std::set<std::string_view> names;
    for (const Fault& fault : AllFaults()) {
        EXPECT_TRUE(names.insert(fault.name).second) << fault.name << " stands there twice";
    }
    for (const std::string_view name : verify::id::kAll) {
        const bool isFault = !name.starts_with("fidelity.") && name != "signal.other";
        EXPECT_EQ(names.contains(name), isFault) << name;
    }
}

TEST(FaultCatalogue, EveryFaultCanBeHadWithoutAValue)
{
    for (const Fault& fault : AllFaults()) {
        document::ClipFacts facts = SomeClip();
        const bool isOfFields = fault.name.starts_with("fields.") && fault.name != "fields.interlaced";
        facts.fieldType = isOfFields ? 1 : 0;
        facts.channelCount = fault.name == "audio.upmix" ? 1 : 2;
        EXPECT_EQ(Refusal(std::string(fault.name), facts), "") << fault.name;
    }
}

TEST(FaultCatalogue, WrongValuesAreRefusedInOneLineThatSaysWhatWouldBeRight)
{
    EXPECT_EQ(Refusal("bogus"), "--fault bogus: no such fault; tessel damage --list shows them");
    EXPECT_EQ(Refusal("order.mising=3"), "--fault order.mising=3: no such fault; tessel damage --list shows "
                                         "them; did you mean 'order.missing'?");
    EXPECT_EQ(Refusal("color.gain=much"), "--fault color.gain=much: 'much' is no number; the value is FACTOR");
    EXPECT_EQ(Refusal("color.gain=0.5:2"), "--fault color.gain=0.5:2: '2' is too much; the value is FACTOR");
    EXPECT_EQ(Refusal("order.missing=100"),
              "--fault order.missing=100: 100 is not within 0 to 99; the value is FRAME");
    EXPECT_EQ(
        Refusal("color.matrix=bt601"),
        "--fault color.matrix=bt601: 'bt601' is not one of 601, 709, 2020, 240; the value is 601|709|2020|240");
    EXPECT_EQ(Refusal("fields.swapped"),
              "--fault fields.swapped: the clip is progressive: only interlaced clips have fields");
}

TEST(FaultCatalogue, TheMiddleFrameIsTakenWhereNoneIsNamed)
{
    DamagePlan plan(SomeClip(), {10, 20});
    AddFault(plan, "order.missing");
    ASSERT_EQ(plan.order.Pictures().size(), 19U);
    EXPECT_EQ(plan.truths[0].frames->first, 20);
    EXPECT_EQ(plan.order.Pictures()[10].frame, 21);
}

TEST(FaultCatalogue, AFilmCadenceKeepsTheDuration)
{
    DamagePlan plan(SomeClip(), {0, 100});
    AddFault(plan, "order.cadence=3:2");
    EXPECT_EQ(plan.order.Pictures().size(), 250U);
    EXPECT_EQ(plan.described.timeScale, 125);
    EXPECT_EQ(plan.described.sampleSize, 2); // 62.5 pictures a second
}

} // namespace
} // namespace tessel::damage
