#include "FakeToolkit.h"

#include <kestrel/qelcore/logging/Log.h>
#include <kestrel/qelcore/serialization/Json.h>
#include <kestrel/qelcore/text/Unicode.h>
#include <kestrel/qelui/controls/UI_Button.h>
#include <kestrel/qelui/controls/UI_Number.h>
#include <kestrel/qelui/controls/UI_Popup.h>
#include <kestrel/qelui/script/Script.h>
#include <kestrel/qelui/script/ScriptRunner.h>
#include <kestrel/qelui/script/ScriptedToolkit.h>

#include <gtest/gtest.h>
#include <support/TemporaryFolder.h>

#include <filesystem>
#include <memory>

namespace {

using namespace qelui;
using script::Command;
using script::ParseScript;
using script::ScriptError;

std::vector<Command> Commands(std::string_view text)
{
    auto parsed = ParseScript(text);
    if (const auto* const error = std::get_if<ScriptError>(&parsed)) {
        ADD_FAILURE() << "line " << error->line << ": " << error->text;
        return {};
    }
    return std::get<std::vector<Command>>(std::move(parsed));
}

TEST(Script, SkipsBlankLinesAndComments)
{
    const auto commands = Commands("\xEF\xBB\xBF\n# a comment\n\t press a # behind\r\n\n");
    ASSERT_EQ(commands.size(), 1U);
    EXPECT_EQ(commands[0].line, 3);
    EXPECT_EQ(std::get<script::Press>(commands[0].action).identifier, "a");
}

TEST(Script, QuotedTextsEscapeQuotesAndBackslashes)
{
    const auto commands = Commands(R"(choose p "a \"b\" \\ # c")");
    ASSERT_EQ(commands.size(), 1U);
    EXPECT_EQ(std::get<script::Choose>(commands[0].action).item, R"(a "b" \ # c)");
}

TEST(Script, ReadsEveryAnswer)
{
    const auto commands = Commands("answer file \"x y\"\nanswer file cancel\nanswer color 0.1 -2 3 1e0\n"
                                   "answer color cancel\nanswer box yes\nanswer box no\n");
    ASSERT_EQ(commands.size(), 6U);
    EXPECT_EQ(std::get<script::AnswerFile>(commands[0].action).path, "x y");
    EXPECT_FALSE(std::get<script::AnswerFile>(commands[1].action).path.has_value());
    EXPECT_EQ(std::get<script::AnswerColor>(commands[2].action).color,
              (sharedui::PickerColor{0.1F, -2.0F, 3.0F, 1.0F}));
    EXPECT_FALSE(std::get<script::AnswerColor>(commands[3].action).color.has_value());
    EXPECT_TRUE(std::get<script::AnswerBox>(commands[4].action).yes);
    EXPECT_FALSE(std::get<script::AnswerBox>(commands[5].action).yes);
}

TEST(Script, NamesTheLineOfTheFirstFault)
{
    const char* const faults[] = {"pres a",
                                  "press",
                                  "press a b",
                                  "press \"a\"",
                                  "\"press\" a",
                                  "set a",
                                  "set a \"1\"",
                                  "choose a b",
                                  "choose a \"b",
                                  "choose a \"b\"c",
                                  "choose a c\"b\"",
                                  "choose a \"\\n\"",
                                  "answer",
                                  "answer mail \"x\"",
                                  "answer file x",
                                  "answer file \"\"",
                                  "answer color 1 2 3",
                                  "answer color 1 2 3 x",
                                  "answer color 1 2 3 inf",
                                  "answer color 1 2 3 4 5",
                                  "answer box maybe",
                                  "expect a",
                                  "expect-text a b",
                                  "expect-enabled a 1",
                                  "expect-item a -1 \"x\" true",
                                  "expect-item a 1 \"x\"",
                                  "expect-item a 99999999999 \"x\" true",
                                  "dump x",
                                  "screenshot"};
    for (const char* const fault : faults) {
        const auto parsed = ParseScript("press a\n" + std::string(fault) + "\npress");
        const auto* const error = std::get_if<ScriptError>(&parsed);
        ASSERT_NE(error, nullptr) << fault;
        EXPECT_EQ(error->line, 2) << fault;
        EXPECT_FALSE(error->text.empty()) << fault;
    }
}

/// A folder with one script, and a dialog to play it on.
class Playing : public testing::Test {
protected:
    void SetUp() override
    {
        UserInterface::Get().SetToolkit(&mToolkit);
        popup.AddItem("one");
        popup.AddItem("two");
        popup.SetItemEnabled(1, false);
        number.SetLimits(1.0, 10.0);
        number.SetDecimalPlaces(2);
        ok.NotifyWhenChanged([this] {
            ++oks;
            dialog.Close();
        });
        cancel.NotifyWhenChanged([this] {
            ++cancels;
            dialog.Close();
        });
    }
    void TearDown() override
    {
        UserInterface::Get().SetToolkit(nullptr);
        UserInterface::Get().SetScript({});
    }

