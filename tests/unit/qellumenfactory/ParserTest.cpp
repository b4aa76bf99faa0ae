#include <kestrel/qellumenfactory/Parser.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace qellumenfactory;

/// What is wrong with a text, as "line:column: words"; empty where it is a layout.
std::string Fault(const std::string& text)
{
    try {
        (void)ParseLayout(text, "t");
        return {};
    } catch (const LayoutError& error) {
        return std::string(error.what()).substr(2);
    }
}

TEST(Parser, ReadsLumen)
{
    const Layout layout = ParseLayout(R"(// first
qel_dialog(identifier: "d", title: "T \"x\" \\ \n", margin: 15) { qel_button(label: "B",) qel_groupbox() {} })",
                                      "t");
    EXPECT_EQ(layout.dialect, Dialect::Lumen);
    EXPECT_EQ(layout.root.kind, ControlKind::Dialog);
    EXPECT_EQ(layout.root.Text(Key::Title), "T \"x\" \\ \n");
    EXPECT_EQ(layout.root.Number(Key::Margin, 0.0), 15.0);
    ASSERT_EQ(layout.root.children.size(), 2U);
    EXPECT_EQ(layout.root.children[0].Text(Key::Label), "B");
}

TEST(Parser, ReadsSable)
{
    const Layout layout = ParseLayout(
        "dialog { identifier = \"d\" popup { name = \"N\" width = 5 } inline_edit_number { name = \"M\" } }",
        "t");
    EXPECT_EQ(layout.dialect, Dialect::Sable);
    ASSERT_EQ(layout.root.children.size(), 2U);
    EXPECT_EQ(layout.root.children[0].Text(Key::Label), "N");
    EXPECT_EQ(layout.root.children[0].Number(Key::MinWidth, 0.0), 5.0);
    EXPECT_EQ(layout.root.children[1].Text(Key::Label), "M");
}

TEST(Parser, NumbersReadInFullPrecision)
{
    const Layout layout = ParseLayout("qel_dialog() { qel_hot_text_number(value: -12.041199826559248) }", "t");
    EXPECT_EQ(layout.root.children.at(0).Number(Key::Value, 0.0), -12.041199826559248);
}

