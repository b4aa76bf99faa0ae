#include "QtFixture.h"

#include <kestrel/qt/dialogs/ColorArea.h>
#include <kestrel/qt/dialogs/ColorPickerWindow.h>

#include <QLineEdit>
#include <QPushButton>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>

using kestrelqt::Click;
using kestrelqt::ColorPickerWindow;
using kestrelqt::Focus;
using kestrelqt::PressKey;
using kestrelqt::TypeText;
using qelui::sharedui::PickerColor;

namespace {

std::unique_ptr<ColorPickerWindow> Open(const PickerColor& color)
{
    ui_qt::Toolkit();
    auto picker = std::make_unique<ColorPickerWindow>(color, ColorPickerWindow::Alpha::Offered, nullptr);
    ui_qt::ShowAndActivate(*picker);
    return picker;
}

/// The channels' bits, so that NaN and signed zero compare, too.
std::array<std::uint32_t, 4> BitsOf(const PickerColor& color)
{
    return {std::bit_cast<std::uint32_t>(color.red), std::bit_cast<std::uint32_t>(color.green),
            std::bit_cast<std::uint32_t>(color.blue), std::bit_cast<std::uint32_t>(color.alpha)};
}

void Enter(ColorPickerWindow& picker, std::size_t channel, const QString& text)
{
    QLineEdit& field = picker.Field(channel);
    Focus(field);
    field.selectAll();
    TypeText(field, text);
}

TEST(ColorPicker, OkReturnsUntouchedChannelsBitForBit)
{
    constexpr unsigned kSeed = 20260;
    std::mt19937 random(kSeed);
    for (int round = 0; round < 40; ++round) {
        const auto any = [&random] { return std::bit_cast<float>(static_cast<std::uint32_t>(random())); };
        const PickerColor color{any(), any(), any(), any()};
        const auto picker = Open(color);
        for (std::size_t channel = 0; channel < ColorPickerWindow::kChannels; ++channel) {
            Focus(picker->Field(channel)); // passing through is not touching
        }
        Click(picker->OkButton(), picker->OkButton().rect().center());
        EXPECT_EQ(picker->result(), QDialog::Accepted);
        EXPECT_EQ(BitsOf(picker->Color()), BitsOf(color)) << "seed " << kSeed << ", round " << round;
    }
}

TEST(ColorPicker, TypingOneChannelLeavesTheOthersBitForBit)
{
    const PickerColor color{0.12345F, std::numeric_limits<float>::denorm_min(), -0.0F,
                            std::numeric_limits<float>::quiet_NaN()};
    const auto picker = Open(color);
    Enter(*picker, 0, "0.6");
    Click(picker->OkButton(), picker->OkButton().rect().center());
    PickerColor wanted = color;
    wanted.red = 0.6F;
    EXPECT_EQ(BitsOf(picker->Color()), BitsOf(wanted));
}

TEST(ColorPicker, TakesValuesBeyondZeroAndOne)
{
    const auto picker = Open({0.5F, 0.5F, 0.5F, 1.0F});
    Enter(*picker, 0, "-0.25");
    Enter(*picker, 1, "1e3");
    Enter(*picker, 2, "12.75");
    Enter(*picker, 3, "2");
    EXPECT_EQ(picker->Color(), (PickerColor{-0.25F, 1000.0F, 12.75F, 2.0F}));
}

TEST(ColorPicker, WhatIsNoNumberLeavesTheChannel)
{
    const auto picker = Open({0.5F, 0.25F, 0.125F, 1.0F});
    Enter(*picker, 1, "green");
    Focus(picker->Field(2));
    EXPECT_EQ(picker->Color(), (PickerColor{0.5F, 0.25F, 0.125F, 1.0F}));
    EXPECT_EQ(picker->Field(1).text(), "0.25");
}

TEST(ColorPicker, ANumberTooLargeForAChannelLeavesIt)
{
    const auto picker = Open({0.5F, 0.25F, 0.125F, 1.0F});
    Enter(*picker, 1, "1e39");
    Focus(picker->Field(2));
    EXPECT_EQ(picker->Color().green, 0.25F);
}

TEST(ColorPicker, FieldsShowTheShortestTextThatReadsBack)
{
    const auto picker = Open({0.1F, 1.0F / 3.0F, 1.0F, 0.0F});
    EXPECT_EQ(picker->Field(0).text(), "0.1");
    EXPECT_EQ(picker->Field(1).text(), "0.33333334");
    EXPECT_EQ(picker->Field(2).text(), "1");
    EXPECT_EQ(picker->Field(3).text(), "0");
}

TEST(ColorPicker, TheAreaPicksAColorAndLeavesAlpha)
{
    const auto picker = Open({0.5F, 0.5F, 0.5F, 0.12345F});
    auto* const area = picker->findChild<kestrelqt::ColorArea*>();
    ASSERT_NE(area, nullptr);
    Click(*area, QPoint(1, 1)); // no saturation, full brightness
    EXPECT_EQ(picker->Color(), (PickerColor{1.0F, 1.0F, 1.0F, 0.12345F}));
    EXPECT_EQ(picker->Field(0).text(), "1");
}

TEST(ColorPicker, TheAreaKeepsTheHueOnItsWayThroughGreyAndBlack)
{
    // Green; its hue is a third of the circle.
    const auto picker = Open({0.0F, 1.0F, 0.0F, 1.0F});
    auto* const area = picker->findChild<kestrelqt::ColorArea*>();
    ASSERT_NE(area, nullptr);
    Focus(*area);
    for (int step = 0; step < 100; ++step) { // a hundredth each
        PressKey(*area, Qt::Key_Left);
    }
    EXPECT_NEAR(picker->Color().red, 1.0F, 1e-3F) << "white";
    for (int step = 0; step < 100; ++step) {
        PressKey(*area, Qt::Key_Right);
    }
    EXPECT_NEAR(picker->Color().red, 0.0F, 1e-3F);
    EXPECT_NEAR(picker->Color().green, 1.0F, 1e-3F);
    EXPECT_NEAR(picker->Color().blue, 0.0F, 1e-3F);
}

TEST(ColorPicker, ReturnAcceptsAndEscapeCancels)
{
    const auto accepted = Open({0.5F, 0.5F, 0.5F, 1.0F});
    Enter(*accepted, 2, "0.75");
    PressKey(accepted->Field(2), Qt::Key_Return);
    EXPECT_EQ(accepted->result(), QDialog::Accepted);
    EXPECT_EQ(accepted->Color().blue, 0.75F);

    const auto cancelled = Open({0.5F, 0.5F, 0.5F, 1.0F});
    PressKey(cancelled->Field(2), Qt::Key_Escape);
    EXPECT_FALSE(cancelled->isVisible());
    EXPECT_EQ(cancelled->result(), QDialog::Rejected);
}

} // namespace
