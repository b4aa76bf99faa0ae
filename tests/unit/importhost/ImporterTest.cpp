#include "ClipFolder.h"

#include <kestrel/importabi/Selectors.h>
#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/Importer.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

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
        const std::string line = error.what();
        EXPECT_EQ(line.find('\n'), std::string::npos) << line;
        return line;
    }
}

void ExpectFailure(const std::filesystem::path& file, const std::string& says)
{
    const std::string line = LoadFailure(file);
    EXPECT_NE(line.find(says), std::string::npos) << line;
}

std::filesystem::path Wrong(const char* name)
{
    return std::filesystem::path(TEST_WRONG_PLUGINS) / (std::string(name) + ".so");
}

/// Sets a variable of the environment for one test.
class Variable {
public:
    Variable(const char* name, const std::string& value) : mName(name) { setenv(name, value.c_str(), 1); }
    ~Variable() { unsetenv(mName); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* mName;
};

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
    const importhosttests::ClipFolder folder;
    const char* key = "ML.LoadTestingPluginsAtStartup";
    const auto closed = folder.Write("closed.json", std::string("{\"") + key + "\": \"false\"}");
    const auto open = folder.Write("open.json", std::string("{\"") + key + "\": \"true\"}");
    {
        const Variable database("KESTREL_DEBUG_DATABASE", closed);
        EXPECT_EQ(LoadFailure(TEST_PLUGIN, TestingPlugins::Allowed), "");
        const std::string line = LoadFailure(TEST_PLUGIN, TestingPlugins::AsDebugDatabaseSays);
        EXPECT_NE(line.find("declined to start"), std::string::npos) << "opening once must not last: " << line;
        EXPECT_NE(line.find(key), std::string::npos) << line;
    }
    const Variable database("KESTREL_DEBUG_DATABASE", open);
    EXPECT_EQ(LoadFailure(TEST_PLUGIN, TestingPlugins::AsDebugDatabaseSays), "");
}

TEST(Importer, FilesThatAreNoPlugInAreRefused)
{
    const importhosttests::ClipFolder folder;
    ExpectFailure(folder.Path() / "gone.so", "gone.so: not a plug-in");
    ExpectFailure(folder.Write("text.so", "hello"), "text.so: not a plug-in");
    ExpectFailure(folder.Path(), "not a plug-in");
    ExpectFailure(Wrong("WrongNoResources"), "it has no resource .ksres.PIPL.16000");
}

TEST(Importer, PlugInsThatContradictThemselvesAreRefused)
{
    ExpectFailure(Wrong("WrongMatchName"), "match name \"TEST Importer\", its entry \"Somebody else\"");
    ExpectFailure(Wrong("WrongTwoCalls"), "called back 2 times");
    ExpectFailure(Wrong("WrongKind"), "not an importer plug-in");
    ExpectFailure(Wrong("WrongKindResource"), ".ksres.IMPT.1000 is not an importer's");
    ExpectFailure(Wrong("WrongNoEntry"), "does not export xImportEntry");
    ExpectFailure(Wrong("WrongStart"), "failed to start (result 5)");
    // The same library without its one mistake passes all of these and fails only later.
    ExpectFailure(Wrong("WrongNothing"), "opens no file type");
}

TEST(FindPlugin, TakesAFileOrItsFolder)
{
    const std::filesystem::path file = TEST_PLUGIN;
    EXPECT_EQ(importhost::FindPlugin(file), file);
    EXPECT_EQ(importhost::FindPlugin(file.parent_path()), file);
}

TEST(FindPlugin, TheOptionWinsOverTheVariableAndTheVariableOverTheHostsFolder)
{
    const std::filesystem::path file = TEST_PLUGIN;
    const importhosttests::ClipFolder folder;
    const auto other = folder.Write("ImporterTessel.so", "x");
    const Variable variable("KESTREL_PLUGIN_PATH", folder.Path());
    EXPECT_EQ(importhost::FindPlugin({}), other);
    EXPECT_EQ(importhost::FindPlugin(file), file);
}

TEST(FindPlugin, BesideTheHostsLibraryWhenNothingIsSaid)
{
    EXPECT_TRUE(std::filesystem::equivalent(importhost::FindPlugin({}), TEST_PLUGIN));
}

TEST(FindPlugin, APlaceWithoutAPlugInIsNamed)
{
    const importhosttests::ClipFolder folder;
    try {
        (void)importhost::FindPlugin(folder.Path());
        FAIL();
    } catch (const HostError& error) {
        EXPECT_NE(std::string(error.what()).find(folder.Path().string()), std::string::npos) << error.what();
    }
}

} // namespace
