#include "QtFixture.h"

#include <QPalette>
#include <algorithm>
#include <cmath>
#include <ostream>

namespace {

/// Relative luminance after WCAG 2.1, which is linear light weighted as in Rec. 709.
double Luminance(const QColor& color)
{
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double Contrast(const QColor& first, const QColor& second)
{
    const double one = Luminance(first) + 0.05;
    const double other = Luminance(second) + 0.05;
    return std::max(one, other) / std::min(one, other);
}

TEST(Contrast, IsWhatTheStandardSays)
{
    EXPECT_NEAR(Contrast(Qt::black, Qt::white), 21.0, 1e-9);
    EXPECT_NEAR(Contrast(QColor(0x777777), Qt::white), 4.48, 0.005); // the well-known grey that just fails
    EXPECT_NEAR(Contrast(QColor(0x1F6FC4), Qt::white), 5.1, 0.05);
}

class Theme : public testing::TestWithParam<qelui::Theme> {
protected:
    void SetUp() override
    {
        ui_qt::Toolkit();
        kestrelqt::ApplyTheme(*qApp, GetParam());
        mColors = kestrelqt::ColorsOf(GetParam());
    }
    void TearDown() override { kestrelqt::ApplyTheme(*qApp, qelui::Theme::Dark); }

    static void ExpectReadable(const QColor& ink, const QColor& surface, const char* what, double least = 4.5)
    {
        EXPECT_GE(Contrast(ink, surface), least)
            << what << ": " << ink.name().toStdString() << " on " << surface.name().toStdString();
    }

    kestrelqt::ThemeColors mColors;
};

TEST_P(Theme, EveryTextIsReadableOnEverySurfaceItIsUsedOn)
{
    ExpectReadable(mColors.text, mColors.window, "text on the window");
    ExpectReadable(mColors.text, mColors.card, "text on a card");
    ExpectReadable(mColors.text, mColors.field, "text in a field");
    ExpectReadable(mColors.text, mColors.button, "a button's caption");
    ExpectReadable(mColors.text, mColors.button.lighter(108), "a caption under the mouse");
    ExpectReadable(mColors.text, mColors.button.darker(118), "a caption while it is pressed");
    ExpectReadable(mColors.dimText, mColors.window, "a label on the window");
    ExpectReadable(mColors.dimText, mColors.card, "a label on a card");
    ExpectReadable(mColors.dimText, mColors.field, "a placeholder");
    ExpectReadable(mColors.accentInk, mColors.window, "hot text on the window");
    ExpectReadable(mColors.accentInk, mColors.card, "hot text on a card");
    ExpectReadable(Qt::white, mColors.accent, "the default button's caption");
    ExpectReadable(Qt::white, mColors.accent.darker(108), "the same under the mouse");
}

TEST_P(Theme, PaletteIsReadableInEveryActiveRole)
{
    struct Pair {
        QPalette::ColorRole ink;
        QPalette::ColorRole surface;
        const char* what;
    };
    constexpr Pair kPairs[] = {
        {QPalette::WindowText, QPalette::Window, "window"},
        {QPalette::Text, QPalette::Base, "field"},
        {QPalette::Text, QPalette::AlternateBase, "every other row"},
        {QPalette::PlaceholderText, QPalette::Base, "placeholder"},
        {QPalette::ButtonText, QPalette::Button, "button"},
        {QPalette::HighlightedText, QPalette::Highlight, "selection"},
        {QPalette::Link, QPalette::Window, "link"},
        {QPalette::ToolTipText, QPalette::ToolTipBase, "tooltip"},
    };
    const QPalette palette = QApplication::palette();
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        for (const Pair& pair : kPairs) {
            ExpectReadable(palette.color(group, pair.ink), palette.color(group, pair.surface), pair.what);
        }
    }
}

// WCAG 2.1, 1.4.11: what shows the focus has a contrast of 3:1 or more.
TEST_P(Theme, FocusOutlineShowsOnEverySurface)
{
    for (const QColor& surface : {mColors.window, mColors.card, mColors.field, mColors.button}) {
        ExpectReadable(mColors.accentInk, surface, "focus outline", 3.0);
    }
    ExpectReadable(mColors.text, mColors.accent, "outline of the default button", 3.0);
}

// Our own limits: disabled text is dim, but can be read.
TEST_P(Theme, DisabledTextCanStillBeRead)
{
    ExpectReadable(mColors.disabled, mColors.card, "disabled text on a card", 3.0);
    ExpectReadable(mColors.disabled, mColors.window, "disabled text on the window", 3.0);
}

INSTANTIATE_TEST_SUITE_P(Both, Theme, testing::Values(qelui::Theme::Dark, qelui::Theme::Light),
                         [](const auto& info) { return ui_qt::NameOf(info.param); });

} // namespace
