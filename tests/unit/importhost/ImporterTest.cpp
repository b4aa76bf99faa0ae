#include "ClipFixture.h"

#include <kestrel/importabi/Selectors.h>
#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/Importer.h>
#include <kestrel/qelcore/debug/DebugDatabase.h>

#include <gtest/gtest.h>
#include <support/ScopedVariable.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace {

using importhost::HostError;
using importhost::Importer;
using importhost::TestingPlugins;

std::string LoadFailure(const std::filesystem::path& file, TestingPlugins testing = TestingPlugins::Allowed)
{
    try {
        (void)Importer::Load(file, testing);
        return {};
    } catch (const HostError& error) {
        std::string line = error.what();
        EXPECT_EQ(line.find('\n'), std::string::npos) << line;
        return line;
    }
}

void ExpectFailure(const std::filesystem::path& file, const std::string& says)
{
    const std::string line = LoadFailure(file);
    EXPECT_NE(line.find(says), std::string::npos) << line;
}

TEST(Importer, ThePlugInSaysWhatItIs)
{
    const auto importer = Importer::Load(TEST_PLUGIN, TestingPlugins::Allowed);
    EXPECT_EQ(importer->Identity().displayName, "Tessel Test Tool");
    EXPECT_EQ(importer->Identity().matchName, "ZOKE Tessel");
    EXPECT_EQ(importer->Identity().kind, "Importer");
    EXPECT_EQ(importer->Identity().kindCode, 0x494D5054U);
    ASSERT_EQ(importer->FileTypes().size(), 1U);
    EXPECT_EQ(importer->FileTypes()[0].displayName, "Tessel");
    EXPECT_EQ(importer->FileTypes()[0].extensions, std::vector<std::string>{"tessel"});
    EXPECT_EQ(importer->FileTypes()[0].code, 0x5453534CU);
}

TEST(Importer, RequestsReachThePlugIn)
{
    const auto importer = Importer::Load(TEST_PLUGIN, TestingPlugins::Allowed);
    EXPECT_EQ(importer->Request(28, nullptr, nullptr), 100);
    EXPECT_EQ(importer->Request(87, nullptr, nullptr), 3);
}

TEST(Importer, TheGateStaysAsTheDebugDatabaseSays)
{
    const testsupport::ClipFolder folder;
    const char* key = "ML.LoadTestingPluginsAtStartup";
    const auto closed = folder.Write("closed.json", std::string("{\"") + key + "\": \"false\"}");
    const auto open = folder.Write("open.json", std::string("{\"") + key + "\": \"true\"}");
    {
        const test::ScopedVariable database("KESTREL_DEBUG_DATABASE", closed.c_str());
        EXPECT_EQ(LoadFailure(TEST_PLUGIN, TestingPlugins::Allowed), "");
        const std::string line = LoadFailure(TEST_PLUGIN, TestingPlugins::AsDebugDatabaseSays);
        EXPECT_NE(line.find("declined to start"), std::string::npos) << "opening once must not last: " << line;
        EXPECT_NE(line.find(key), std::string::npos) << line;
    }
    const test::ScopedVariable database("KESTREL_DEBUG_DATABASE", open.c_str());
    EXPECT_EQ(LoadFailure(TEST_PLUGIN, TestingPlugins::AsDebugDatabaseSays), "");
}

TEST(Importer, FilesThatAreNoPlugInAreRefused)
{
    const testsupport::ClipFolder folder;
    ExpectFailure(folder.Path() / "gone.so", "gone.so: not a plug-in");
    ExpectFailure(folder.Write("text.so", "hello"),
                  "text.so: not a plug-in: is not a library of this platform");
    ExpectFailure(folder.Path(), "not a plug-in");
    ExpectFailure(importhosttests::TestImporter("WrongNoResources"), "it has no resource .ksres.PIPL.16000");
}

TEST(Importer, PlugInsThatContradictThemselvesAreRefused)
{
    ExpectFailure(importhosttests::TestImporter("WrongMatchName"),
                  "match name \"TEST Importer\", its entry \"Somebody else\"");
    ExpectFailure(importhosttests::TestImporter("WrongTwoCalls"), "called back 2 times");
    ExpectFailure(importhosttests::TestImporter("WrongKind"), "not an importer plug-in");
    ExpectFailure(importhosttests::TestImporter("WrongKindResource"), ".ksres.IMPT.1000 is not an importer's");
    ExpectFailure(importhosttests::TestImporter("WrongNoEntry"), "does not export xImportEntry");
    ExpectFailure(importhosttests::TestImporter("WrongStart"), "failed to start (result 5)");
    // Not for want of the debug setting, which this load overrides.
    const std::string declined = LoadFailure(importhosttests::TestImporter("WrongDeclining"));
    EXPECT_NE(declined.find("Test Importer declined to start (result 3)"), std::string::npos) << declined;
    EXPECT_EQ(declined.find("debug setting"), std::string::npos) << declined;
    // The same library without its one mistake passes all of these and fails only later.
    ExpectFailure(importhosttests::TestImporter("WrongNothing"), "opens no file type");
}

