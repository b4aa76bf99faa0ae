// The three process-wide suite handles. One test, because what it looks at happens once in a process.
#include <ImporterTessel/host/FrameSuites.h>

#include <gtest/gtest.h>
#include <support/ForeignHost.h>

#include <string_view>

using ImporterTessel::AcquireFrameSuites;
using ImporterTessel::FrameSuites;
using testsupport::ForeignHost;

namespace {

const ForeignHost::SuiteName kCreator{"Kestrel Vimo Creator 2 Suite", 4};
const ForeignHost::SuiteName kFrame{"Kestrel Vimo Suite", 1};
const ForeignHost::SuiteName kFormat{"Kestrel Pixel Format Suite", 1};

TEST(FrameSuites, AreKeptForGoodOnceAllThreeWereGotAndNotBefore)
{
    EXPECT_EQ(AcquireFrameSuites(nullptr), nullptr) << "no parameters";
    {
        ForeignHost host;
        host.utility.getSuiteAccess = []() -> ksSuiteAccess* { return nullptr; };
        EXPECT_EQ(AcquireFrameSuites(&host.stdParms), nullptr) << "no suite access";
        host.utility.getSuiteAccess = nullptr;
        EXPECT_EQ(AcquireFrameSuites(&host.stdParms), nullptr) << "no way to the suite access";
        host.services.utility = nullptr;
        EXPECT_EQ(AcquireFrameSuites(&host.stdParms), nullptr) << "no utility functions";
        host.stdParms.services = nullptr;
        EXPECT_EQ(AcquireFrameSuites(&host.stdParms), nullptr) << "no service tables";
    }
    for (const ForeignHost::SuiteName& missing : {kCreator, kFrame, kFormat}) {
        ForeignHost host;
        host.suites[missing] = nullptr;
        EXPECT_EQ(AcquireFrameSuites(&host.stdParms), nullptr) << "null for " << missing.first;
        host.RemoveSuite(missing.first);
        EXPECT_EQ(AcquireFrameSuites(&host.stdParms), nullptr) << "without " << missing.first;
    }

    const ksFrameCreatorSuite4 creator{}, otherCreator{};
    const ksFrameSuite1 frame{}, otherFrame{};
    const int format = 0;
    ForeignHost host;
    host.suites = {{kCreator, &creator}, {kFrame, &frame}, {kFormat, &format}};
    host.asked.clear();
    const FrameSuites* suites = AcquireFrameSuites(&host.stdParms);
    ASSERT_NE(suites, nullptr);
    EXPECT_EQ(host.asked, (decltype(host.asked){kCreator, kFrame, kFormat})) << "in this order";
    EXPECT_EQ(suites->creator, &creator);
    EXPECT_EQ(suites->frame, &frame);
    EXPECT_EQ(suites->pixelFormat, &format);

    host.suites = {{kCreator, &otherCreator}, {kFrame, &otherFrame}, {kFormat, &format}};
    host.asked.clear();
    for (const ksStdParms* later :
         {static_cast<const ksStdParms*>(&host.stdParms), static_cast<const ksStdParms*>(nullptr)}) {
        const FrameSuites* again = AcquireFrameSuites(later);
        ASSERT_NE(again, nullptr);
        EXPECT_EQ(again->creator, &creator) << "a second host's tables are not seen";
        EXPECT_EQ(again->frame, &frame);
    }
    EXPECT_TRUE(host.asked.empty()) << "no suite is asked for again";
}

} // namespace
