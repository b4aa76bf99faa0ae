#include "QtFixture.h"

#include <kestrel/qt/dialogs/StatusBar.h>

#include <QLineEdit>
#include <QPushButton>
#include <cmath>

using kestrelqt::Focus;
using kestrelqt::PressKey;
using kestrelqt::TypeText;

namespace {

/// Two fields and OK, with a count of what was entered into the first.
class NumberField : public testing::Test {
protected:
    void SetUp() override
    {
        mNumber = &mOpen.Add<qelui::UI_NumberEdit>("number", "Number:");
        mNumber->SetDecimalPlaces(2);
        mNumber->SetLimits(-5.0, 100.0);
        mNumber->SetValue(kStored);
        mNumber->NotifyWhenChanged([this] { ++mChanges; });
        mOpen.Add<qelui::UI_NumberEdit>("other", "Other:");
        mOpen.Dialog().Add(std::make_unique<qelui::UI_OkCancelRow>("row"));
        mOpen.Open();
        mField = &mOpen.Find<QLineEdit>("number");
        Focus(*mField);
        mField->selectAll();
        ASSERT_TRUE(mField->hasFocus());
    }

    /// More digits than the field shows.
    static constexpr double kStored = 12.3456789;
    ui_qt::OpenDialog mOpen;
    qelui::UI_NumberEdit* mNumber = nullptr;
    QLineEdit* mField = nullptr;
    int mChanges = 0;
};

TEST_F(NumberField, ReturnEntersWhatWasTyped)
{
    TypeText(*mField, "7.126");
    EXPECT_EQ(mChanges, 0) << "entered while it was being typed";
    PressKey(*mField, Qt::Key_Return);
    EXPECT_EQ(mNumber->GetValue(), 7.13) << "rounded to two decimals";
    EXPECT_EQ(mField->text(), "7.13");
    EXPECT_EQ(mChanges, 1);
    EXPECT_FALSE(mOpen.Dialog().IsClosed()) << "the first Return is the field's";
}

TEST_F(NumberField, SecondReturnPressesOk)
{
    auto& ok = mOpen.Dialog().GetControl<qelui::UI_Button>("okButton");
    ok.NotifyWhenChanged([this] { mOpen.Dialog().Close(); });
    TypeText(*mField, "8");
    PressKey(*mField, Qt::Key_Return);
    EXPECT_FALSE(mOpen.Dialog().IsClosed());
    PressKey(*mField, Qt::Key_Return);
    EXPECT_TRUE(mOpen.Dialog().IsClosed());
}

TEST_F(NumberField, EscapeTakesAnEditBackAndOnlyThenCancels)
{
    TypeText(*mField, "99");
    PressKey(*mField, Qt::Key_Escape);
    EXPECT_EQ(mField->text(), "12.35");
    EXPECT_EQ(mChanges, 0);
    EXPECT_FALSE(mOpen.Dialog().IsClosed());
    PressKey(*mField, Qt::Key_Escape);
    EXPECT_TRUE(mOpen.Dialog().IsClosed());
}

TEST_F(NumberField, LeavingTheFieldEntersAnEdit)
{
    TypeText(*mField, "50");
    PressKey(*mField, Qt::Key_Tab);
    EXPECT_TRUE(mOpen.Find<QLineEdit>("other").hasFocus());
    EXPECT_EQ(mNumber->GetValue(), 50.0);
    EXPECT_EQ(mChanges, 1);
}

TEST_F(NumberField, PassingThroughKeepsEveryBit)
{
    PressKey(*mField, Qt::Key_Tab);
    Focus(*mField);
    PressKey(*mField, Qt::Key_Left);
    PressKey(*mField, Qt::Key_Home);
    PressKey(*mField, Qt::Key_Tab);
    EXPECT_EQ(mNumber->GetValue(), kStored);
    EXPECT_EQ(mChanges, 0);
}

TEST_F(NumberField, WhatIsNoNumberIsTakenBack)
{
    for (const char* const text : {"twelve", "", "1,5", "1e999", "--1", "nan", "0x10"}) {
        mField->selectAll();
        TypeText(*mField, "1");
        mField->selectAll();
        PressKey(*mField, Qt::Key_Backspace);
        TypeText(*mField, QString::fromLatin1(text));
        PressKey(*mField, Qt::Key_Return);
        EXPECT_EQ(mNumber->GetValue(), kStored) << text;
        EXPECT_EQ(mField->text(), "12.35") << text;
    }
    EXPECT_EQ(mChanges, 0);
}

TEST_F(NumberField, LimitsHoldWhatIsTyped)
{
    TypeText(*mField, "1000");
    PressKey(*mField, Qt::Key_Return);
    EXPECT_EQ(mNumber->GetValue(), 100.0);
    EXPECT_EQ(mField->text(), "100.00");
    TypeText(*mField, "-1000");
    PressKey(*mField, Qt::Key_Return);
    EXPECT_EQ(mNumber->GetValue(), -5.0);
    EXPECT_EQ(mField->text(), "-5.00");
}

TEST_F(NumberField, ArrowsStepByOneAndPageKeysByTen)
{
    mNumber->SetStep(0.5);
    mNumber->SetValue(20.0);
    PressKey(*mField, Qt::Key_Up);
    EXPECT_EQ(mNumber->GetValue(), 20.5);
    PressKey(*mField, Qt::Key_PageUp);
    EXPECT_EQ(mNumber->GetValue(), 25.5);
    PressKey(*mField, Qt::Key_PageDown);
    PressKey(*mField, Qt::Key_Down);
    EXPECT_EQ(mNumber->GetValue(), 20.0);
    EXPECT_EQ(mField->text(), "20.00");
    EXPECT_EQ(mChanges, 4);
}

TEST_F(NumberField, AnArrowStepsFromWhatHasBeenTyped)
{
    mNumber->SetStep(1.0);
    TypeText(*mField, "30");
    PressKey(*mField, Qt::Key_Up);
    EXPECT_EQ(mNumber->GetValue(), 31.0);
}

TEST_F(NumberField, AStepFitsTheDecimalsUnlessTheLayoutSaysOtherwise)
{
    mNumber->SetValue(0.5);
    PressKey(*mField, Qt::Key_Up);
    EXPECT_EQ(mNumber->GetValue(), 0.51);
    mNumber->SetDecimalPlaces(0);
    PressKey(*mField, Qt::Key_Up);
    EXPECT_EQ(mNumber->GetValue(), 2.0) << "0.51 and 1, rounded to a whole number";
}

// As durations are moved to whole frames: a step of 0.01 s would otherwise end where it began.
TEST_F(NumberField, AStepThatAHandlerTakesBackBecomesLarger)
{
    mNumber->NotifyWhenChanged(
        [this] { mNumber->SetValue(std::floor(mNumber->GetValue() / 0.5 + 0.5) * 0.5); });
    mNumber->SetValue(2.0);
    PressKey(*mField, Qt::Key_Up);
    EXPECT_EQ(mNumber->GetValue(), 2.5);
    PressKey(*mField, Qt::Key_Down);
    EXPECT_EQ(mNumber->GetValue(), 2.0);
}

TEST_F(NumberField, ControlZUndoesTypingAndLeavesEveryBit)
{
    TypeText(*mField, "7");
    EXPECT_EQ(mField->text(), "7");
    for (int press = 0; press < 3; ++press) {
        PressKey(*mField, Qt::Key_Z, Qt::ControlModifier);
    }
    EXPECT_EQ(mField->text(), "12.35");
    Focus(mOpen.Find<QLineEdit>("other"));
    EXPECT_EQ(mNumber->GetValue(), kStored) << "what was undone is not entered";
    EXPECT_EQ(mChanges, 0);
}

TEST_F(NumberField, ControlZBringsBackNothingFromBeforeAnEntry)
{
    TypeText(*mField, "7");
    PressKey(*mField, Qt::Key_Return);
    mNumber->SetValue(9.0);
    PressKey(*mField, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(mField->text(), "9.00");
}

TEST_F(NumberField, AKeyThatPressesOkEntersWhatIsTypedFirst)
{
    auto& ok = mOpen.Dialog().GetControl<qelui::UI_Button>("okButton");
    double atOk = 0.0;
    ok.NotifyWhenChanged([&] { atOk = mNumber->GetValue(); });
    TypeText(*mField, "8");
    mOpen.Find<QPushButton>("okButton").click(); // as its Alt key does, which leaves the focus in the field
    EXPECT_EQ(atOk, 8.0);
}

TEST_F(NumberField, TheStatusLineTellsWhatBecameOfAnEntry)
{
    const auto enter = [this](const char* text) {
        Focus(*mField);
        mField->selectAll();
        TypeText(*mField, text);
        Focus(mOpen.Find<QLineEdit>("other")); // the report outlives the move of the focus
        return mOpen.Window().Status().Shown();
    };
    EXPECT_EQ(enter("200"), "Number: kept within -5..100");
    EXPECT_EQ(enter("many"), "Number: not a number, 100.00 kept");
    EXPECT_EQ(enter("1.005e1"), "") << "it is taken as it is";
    EXPECT_EQ(enter("7.126"), "Number: rounded to 7.13");
}

TEST_F(NumberField, CodeThatChangesTheNumberIsFollowedUnrounded)
{
    mNumber->SetValue(1e6 + 0.123);
    EXPECT_EQ(mField->text(), "1000000.12");
    EXPECT_EQ(mNumber->GetValue(), 1e6 + 0.123) << "limits are for what a person enters";
    EXPECT_EQ(mChanges, 0);
}

} // namespace