std::filesystem::path Find(const std::filesystem::path& place)
{
    return importhost::FindPlugin({.place = place, .placeSaidBy = "--place", .stem = "ImporterTessel"});
}

std::string FindFailure(const std::filesystem::path& place)
{
    try {
        return "found " + Find(place).string();
    } catch (const HostError& error) {
        return error.what();
    }
}

TEST(FindPlugin, TakesAFileOrItsFolder)
{
    const std::filesystem::path file = TEST_PLUGIN;
    EXPECT_EQ(Find(file), file);
    EXPECT_EQ(Find(file.parent_path()), file);
}

TEST(FindPlugin, TheOptionWinsOverTheVariableAndTheVariableOverTheHostsFolder)
{
    const std::filesystem::path file = TEST_PLUGIN;
    const testsupport::ClipFolder folder;
    const auto other = folder.Write("ImporterTessel.so", "x");
    const test::ScopedVariable variable("KESTREL_PLUGIN_PATH", folder.Path().c_str());
    EXPECT_EQ(Find({}), other);
    EXPECT_EQ(Find(file), file);
}

TEST(FindPlugin, BesideTheHostsLibraryWhenNothingIsSaid)
{
    EXPECT_TRUE(std::filesystem::equivalent(Find({}), TEST_PLUGIN));
}

TEST(FindPlugin, TheOneImporterInAFolderIsFoundByItsResources)
{
    const testsupport::ClipFolder folder;
    (void)folder.Write("libnothing.so", "x");
    const auto link = [&folder](const char* name) {
        const std::filesystem::path file = importhosttests::TestImporter(name);
        std::filesystem::create_symlink(file, folder.Path() / file.filename());
    };
    link("WrongNoResources");
    EXPECT_NE(FindFailure(folder.Path()).find("no importer plug-in there"), std::string::npos);
    link("PlainImporter");
    EXPECT_EQ(Find(folder.Path()), folder.Path() / "PlainImporter.so");
    link("WrongWidth");
    EXPECT_NE(FindFailure(folder.Path()).find("PlainImporter.so and WrongWidth.so"), std::string::npos);
}

TEST(FindPlugin, APlaceWithoutAPlugInIsNamedWithWhoSaidIt)
{
    const testsupport::ClipFolder folder;
    for (const auto& place : {folder.Path(), folder.Path() / "gone.so"}) {
        EXPECT_EQ(FindFailure(place), place.string() +
                                          ": no importer plug-in there (--place names an importer's "
                                          "file, or the folder that it is in)");
    }
}

TEST(Importer, OtherThreadsDoNotSeeThatALoadIsAllowed)
{
    const testsupport::ClipFolder folder;
    const test::ScopedVariable database("KESTREL_DEBUG_DATABASE", (folder.Path() / "absent.json").c_str());
    const std::filesystem::path file = importhosttests::TestImporter("StartsAlone"); // takes 1 ms to start
    std::atomic<bool> isDone = false;
    std::thread loader([&] {
        for (int load = 0; load < 20; ++load) {
            EXPECT_EQ(LoadFailure(file, TestingPlugins::Allowed), "");
        }
        isDone = true;
    });
    int seen = 0;
    while (!isDone) {
        const qelcore::debug::DebugDatabase& settings = qelcore::debug::DebugDatabase::Instance();
        seen += settings.GetEntry("ML.LoadTestingPluginsAtStartup", "").empty() ? 0 : 1;
    }
    loader.join();
    EXPECT_EQ(seen, 0);
}

TEST(Importer, StartsAndShutsDownOneAtATime)
{
    const std::filesystem::path file = importhosttests::TestImporter("StartsAlone");
    // Kept: the library remembers whether two have met.
    const auto kept = Importer::Load(file, TestingPlugins::Allowed);
    std::atomic<int> failed = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int load = 0; load < 10; ++load) {
                failed += LoadFailure(file).empty() ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failed, 0);
    EXPECT_EQ(LoadFailure(file), ""); // the last shut-down met no start either
}

} // namespace
