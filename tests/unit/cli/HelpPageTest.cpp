#include <tessel/cli/help/HelpPage.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <string>

namespace tessel::cli {
namespace {

/// Characters of the longest line.
std::size_t WidestLine(const std::string& page)
{
    std::istringstream lines(page);
    std::string line;
    std::size_t widest = 0;
    while (std::getline(lines, line)) {
        const auto characters = std::count_if(line.begin(), line.end(), [](char byte) {
            return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
        });
        widest = std::max(widest, static_cast<std::size_t>(characters));
    }
    return widest;
}

ProgramText Program()
{
    ProgramText program{
        .name = "tool", .summary = "Does things", .version = "1.2", .shared = {}, .commands = {}, .topics = {}};
    CommandText& command = program.commands.emplace_back();
    command.name = "make";
    command.summary = "Make a thing";
    command.positionals.push_back(
        {.names = {"IN"}, .text = "What to read", .isRequired = true, .takesSeveral = true});
    command.positionals.push_back({.names = {"MORE"}, .text = "Something else"});
    command.groups.push_back({"Output", {}});
    command.groups.back().options.push_back(
        {.names = {"-o", "--output"}, .value = "OUT", .text = "Where to", .isRequired = true});
    command.groups.back().options.push_back({.names = {"--kind"},
                                             .value = "WORD",
                                             .text = "Which kind of thing it becomes, of all that there are",
                                             .choices = {"first", "second"},
                                             .usual = "first"});
    command.groups.push_back({"Speed", {}});
    command.groups.back().options.push_back({.names = {"--fast"}, .text = "Hurry"});
    command.examples.push_back({"tool make a -o b", "The usual thing"});
    return program;
}

TEST(HelpPage, UsageNamesWhatIsRequiredAndBracketsTheRest)
{
    const ProgramText program = Program();
    EXPECT_EQ(UsageOf(program, program.commands.front()), "tool make [OPTIONS] IN... [MORE] -o OUT");
}

TEST(HelpPage, OptionsStandUnderTheirHeadingsAndExamplesAtTheEnd)
{
    const ProgramText program = Program();
    const std::string page = CommandPage(program, program.commands.front(), 80);
    const std::size_t output = page.find("\nOutput:\n  -o, --output OUT");
    const std::size_t speed = page.find("\nSpeed:\n  --fast");
    const std::size_t examples = page.find("\nExamples:\n  tool make a -o b\n      The usual thing\n");
    ASSERT_NE(output, std::string::npos) << page;
    ASSERT_NE(speed, std::string::npos) << page;
    ASSERT_NE(examples, std::string::npos) << page;
    EXPECT_LT(output, speed);
    EXPECT_LT(speed, examples);
    EXPECT_TRUE(page.ends_with("The usual thing\n"));
}

TEST(HelpPage, ChoicesAndTheUsualValueAreSaid)
{
    const ProgramText program = Program();
    EXPECT_NE(CommandPage(program, program.commands.front(), 110).find("first, second (usually first)"),
              std::string::npos);
}

TEST(HelpPage, NoLineIsWiderThanThePage)
{
    const ProgramText program = Program();
    for (std::size_t width = kNarrowestPage; width <= kWidestPage; ++width) {
        EXPECT_LE(WidestLine(CommandPage(program, program.commands.front(), width)), width);
        EXPECT_LE(WidestLine(ProgramPage(program, width)), width);
    }
}

TEST(HelpPage, WrappingCountsCharactersAndKeepsEveryWord)
{
    EXPECT_EQ(Wrapped("aa bb cc", 0, 5), "aa bb\ncc\n");
    EXPECT_EQ(Wrapped("\xC3\xA4\xC3\xA4 \xC3\xB6\xC3\xB6 cc", 0, 5), "\xC3\xA4\xC3\xA4 \xC3\xB6\xC3\xB6\ncc\n");
    EXPECT_EQ(Wrapped("aa bb", 2, 5), "  aa\n  bb\n");
    EXPECT_EQ(Wrapped("longword b", 0, 4), "longword\nb\n") << "a long word stays whole";
    EXPECT_EQ(Wrapped("a\n\nb", 0, 10), "a\n\nb\n");
    EXPECT_EQ(Wrapped("a b c d\n  a row   stays", 0, 20), "a b c d\n  a row   stays\n");
    EXPECT_EQ(Wrapped("", 3, 10), "");
}

TEST(HelpPage, ALongRowOfATableGoesOnBelowItsLastCell)
{
    EXPECT_EQ(Wrapped("  mov  aa, bb, cc, dd", 0, 16), "  mov  aa, bb,\n       cc, dd\n");
    EXPECT_EQ(Wrapped("     aa, bb, cc", 0, 12), "     aa, bb,\n     cc\n");
    EXPECT_EQ(Wrapped("  mov  aa, bb, cc", 2, 14), "    mov  aa,\n         bb,\n         cc\n");
    EXPECT_EQ(Wrapped("  a long name  aa bb", 0, 18), "  a long name  aa\n         bb\n") << "no narrow column";
}

} // namespace
} // namespace tessel::cli
