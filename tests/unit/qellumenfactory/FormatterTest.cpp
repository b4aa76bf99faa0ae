#include <kestrel/qellumenfactory/Dialects.h>
#include <kestrel/qellumenfactory/Formatter.h>
#include <kestrel/qellumenfactory/Parser.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

namespace {

using namespace qellumenfactory;

/// A random valid layout.
class Maker {
public:
    explicit Maker(unsigned seed) : mRandom(seed) {}

    LayoutNode Make(ControlKind kind, int depth, bool inRadioGroup)
    {
        LayoutNode node;
        node.kind = kind;
        for (const Key key : KeysOf(kind)) {
            if (Chance(2)) {
                node.parameters.push_back({key, MakeValue(key), {}});
            }
        }
        RepairLimits(node);
        AddComments(node.comments);
        if (HoldsChildren(kind)) {
            AddComments(node.closingComments);
            const bool inRadio = inRadioGroup || kind == ControlKind::RadioGroup;
            for (unsigned count = depth > 4 ? 0 : mRandom() % 4U; count > 0; --count) {
                auto child = static_cast<ControlKind>(1 + mRandom() % 10U);
                if (child == ControlKind::RadioButton && !inRadio) {
                    child = ControlKind::Button;
                }
                node.children.push_back(Make(child, depth + 1, inRadio));
            }
        }
        return node;
    }

private:
    bool Chance(unsigned oneIn) { return mRandom() % oneIn == 0; }

    void AddComments(std::vector<std::string>& comments)
    {
        for (unsigned count = Chance(4) ? 1 + mRandom() % 2U : 0; count > 0; --count) {
            comments.push_back(" note " + std::to_string(mRandom() % 100U));
        }
    }

    /// Least values above greatest ones are no layout.
    static void RepairLimits(LayoutNode& node)
    {
        const auto minimum = node.Number(Key::MinValue);
        if (minimum && node.Number(Key::MaxValue, *minimum) < *minimum) {
            for (Parameter& parameter : node.parameters) {
                if (parameter.key == Key::MaxValue) {
                    parameter.value = *minimum;
                }
            }
        }
    }

    ParameterValue MakeValue(Key key)
    {
        switch (TypeOf(key)) {
        case ValueType::Truth:
            return Chance(2);
        case ValueType::Number:
            break;
        case ValueType::Text:
            if (key == Key::Identifier) {
                return "id" + std::to_string(++mIdentifiers);
            }
            if (key == Key::Orientation) {
                return std::string(Chance(2) ? "row" : "column");
            }
            return std::string("a \"quoted\" \\ text\n\xC3\xBC ").append(mRandom() % 60U, 'x');
        }
        if (FindValueFault(key, ParameterValue{0.5}).has_value()) {
            return static_cast<double>(mRandom() % 16U); // whole numbers
        }
        const double scale = std::uniform_real_distribution<double>(-300.0, 300.0)(mRandom);
        const double number = std::pow(10.0, scale);
        return key == Key::Step || Chance(2) ? number : -number;
    }

    std::mt19937 mRandom;
    int mIdentifiers = 0;
};

class RoundTrip : public testing::TestWithParam<Dialect> {};

TEST_P(RoundTrip, WhatIsFormattedReadsBackTheSameAndFormatsTheSame)
{
    for (unsigned seed = 1; seed <= 300; ++seed) {
        const LayoutNode root = Maker(seed).Make(ControlKind::Dialog, 0, false);
        const std::string text = FormatLayout(root, GetParam());
        const Layout layout = ParseLayout(text, "seed " + std::to_string(seed));
        ASSERT_EQ(layout.dialect, GetParam());
        ASSERT_EQ(FindDifference(root, layout.root).value_or(""), "") << "seed " << seed << '\n' << text;
        ASSERT_EQ(FormatLayout(layout.root, GetParam()), text) << "seed " << seed;
    }
}

INSTANTIATE_TEST_SUITE_P(Dialects, RoundTrip, testing::Values(Dialect::Lumen, Dialect::Sable),
                         [](const auto& info) { return info.param == Dialect::Lumen ? "Lumen" : "Sable"; });

TEST(FormatterText, CommentsAreKeptWhereverTheyStand)
{
    const Layout layout =
        ParseLayout("//a\nqel_dialog(//b\nmargin: 1 //c\n) { //d\n qel_button() //e\n } //f", "t");
    EXPECT_EQ(FormatLayout(layout.root, Dialect::Lumen), "//a\n"
                                                         "//b\n"
                                                         "//c\n"
                                                         "qel_dialog(margin: 1) {\n"
                                                         "    //d\n"
                                                         "    qel_button()\n"
                                                         "    //e\n"
                                                         "    //f\n"
                                                         "}\n");
    EXPECT_EQ(FormatLayout(layout.root, Dialect::Sable), "//a\n"
                                                         "//b\n"
                                                         "//c\n"
                                                         "dialog {\n"
                                                         "    margin = 1\n"
                                                         "    //d\n"
                                                         "    button {\n"
                                                         "    }\n"
                                                         "    //e\n"
                                                         "    //f\n"
                                                         "}\n");
}

TEST(Difference, NamesTheWidgetAndWhatDiffers)
{
    const auto difference = [](const char* a, const char* b) {
        return FindDifference(ParseLayout(a, "a").root, ParseLayout(b, "b").root).value_or("none");
    };
    EXPECT_EQ(difference("qel_dialog(title: \"x\", margin: 1)", "dialog { margin = 1 title = \"x\" }"), "none");
    EXPECT_EQ(
        difference("qel_dialog(identifier: \"d\", margin: 1)", "dialog { identifier = \"d\" margin = 2 }"),
        "qel_dialog \"d\" differs in margin");
    EXPECT_EQ(difference("qel_dialog(margin: 1)", "qel_dialog()"), "qel_dialog differs in margin");
    EXPECT_EQ(difference("qel_dialog() { qel_button() }", "qel_dialog() { qel_popup() }"),
              "qel_button faces qel_popup");
    EXPECT_EQ(difference("qel_dialog() { qel_button() }", "qel_dialog()"),
              "qel_dialog holds 1 widgets here and 0 there");
}

} // namespace
