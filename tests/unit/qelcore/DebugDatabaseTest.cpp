#include <kestrel/qelcore/debug/Assert.h>
#include <kestrel/qelcore/debug/DebugDatabase.h>
#include <kestrel/qelcore/logging/Log.h>

#include <gtest/gtest.h>
#include <support/ScopedVariable.h>
#include <support/TemporaryFolder.h>

#include <string>
#include <thread>
#include <vector>

namespace {

using namespace qelcore;
using debug::DebugDatabase;
using test::ScopedVariable;
using test::WriteFile;

class DebugDatabaseFile : public ::testing::Test {
protected:
    std::string Entry(std::string_view key)
    {
        messages.clear();
        const logging::ScopedListener listener(
            [this](const logging::Message& message) { messages.push_back(message.text); });
        return DebugDatabase::Instance().GetEntry(key, "default");
    }

    test::TemporaryFolder folder;
    std::filesystem::path file = folder / "database.json";
    ScopedVariable variable{"KESTREL_DEBUG_DATABASE", file.c_str()};
    std::vector<std::string> messages;
};

TEST_F(DebugDatabaseFile, GivesTheTextOfAKey)
{
    WriteFile(file, R"({"ML.LoadTestingPluginsAtStartup": "true", "a": ""})");
    EXPECT_EQ(Entry("ML.LoadTestingPluginsAtStartup"), "true");
    EXPECT_EQ(Entry("a"), "");
    EXPECT_EQ(Entry("b"), "default");
    EXPECT_TRUE(messages.empty());
}

TEST_F(DebugDatabaseFile, IsReadAtEachQuestion)
{
    EXPECT_EQ(Entry("a"), "default");
    WriteFile(file, R"({"a": "1"})");
    EXPECT_EQ(Entry("a"), "1");
    WriteFile(file, R"({"a": "2"})");
    EXPECT_EQ(Entry("a"), "2");
}

TEST_F(DebugDatabaseFile, ValueThatIsNoTextCountsAsAbsent)
{
    for (const char* value : {"true", "1", "null", "{}", "[\"true\"]"}) {
        WriteFile(file, std::string(R"({"a": )") + value + "}");
        EXPECT_EQ(Entry("a"), "default") << value;
    }
}

TEST_F(DebugDatabaseFile, AbsentFileIsEmptyWithoutAWord)
{
    EXPECT_EQ(Entry("a"), "default");
    EXPECT_TRUE(messages.empty());
}

TEST_F(DebugDatabaseFile, BrokenFileIsEmptyAndLogged)
{
    for (const char* text : {"", "{\"a\": \"1\"", "[\"a\"]", "\"a\""}) {
        WriteFile(file, text);
        EXPECT_EQ(Entry("a"), "default") << text;
        ASSERT_EQ(messages.size(), 1U) << text;
        EXPECT_NE(messages[0].find(file.string()), std::string::npos) << messages[0];
    }
}

TEST_F(DebugDatabaseFile, FolderInItsPlaceIsEmptyAndLogged)
{
    std::filesystem::create_directory(file);
    EXPECT_EQ(Entry("a"), "default");
    EXPECT_EQ(messages.size(), 1U);
}

TEST_F(DebugDatabaseFile, FileWhoseReadingFailsIsEmptyAndLogged)
{
    // An ordinary file by its type, of which nothing can be read: page 0 of a process is never mapped.
    std::filesystem::create_symlink("/proc/self/mem", file);
    EXPECT_EQ(Entry("a"), "default");
    EXPECT_EQ(messages.size(), 1U);
}

TEST_F(DebugDatabaseFile, OverridesWinOnTheirOwnThreadUntilTheyEnd)
{
    WriteFile(file, R"({"a": "file"})");
    {
        const debug::ScopedOverride first("a", "first");
        const debug::ScopedOverride other("b", "other");
        {
            const debug::ScopedOverride newest("a", "newest");
            EXPECT_EQ(Entry("a"), "newest");
        }
        EXPECT_EQ(Entry("a"), "first");
        EXPECT_EQ(Entry("b"), "other");
        std::string elsewhere;
        std::thread([&] { elsewhere = Entry("a"); }).join();
        EXPECT_EQ(elsewhere, "file");
    }
    EXPECT_EQ(Entry("a"), "file");
}

TEST(DebugDatabasePlace, IsTheConfigurationFolderWithoutTheVariable)
{
    const test::TemporaryFolder folder;
    const ScopedVariable none("KESTREL_DEBUG_DATABASE", nullptr);
    const auto write = [&](const std::filesystem::path& configuration, std::string_view text) {
        std::filesystem::create_directories(configuration / "kestrel");
        WriteFile(configuration / "kestrel/debug-database.json", "{\"a\": \"" + std::string(text) + "\"}");
    };
    write(folder / "configuration", "configuration folder");
    write(folder / "home/.config", "home folder");
    const DebugDatabase& database = DebugDatabase::Instance();
    const ScopedVariable home("HOME", (folder / "home").c_str());
    {
        const ScopedVariable configuration("XDG_CONFIG_HOME", (folder / "configuration").c_str());
        EXPECT_EQ(database.GetEntry("a", ""), "configuration folder");
        const ScopedVariable empty("KESTREL_DEBUG_DATABASE", "");
        EXPECT_EQ(database.GetEntry("a", ""), "configuration folder");
    }
    for (const char* const unusable : {static_cast<const char*>(nullptr), ""}) {
        const ScopedVariable configuration("XDG_CONFIG_HOME", unusable);
        EXPECT_EQ(database.GetEntry("a", ""), "home folder");
        const ScopedVariable homeless("HOME", nullptr);
        EXPECT_EQ(database.GetEntry("a", "none"), "none");
    }
}

TEST(SimpleAssert, LogsTheMessageAndAsksForABreakOnlyWhenTold)
{
    std::vector<logging::Message> messages;
    const logging::ScopedListener listener(
        [&](const logging::Message& message) { messages.push_back(message); });
    const auto report = [] {
        return debug::DoSimpleAssert("Folder\\File", 315, "Class::Function", "false", "It broke");
    };
    {
        const ScopedVariable absent("KESTREL_BREAK_ON_ASSERT", nullptr);
        EXPECT_FALSE(report());
        const ScopedVariable other("KESTREL_BREAK_ON_ASSERT", "1");
        EXPECT_FALSE(report());
        const ScopedVariable set("KESTREL_BREAK_ON_ASSERT", "true");
        EXPECT_TRUE(report());
    }
    ASSERT_EQ(messages.size(), 3U);
    EXPECT_EQ(messages[0].context, "Class::Function");
    EXPECT_EQ(messages[0].text, "It broke [assertion \"false\", Folder\\File, line 315]");
}

TEST(SimpleAssert, FilesAReportUnderTheCategoryThatItsMessageBeginsWith)
{
    const struct {
        const char* message;
        const char* context;
    } kRows[] = {{"plugin.Module  it broke", "plugin.Module"},
                 {"<plugin.Module> it broke", "plugin.Module"},
                 {"a.b.c2 x", "a.b.c2"},
                 {"It broke", "Class::Function"},
                 {"plugin.Module", "Class::Function"},
                 {"Broken. Sorry", "Class::Function"},
                 {"...  x", "Class::Function"},
                 {"<plugin.Module it broke", "Class::Function"},
                 {"a/b.c x", "Class::Function"},
                 {" plugin.Module x", "Class::Function"},
                 {"<> x", "Class::Function"},
                 {"", "Class::Function"}};
    for (const auto& row : kRows) {
        std::vector<logging::Message> messages;
        const logging::ScopedListener listener(
            [&](const logging::Message& message) { messages.push_back(message); });
        static_cast<void>(debug::DoSimpleAssert("File", 1, "Class::Function", "false", row.message));
        ASSERT_EQ(messages.size(), 1U);
        EXPECT_EQ(messages[0].context, row.context) << row.message;
        EXPECT_EQ(messages[0].text.find(row.message), 0U) << "the message stays whole";
    }
}

} // namespace
