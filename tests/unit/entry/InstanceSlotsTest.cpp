#include "TestModule.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <stdexcept>

namespace {

class InstanceSlots : public testing::Test {
protected:
    void SetUp() override { TestModule::Reset(); }

    static TestModule::Script& Script() { return TestModule::TheScript(); }
    static void AnswerWith(std::int32_t result)
    {
        Script().onRequest = [result] { return result; };
    }

    std::int32_t Describe() { return TestModule::ImportEntry(37, &mStdParms, &mFile, &mInfo); }
    std::int32_t Open() { return TestModule::ImportEntry(39, &mStdParms, nullptr, &mOpen); }
    std::int32_t Create() { return TestModule::ImportEntry(81, &mStdParms, nullptr, &mInfo); }
    static std::int32_t Delete(ksInstance instance)
    {
        return TestModule::ImportEntry(9, nullptr, nullptr, instance);
    }

    ksStdParms mStdParms{};
    ksFileAccessRec mFile{};
    ksFileInfoRec mInfo{};
    ksOpenRec mOpen{};
};

/// The instance in a slot. The tests of a failing factory begin with an empty slot: where an instance is in it,
/// nothing is created.
TestModule* InSlot(ksInstance instance)
{
    return static_cast<TestModule*>(instance);
}

TEST_F(InstanceSlots, DescriptionKeepsTheInstanceThatItCreates)
{
    EXPECT_EQ(Describe(), 0);
    EXPECT_NE(mInfo.instance, nullptr);
    EXPECT_EQ(Script().stdParms, &mStdParms);
    EXPECT_EQ(Script().living, 1);
    EXPECT_EQ(Delete(mInfo.instance), 0);
    EXPECT_EQ(Script().living, 0);
}

TEST_F(InstanceSlots, DescriptionKeepsItsNewInstanceAlsoWhereItFails)
{
    AnswerWith(2);
    EXPECT_EQ(Describe(), 2);
    EXPECT_NE(mInfo.instance, nullptr);
    EXPECT_EQ(Delete(mInfo.instance), 0);
}

TEST_F(InstanceSlots, DescriptionUsesTheInstanceThatIsThere)
{
    const auto instance = std::make_unique<TestModule>();
    mInfo.instance = instance.get();
    for (const std::int32_t result : {0, 2, 5}) {
        AnswerWith(result);
        EXPECT_EQ(Describe(), result);
        EXPECT_EQ(InSlot(mInfo.instance), instance.get());
        EXPECT_EQ(Script().living, 1);
    }
}

TEST_F(InstanceSlots, DescriptionWithoutAnInstanceIs99AndLeavesNullInTheSlot)
{
    Script().factoryGivesNull = true;
    EXPECT_EQ(Describe(), 99);
    EXPECT_EQ(mInfo.instance, nullptr);
    EXPECT_EQ(mInfo.hasVideo, 0);
    EXPECT_EQ(Script().served, 0);
}

TEST_F(InstanceSlots, DescriptionThatThrowsKeepsNothing)
{
    Script().onRequest = []() -> std::int32_t { throw std::runtime_error("why"); };
    EXPECT_EQ(Describe(), 5);
    EXPECT_EQ(mInfo.instance, nullptr);
    EXPECT_EQ(Script().living, 0);
}

TEST_F(InstanceSlots, OpeningKeepsTheInstanceThatItCreates)
{
    EXPECT_EQ(Open(), 0);
    EXPECT_NE(mOpen.instance, nullptr);
    EXPECT_EQ(Delete(mOpen.instance), 0);
    EXPECT_EQ(Script().living, 0);
}

TEST_F(InstanceSlots, FailedOpeningDeletesTheInstanceThatItCreated)
{
    for (const std::int32_t result : {2, 5, -1}) {
        AnswerWith(result);
        EXPECT_EQ(Open(), result);
        EXPECT_EQ(mOpen.instance, nullptr);
        EXPECT_EQ(Script().living, 0);
    }
}

TEST_F(InstanceSlots, FailedOpeningKeepsTheInstanceThatWasThere)
{
    const auto instance = std::make_unique<TestModule>();
    mOpen.instance = instance.get();
    AnswerWith(2);
    EXPECT_EQ(Open(), 2);
    EXPECT_EQ(InSlot(mOpen.instance), instance.get());
    EXPECT_EQ(Script().living, 1);
}

TEST_F(InstanceSlots, OpeningThatThrowsKeepsNothingNewAndEverythingOld)
{
    Script().onRequest = []() -> std::int32_t { throw std::runtime_error("why"); };
    EXPECT_EQ(Open(), 5);
    EXPECT_EQ(mOpen.instance, nullptr);
    EXPECT_EQ(Script().living, 0);

    const auto instance = std::make_unique<TestModule>();
    mOpen.instance = instance.get();
    EXPECT_EQ(Open(), 5);
    EXPECT_EQ(InSlot(mOpen.instance), instance.get());
    EXPECT_EQ(Script().living, 1);
}

TEST_F(InstanceSlots, OpeningWithoutAnInstanceIs99AndLeavesNullInTheSlot)
{
    Script().factoryGivesNull = true;
    EXPECT_EQ(Open(), 99);
    EXPECT_EQ(mOpen.instance, nullptr);
    EXPECT_EQ(Script().served, 0);
}

TEST_F(InstanceSlots, CreationIsDeclinedWhetherItCreatesOrNot)
{
    EXPECT_EQ(Create(), 3);
    const ksInstance created = mInfo.instance;
    EXPECT_NE(created, nullptr);
    EXPECT_EQ(Script().living, 1);
    EXPECT_EQ(Create(), 3);
    EXPECT_EQ(mInfo.instance, created);
    EXPECT_EQ(Script().living, 1);
    EXPECT_EQ(Delete(created), 0);
    EXPECT_EQ(Script().living, 0);
}

TEST_F(InstanceSlots, FailedCreationIs99)
{
    Script().factoryGivesNull = true;
    EXPECT_EQ(Create(), 99);
    EXPECT_EQ(mInfo.instance, nullptr);
}

TEST_F(InstanceSlots, ClosingAFileKeepsTheInstance)
{
    EXPECT_EQ(Create(), 3);
    EXPECT_EQ(TestModule::ImportEntry(8, nullptr, nullptr, mInfo.instance), 0);
    EXPECT_EQ(Script().living, 1);
    EXPECT_EQ(Delete(mInfo.instance), 0);
    EXPECT_EQ(Script().living, 0);
}

TEST_F(InstanceSlots, CreationWritesNothingButItsSlot)
{
    std::memset(static_cast<void*>(&mInfo), 0xCC, sizeof mInfo);
    mInfo.instance = nullptr;
    ksFileInfoRec expected = mInfo;
    EXPECT_EQ(Create(), 3);
    expected.instance = mInfo.instance;
    EXPECT_EQ(std::memcmp(&mInfo, &expected, sizeof mInfo), 0);
    EXPECT_EQ(Delete(mInfo.instance), 0);
}

} // namespace
