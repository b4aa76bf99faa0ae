#include <kestrel/brindle/StaticPlugins.h>

#include <gtest/gtest.h>

namespace {

using namespace BR;

void SomeEntry() {}

TEST(StaticPlugins, AreListedInOrderAndReplacedByName)
{
    StaticPluginEntries entries{};
    entries[0] = {&SomeEntry, "xImportEntry"};
    RegisterStaticPlugin(kStaticPluginTypeImporter, "First", {}, "Feb  6 2026", "15:23:34");
    RegisterStaticPlugin(kStaticPluginTypeImporter, "Second", {}, nullptr, nullptr);
    RegisterStaticPlugin(7, "First", entries, "Feb  7 2026", "00:00:00");

    const std::vector<StaticPlugin> plugins = RegisteredStaticPlugins();
    ASSERT_EQ(plugins.size(), 2U);
    EXPECT_EQ(plugins[0].name, "First");
    EXPECT_EQ(plugins[0].type, 7);
    EXPECT_EQ(plugins[0].buildDate, "Feb  7 2026");
    EXPECT_EQ(plugins[0].entries[0].function, &SomeEntry);
    EXPECT_STREQ(plugins[0].entries[0].name, "xImportEntry");
    EXPECT_EQ(plugins[0].entries[8].function, nullptr);
    EXPECT_EQ(plugins[1].name, "Second");
    EXPECT_EQ(plugins[1].buildDate, "");
}

} // namespace
