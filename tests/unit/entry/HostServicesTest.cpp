#include "FakeHost.h"

#include <ImporterTessel/entry/HostServices.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

using ImporterTessel::AcquireSuite;
using ImporterTessel::AllocateHostBlock;

TEST(HostServices, SuiteIsAskedForByNameAndVersion)
{
    FakeHost host;
    EXPECT_EQ(AcquireSuite<ksLegacySuite1>(&host.mStdParms, kLegacySuiteName, 1), &host.mLegacy1);
    EXPECT_EQ(AcquireSuite<ksLegacySuite2>(&host.mStdParms, kLegacySuiteName, 2), &host.mLegacy2);
    EXPECT_EQ(AcquireSuite(&host.mStdParms, "Another Suite", 2), nullptr);
    const std::vector<std::pair<std::string_view, std::int32_t>> asked{
        {"Kestrel Legacy Suite", 1}, {"Kestrel Legacy Suite", 2}, {"Another Suite", 2}};
    EXPECT_EQ(host.mSuites, asked);
}

TEST(HostServices, EveryStepOnTheWayToASuiteMayBeMissing)
{
    const auto suiteOf = [](const FakeHost& host) {
        return AcquireSuite(&host.mStdParms, kLegacySuiteName, 2);
    };
    EXPECT_EQ(AcquireSuite(nullptr, kLegacySuiteName, 2), nullptr);
    {
        FakeHost host;
        host.mStdParms.services = nullptr;
        EXPECT_EQ(suiteOf(host), nullptr);
    }
    {
        FakeHost host;
        host.mServices.utility = nullptr;
        EXPECT_EQ(suiteOf(host), nullptr);
    }
    {
        FakeHost host;
        host.mUtility.getSuiteAccess = nullptr;
        EXPECT_EQ(suiteOf(host), nullptr);
    }
    {
        FakeHost host;
        host.mHasSuiteAccess = false;
        EXPECT_EQ(suiteOf(host), nullptr);
    }
    {
        FakeHost host;
        host.mAccess.acquireSuite = nullptr;
        EXPECT_EQ(suiteOf(host), nullptr);
    }
    {
        FakeHost host;
        host.mHasLegacySuite = false;
        EXPECT_EQ(suiteOf(host), nullptr);
    }
}

TEST(HostServices, SuiteIsMissingWhereTheHostSaysSoWhateverItStored)
{
    FakeHost host;
    host.mAccess.acquireSuite = [](const char*, std::int32_t, const void** suite) {
        *suite = suite;
        return -5;
    };
    EXPECT_EQ(AcquireSuite(&host.mStdParms, kLegacySuiteName, 2), nullptr);
}

TEST(HostServices, SuiteIsMissingWhereTheHostIsContentButStoresNothing)
{
    FakeHost host;
    host.mAccess.acquireSuite = [](const char*, std::int32_t, const void**) { return 0; };
    EXPECT_EQ(AcquireSuite(&host.mStdParms, kLegacySuiteName, 2), nullptr);
}

TEST(HostServices, WhatASuiteThrowsIsTheCallersToHandle)
{
    FakeHost host;
    host.mAccess.acquireSuite = [](const char*, std::int32_t, const void**) -> std::int32_t {
        throw std::runtime_error("why");
    };
    EXPECT_THROW(static_cast<void>(AcquireSuite(&host.mStdParms, kLegacySuiteName, 2)), std::runtime_error);
}

TEST(HostServices, BlocksComeFromTheHost)
{
    FakeHost host;
    void* const block = AllocateHostBlock(&host.mStdParms, 24);
    EXPECT_NE(block, nullptr);
    EXPECT_EQ(host.mBlocks, std::vector<std::uint32_t>{24});
    std::free(block);
}

TEST(HostServices, MissingAllocatorIsABadAlloc)
{
    EXPECT_THROW(static_cast<void>(AllocateHostBlock(nullptr, 24)), std::bad_alloc);
    FakeHost host;
    host.mHasMemory = false;
    EXPECT_THROW(static_cast<void>(AllocateHostBlock(&host.mStdParms, 24)), std::bad_alloc);
    host.mMemory.newBlock = nullptr;
    EXPECT_THROW(static_cast<void>(AllocateHostBlock(&host.mStdParms, 24)), std::bad_alloc);
    host.mServices.memory = nullptr;
    EXPECT_THROW(static_cast<void>(AllocateHostBlock(&host.mStdParms, 24)), std::bad_alloc);
    host.mStdParms.services = nullptr;
    EXPECT_THROW(static_cast<void>(AllocateHostBlock(&host.mStdParms, 24)), std::bad_alloc);
}
