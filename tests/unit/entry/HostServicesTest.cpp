#include <ImporterTessel/host/HostServices.h>

#include <gtest/gtest.h>
#include <support/ForeignHost.h>

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
    testsupport::ForeignHost host;
    EXPECT_EQ(AcquireSuite<ksLegacySuite1>(&host.stdParms, kLegacySuiteName, 1), &host.legacy1);
    EXPECT_EQ(AcquireSuite<ksLegacySuite2>(&host.stdParms, kLegacySuiteName, 2), &host.legacy2);
    EXPECT_EQ(AcquireSuite(&host.stdParms, "Another Suite", 2), nullptr);
    const std::vector<std::pair<std::string_view, std::int32_t>> asked{
        {"Kestrel Legacy Suite", 1}, {"Kestrel Legacy Suite", 2}, {"Another Suite", 2}};
    EXPECT_EQ(host.asked, asked);
}

TEST(HostServices, EveryStepOnTheWayToASuiteMayBeMissing)
{
    const auto suiteOf = [](const testsupport::ForeignHost& host) {
        return AcquireSuite(&host.stdParms, kLegacySuiteName, 2);
    };
    EXPECT_EQ(AcquireSuite(nullptr, kLegacySuiteName, 2), nullptr);
    {
        testsupport::ForeignHost host;
        host.stdParms.services = nullptr;
        EXPECT_EQ(suiteOf(host), nullptr);
    }
    {
        testsupport::ForeignHost host;
        host.services.utility = nullptr;
        EXPECT_EQ(suiteOf(host), nullptr);
    }
    {
        testsupport::ForeignHost host;
        host.utility.getSuiteAccess = nullptr;
        EXPECT_EQ(suiteOf(host), nullptr);
    }
    {
        testsupport::ForeignHost host;
        host.utility.getSuiteAccess = []() -> ksSuiteAccess* { return nullptr; };
        EXPECT_EQ(suiteOf(host), nullptr);
    }
    {
        testsupport::ForeignHost host;
        host.access.acquireSuite = nullptr;
        EXPECT_EQ(suiteOf(host), nullptr);
    }
    {
        testsupport::ForeignHost host;
        host.RemoveSuite(kLegacySuiteName);
        EXPECT_EQ(suiteOf(host), nullptr);
    }
}

TEST(HostServices, SuiteIsMissingWhereTheHostSaysSoWhateverItStored)
{
    testsupport::ForeignHost host;
    host.access.acquireSuite = [](const char*, std::int32_t, const void** suite) {
        *suite = suite;
        return -5;
    };
    EXPECT_EQ(AcquireSuite(&host.stdParms, kLegacySuiteName, 2), nullptr);
}

TEST(HostServices, SuiteIsMissingWhereTheHostIsContentButStoresNothing)
{
    testsupport::ForeignHost host;
    host.access.acquireSuite = [](const char*, std::int32_t, const void**) { return 0; };
    EXPECT_EQ(AcquireSuite(&host.stdParms, kLegacySuiteName, 2), nullptr);
}

TEST(HostServices, WhatASuiteThrowsIsTheCallersToHandle)
{
    testsupport::ForeignHost host;
    host.access.acquireSuite = [](const char*, std::int32_t, const void**) -> std::int32_t {
        throw std::runtime_error("why");
    };
    EXPECT_THROW(static_cast<void>(AcquireSuite(&host.stdParms, kLegacySuiteName, 2)), std::runtime_error);
}

TEST(HostServices, BlocksComeFromTheHost)
{
    testsupport::ForeignHost host;
    void* const block = AllocateHostBlock(&host.stdParms, 24);
    EXPECT_NE(block, nullptr);
    EXPECT_EQ(host.blocks, std::vector<std::uint32_t>{24});
}

TEST(HostServices, MissingAllocatorIsABadAlloc)
{
    EXPECT_THROW(static_cast<void>(AllocateHostBlock(nullptr, 24)), std::bad_alloc);
    testsupport::ForeignHost host;
    host.behaviour.allocatorFails = true;
    EXPECT_THROW(static_cast<void>(AllocateHostBlock(&host.stdParms, 24)), std::bad_alloc);
    host.memory.newBlock = nullptr;
    EXPECT_THROW(static_cast<void>(AllocateHostBlock(&host.stdParms, 24)), std::bad_alloc);
    host.services.memory = nullptr;
    EXPECT_THROW(static_cast<void>(AllocateHostBlock(&host.stdParms, 24)), std::bad_alloc);
    host.stdParms.services = nullptr;
    EXPECT_THROW(static_cast<void>(AllocateHostBlock(&host.stdParms, 24)), std::bad_alloc);
}
