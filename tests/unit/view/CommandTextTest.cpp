#include <tessel/view/model/CommandText.h>

#include <gtest/gtest.h>

namespace tessel::view {
namespace {

TEST(CommandText, PlainNamesStayAsTheyAre)
{
    EXPECT_EQ(ViewCommand({"clips/a.tessel"}, "", 112), "tessel view clips/a.tessel --frame 112");
    EXPECT_EQ(ViewCommand({"a.tessel", "b.tessel"}, "x.mov", 0),
              "tessel view a.tessel b.tessel --against x.mov --frame 0");
}

TEST(CommandText, APluginThatWasNamedIsNamedAgain)
{
    EXPECT_EQ(ViewCommand({"a.tessel"}, "", 3, "/opt/my plugins"),
              "tessel view a.tessel --frame 3 --plugin '/opt/my plugins'");
}

TEST(CommandText, AShellReadsTheNamesAsTheyWere)
{
    EXPECT_EQ(ShellWord("my clip.tessel"), "'my clip.tessel'");
    EXPECT_EQ(ShellWord("it's.tessel"), "'it'\\''s.tessel'");
    EXPECT_EQ(ShellWord("$(rm)"), "'$(rm)'");
    EXPECT_EQ(ShellWord(""), "''");
    EXPECT_EQ(ViewCommand({"-v.tessel"}, "", 1), "tessel view ./-v.tessel --frame 1");
}

} // namespace
} // namespace tessel::view
