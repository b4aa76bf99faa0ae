// The three process-wide suite handles. One test, because what it looks at happens once in a process.
#include <ImporterTessel/video/FrameSuites.h>

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

using namespace ImporterTessel;

namespace {

struct SuiteShelf {
    std::map<std::string, const void*> suites;
    std::vector<std::string> asked;
};
SuiteShelf gShelf;

ksSuiteAccess gAccess{[](const char* name, std::int32_t version, const void** suite) -> std::int32_t {
    const std::string key = std::string(name) + " " + std::to_string(version);
    gShelf.asked.push_back(key);
    const auto found = gShelf.suites.find(key);
    if (found == gShelf.suites.end()) {
        return -1;
    }
    *suite = found->second;
    return 0;
}};

const std::string kCreator = "Kestrel Vimo Creator 2 Suite 4";
const std::string kFrame = "Kestrel Vimo Suite 1";
const std::string kFormat = "Kestrel Pixel Format Suite 1";

TEST(FrameSuites, AreKeptForGoodOnceAllThreeWereGotAndNotBefore)
{
    const ksUtilityFunctions utility{.slots0To6 = {}, .getSuiteAccess = [] { return &gAccess; }};
    const ksUtilityFunctions deaf{.slots0To6 = {}, .getSuiteAccess = nullptr};
    const ksUtilityFunctions empty{.slots0To6 = {},
                                   .getSuiteAccess = []() -> ksSuiteAccess* { return nullptr; }};
    ksServiceTables services{};
    ksStdParms parameters{};

    EXPECT_EQ(AcquireFrameSuites(nullptr), nullptr) << "no parameters";
    EXPECT_EQ(AcquireFrameSuites(&parameters), nullptr) << "no service tables";
    parameters.services = &services;
    EXPECT_EQ(AcquireFrameSuites(&parameters), nullptr) << "no utility functions";
    for (const ksUtilityFunctions* broken : {&deaf, &empty}) {
        services.utility = broken;
        EXPECT_EQ(AcquireFrameSuites(&parameters), nullptr) << "no suite access";
    }
    services.utility = &utility;

    const ksFrameCreatorSuite4 creator{}, otherCreator{};
    const ksFrameSuite1 frame{}, otherFrame{};
    const int format = 0;
    const std::map<std::string, const void*> all{{kCreator, &creator}, {kFrame, &frame}, {kFormat, &format}};
    for (const std::string& missing : {kCreator, kFrame, kFormat}) {
        gShelf.suites = all;
        gShelf.suites.erase(missing);
        EXPECT_EQ(AcquireFrameSuites(&parameters), nullptr) << "without " << missing;
        gShelf.suites[missing] = nullptr;
        EXPECT_EQ(AcquireFrameSuites(&parameters), nullptr) << "null for " << missing;
    }

    gShelf.suites = all;
    const FrameSuites* suites = AcquireFrameSuites(&parameters);
    ASSERT_NE(suites, nullptr);
    EXPECT_EQ(suites->creator, &creator);
    EXPECT_EQ(suites->frame, &frame);
    EXPECT_EQ(suites->pixelFormat, &format);

    gShelf = {.suites = {{kCreator, &otherCreator}, {kFrame, &otherFrame}, {kFormat, &format}}, .asked = {}};
    for (const ksStdParms* later :
         {static_cast<const ksStdParms*>(&parameters), static_cast<const ksStdParms*>(nullptr)}) {
        const FrameSuites* again = AcquireFrameSuites(later);
        ASSERT_NE(again, nullptr);
        EXPECT_EQ(again->creator, &creator) << "a second host's tables are not seen";
        EXPECT_EQ(again->frame, &frame);
    }
    EXPECT_TRUE(gShelf.asked.empty()) << "no suite is asked for again";
}

} // namespace