TEST(Parser, SaysLineColumnAndWhatWasExpected)
{
    const struct {
        const char* text;
        const char* fault;
    } kCases[] = {
        {"", "1:1: expected a widget's name, for instance qel_dialog or dialog, found the end"},
        {"\n  5", "2:3: expected a widget's name, for instance qel_dialog or dialog, found the number 5"},
        {"qel_dialog", "1:11: expected '(' after qel_dialog, found the end"},
        {"qel_dialog(", "1:12: expected a parameter's name or ')', found the end"},
        {"qel_dialog(margin", "1:18: expected ':' after margin, found the end"},
        {"qel_dialog(margin: \"1\")", "1:20: expected a number for margin, found the text \"1\""},
        {"qel_dialog(margin: 1.5)", "1:20: margin is a whole number from 0 to 10000, not the number 1.5"},
        {"qel_dialog(margin: 1 spacing: 2)",
         "1:22: expected ',' or ')' after a parameter of qel_dialog, found the word \"spacing\""},
        {"qel_dialog(margin: 1, margin: 2)", "1:23: qel_dialog has margin twice"},
        {"qel_dialog(title: 1)", "1:19: expected a text in quotes for title, found the number 1"},
        {"qel_dialog(identifier: \"\")", "1:24: identifier is a text that is not empty, not the text \"\""},
        {"qel_dialog(orientation: \"up\")", "1:25: orientation is \"row\" or \"column\", not the text \"up\""},
        {"qel_dialog() {", "1:15: expected a widget's name or '}', found the end"},
        {"qel_dialog() { }}", "1:17: expected the end after the dialog, found '}'"},
        {"qel_dialog() { qel_groupbox(border: yes) }",
         "1:37: expected true or false for border, found the word \"yes\""},
        {"qel_dialog() { qel_dialog() }", "1:16: qel_dialog stands inside qel_dialog, but only outermost"},
        {"qel_popup()", "1:1: the outermost widget is qel_dialog, not qel_popup"},
        {"qel_dialog() { qel_button() { } }", "1:29: qel_button holds no widgets"},
        {"qel_dialog() { qel_radio_button() }",
         "1:16: qel_radio_button stands inside a qel_radio_button_group only"},
        {"qel_dialog() { qel_number_edit(minValue: 2, maxValue: 1) }", "1:32: minValue is above maxValue"},
        {"qel_dialog() { qel_number_edit(step: 0) }", "1:38: step is a number above 0, not the number 0"},
        {"qel_dialog() { qel_button(identifier: \"a\") qel_button(identifier: \"a\") }",
         "1:67: the identifier \"a\" is taken already"},
        {"qel_dialog() { qel_button(identifier: \"okButton\") }",
         "1:39: the identifier \"okButton\" is taken already"},
        {"qel_dialog(title: \"a", "1:19: this text is not closed on its line; expected '\"'"},
        {"qel_dialog(title: \"a\n\")", "1:19: this text is not closed on its line; expected '\"'"},
        {"qel_dialog(title: \"\\t\")", "1:20: expected \\\", \\\\ or \\n"},
        {"qel_dialog(title: \"\x01\")", "1:20: a control character in a text"},
        {"qel_dialog(title: \"\xC3\")", "1:19: this text is not UTF-8"},
        {"// \xFF\nqel_dialog()", "1:1: this comment is not UTF-8"},
        // Characters count, not bytes.
        {"qel_dialog(title: \"\xC3\xBC\" ?", "1:23: this character has no meaning here"},
        {"qel_dialog(margin: 1e999)", "1:20: \"1e999\" is not a number"},
        {"qel_dialog(margin: 1x)", "1:20: \"1x\" is not a number"},
        {"dialog { margin 1 }", "1:17: expected '=' after margin, found the number 1"},
        {"dialog { button { } margin = 1 }", "1:21: properties stand before the widgets of dialog"},
        {"dialog { button { button { } } }", "1:19: button holds no widgets"},
        {"dialog() { }", "1:7: expected '{' after dialog, found '('"},
    };
    for (const auto& each : kCases) {
        EXPECT_EQ(Fault(each.text), each.fault) << each.text;
    }
}

TEST(Parser, AnUnknownWidgetOrParameterListsTheKnownOnes)
{
    EXPECT_EQ(
        Fault("qel_dialog() { qel_list() }"),
        "1:16: \"qel_list\" is not a widget; the widgets are: qel_dialog, qel_groupbox, "
        "qel_radio_button_group, "
        "qel_ok_cancel_row, qel_popup, qel_number_edit, qel_hot_text_number, qel_button, qel_static_text, "
        "qel_checkbox, qel_radio_button");
    EXPECT_EQ(
        Fault("dialog { min_value = 1 }"),
        "1:10: dialog has no \"min_value\"; it has: identifier, layout, title, orientation, spacing, margin");
    // Names belong to their dialect.
    EXPECT_NE(Fault("dialog { popup { label = \"x\" } }"), "");
    EXPECT_NE(Fault("qel_dialog() { qel_popup(name: \"x\") }"), "");
    EXPECT_NE(Fault("qel_dialog() { popup() }"), "");
}

TEST(Parser, NestingIsLimited)
{
    const auto nested = [](int groups) {
        std::string text = "qel_dialog() {";
        for (int i = 0; i < groups; ++i) {
            text += " qel_groupbox() {";
        }
        return text + std::string(static_cast<std::size_t>(groups) + 1, '}');
    };
    EXPECT_EQ(Fault(nested(kDeepestNesting - 1)), "");
    EXPECT_NE(Fault(nested(kDeepestNesting)).find("widgets nest at most 64 deep"), std::string::npos);
    EXPECT_NE(Fault(nested(100000)).find("widgets nest at most 64 deep"), std::string::npos);
}

TEST(Parser, EveryTruncationOfALayoutIsAnErrorAndNeverACrash)
{
    const std::string text = R"(dialog { identifier = "d" margin = 1
    radiogroup { border = false radio_button { label = "ü" checked = true } }
    // end
})";
    ASSERT_EQ(Fault(text), "");
    for (std::size_t length = 0; length < text.size(); ++length) {
        EXPECT_NE(Fault(text.substr(0, length)), "") << length;
    }
}

} // namespace