    /// @return how the run failed, "" where it did not.
    std::string Play(const std::string& text)
    {
        UserInterface::Get().SetScript(mFolder.Write("s.script", text));
        return Run();
    }
    std::string Run()
    {
        const qelcore::logging::ScopedListener quiet([](const qelcore::logging::Message&) {});
        dialog.RunModal();
        const auto& failure = UserInterface::Get().LastScriptFailure();
        return failure ? std::to_string(failure->line) + ": " + failure->text : std::string();
    }

    test::TemporaryFolder mFolder;
    script::ScriptedToolkit mToolkit;
    UI_Dialog dialog{"d"};
    UI_Popup& popup = dialog.Add(std::make_unique<UI_Popup>("popup"));
    UI_NumberEdit& number = dialog.Add(std::make_unique<UI_NumberEdit>("number"));
    UI_CheckBox& box = dialog.Add(std::make_unique<UI_CheckBox>("box"));
    UI_RadioGroup& radios = dialog.Add(std::make_unique<UI_RadioGroup>("radios"));
    UI_RadioButton& radio = radios.Add(std::make_unique<UI_RadioButton>("radio"));
    UI_Button& button = dialog.Add(std::make_unique<UI_Button>("button"));
    UI_OkCancelRow& row = dialog.Add(std::make_unique<UI_OkCancelRow>(""));
    UI_Button& ok = row.GetControl<UI_Button>("okButton");
    UI_Button& cancel = row.GetControl<UI_Button>("cancelButton");
    int oks = 0;
    int cancels = 0;
};

TEST_F(Playing, ActsOnEveryKindOfControl)
{
    EXPECT_EQ(
        Play("set number 5.126\nset popup 0\nset box true\npress radio\n"
             "expect number 5.13\nexpect number 5.1300001\nexpect popup 0\nexpect box true\nexpect radio true\n"
             "expect-text popup \"one\"\npress okButton\n"),
        "");
    EXPECT_EQ(number.GetValue(), 5.13);
    EXPECT_EQ(oks, 1);
    EXPECT_EQ(cancels, 0);
}

TEST_F(Playing, EveryFailureCancelsAndNamesItsLine)
{
    const struct {
        const char* text;
        const char* failure;
    } kCases[] = {
        {"set number 5\nexpect number 5.01\n", "2: number is 5.00, not 5.01"},
        {"set number five\n", "1: number takes a number, not \"five\""},
        {"set popup 1\n", "1: popup: item \"two\" is disabled"},
        {"set popup 2\n", "1: popup has no item 2; it has 2"},
        {"set popup x\n", "1: popup is a popup and takes an item's index, not \"x\""},
        {"set box on\n", "1: box takes true or false, not \"on\""},
        {"set button 1\n", "1: button is a button and cannot be set"},
        {"press number\n", "1: number is a number edit and cannot be pressed"},
        {"choose number \"x\"\n", "1: number is not a popup"},
        {"expect button 1\n", "1: button is a button without a value; use expect-text"},
        {"expect-item popup 2 \"x\" true\n", "1: popup has no item 2; it has 2"},
        {"expect-item popup 0 \"x\" true\n", "1: popup's item 0 is \"one\", not \"x\""},
        {"expect-item number 0 \"x\" true\n", "1: number is not a popup"},
        {"dump \"/nonexistent/folder/dump.json\"\n", "1: cannot write \"/nonexistent/folder/dump.json\""},
        {"press okButton\npress button\n", "2: the dialog is closed already"},
    };
    for (const auto& each : kCases) {
        Playing_EveryFailureCancelsAndNamesItsLine_Test other;
        other.SetUp();
        EXPECT_EQ(other.Play(each.text), each.failure) << each.text;
        EXPECT_TRUE(other.dialog.IsClosed());
        EXPECT_EQ(other.oks + other.cancels, 1) << each.text;
        other.TearDown();
    }
    UserInterface::Get().SetToolkit(&mToolkit);
}

TEST_F(Playing, AScreenshotNeedsAWindow)
{
    EXPECT_EQ(Play("screenshot \"x.png\"\n").substr(0, 31), "1: no screenshot \"x.png\": there");
    EXPECT_EQ(cancels, 1);
}

TEST_F(Playing, AScriptThatCannotBeReadCancels)
{
    UserInterface::Get().SetScript(mFolder / "nowhere.script");
    EXPECT_EQ(Run(), "0: the script cannot be read");
    EXPECT_EQ(cancels, 1);
}

TEST_F(Playing, AScriptWhoseReadingFailsIsNoEmptyScript)
{
    UserInterface::Get().SetScript("/proc/self/mem"); // page 0 of a process is never mapped
    EXPECT_EQ(Run(), "0: the script cannot be read");
}

TEST_F(Playing, AFolderIsNoScript)
{
    UserInterface::Get().SetScript(mFolder.Path());
    EXPECT_EQ(Run(), "0: the script is not an ordinary file");
}

TEST_F(Playing, AnEmptyScriptCancelsWithoutAFailure)
{
    EXPECT_EQ(Play(""), "");
    EXPECT_EQ(cancels, 1);
}

TEST_F(Playing, AnswersAreTakenInOrderByKind)
{
    std::vector<std::string> taken;
    button.NotifyWhenChanged([&] {
        dialogs::OS_FileOpenDialog open(&dialog);
        taken.push_back(open.RunModal() == 1 ? qelcore::text::ToUTF8(open.GetFile().FullPath()) : "cancel");
        dialogs::UI_MessageBox question(&dialog, "t", "x", dialogs::kButtonsYesNo, dialogs::kButtonYes,
                                        dialogs::kIconWarning);
        question.RunModal();
        taken.emplace_back(question.GetResponse() == dialogs::kButtonYes ? "yes" : "no");
    });
    EXPECT_EQ(Play("answer file \"/a/b\"\nanswer box yes\nanswer file cancel\nanswer box no\npress button\n"
                   "press button\npress okButton\n"),
              "");
    const std::vector<std::string> wanted{"/a/b", "yes", "cancel", "no"};
    EXPECT_EQ(taken, wanted);
    EXPECT_EQ(oks, 1);
}

TEST_F(Playing, RelativeAnswersBecomeAbsolute)
{
    std::u16string path;
    button.NotifyWhenChanged([&] {
        dialogs::OS_FileOpenDialog open(&dialog);
        (void)open.RunModal();
        path = open.GetFile().FullPath();
    });
    EXPECT_EQ(Play("answer file \"x.json\"\npress button\npress okButton\n"), "");
    EXPECT_EQ(qelcore::text::ToUTF8(path), (std::filesystem::current_path() / "x.json").string());
}

TEST_F(Playing, ALeftOverAnswerKeepsOkFromBeingPressed)
{
    EXPECT_EQ(Play("answer box no\npress okButton\n").substr(0, 27), "1: this answer is left over");
    EXPECT_EQ(oks, 0);
    EXPECT_EQ(cancels, 1);
}

TEST_F(Playing, WhatAHandlerThrowsIsThrownAndTheScriptStops)
{
    button.NotifyWhenChanged([] { throw std::runtime_error("handler"); });
    EXPECT_THROW((void)Play("press button\npress okButton\n"), std::runtime_error);
    EXPECT_EQ(oks + cancels, 0);
}

TEST_F(Playing, ADumpHoldsEveryControl)
{
    const std::string file = (mFolder / "dump.json").string();
    EXPECT_EQ(Play("dump \"" + file + "\"\npress cancelButton\n"), "");
    const std::string text = test::ReadFile(file);
    const auto document = qelcore::serialization::JSONParse(text);
    ASSERT_FALSE(document.IsNothing()) << text;
    const auto controls = qelcore::serialization::AsArray(document, "dump");
    EXPECT_EQ(controls.size(), dialog.AllControls().size());
    const auto minimum = qelcore::serialization::GetVariantInObject(controls[1], "minimum");
    EXPECT_EQ(qelcore::serialization::AsNumber(minimum, "minimum"), 1.0);
}

} // namespace
