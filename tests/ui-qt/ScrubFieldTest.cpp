#include "QtFixture.h"

#include <QLineEdit>

using kestrelqt::Focus;
using kestrelqt::PressKey;
using kestrelqt::TypeText;

namespace {

/// Hot text that moves by 10 a step, and one step is two pixels.
class ScrubField : public testing::Test {
protected:
    void SetUp() override
    {
        mNumber = &mOpen.Add<qelui::UI_HotTextNumber>("number", "Frequency:");
        mNumber->SetDecimalPlaces(1);
        mNumber->SetLimits(1.0, 24000.0);
        mNumber->SetStep(10.0);
        mNumber->SetPostLabel("Hz");
        mNumber->SetValue(1000.0);
        mNumber->NotifyWhenChanged([this] { ++mChanges; });
        mOpen.Add<qelui::UI_NumberEdit>("other", "Other:");
        mOpen.Open();
        mField = &mOpen.Find<QLineEdit>("number");
    }

    ui_qt::OpenDialog mOpen;
    qelui::UI_HotTextNumber* mNumber = nullptr;
    QLineEdit* mField = nullptr;
    int mChanges = 0;
};

TEST_F(ScrubField, DragShowsTheNumberAndEntersItOnceOnRelease)
{
    ui_qt::Mouse mouse(*mField);
    mouse.Press();
    for (int step = 0; step < 10; ++step) {
        mouse.MoveBy(4);
    }
    EXPECT_EQ(mField->text(), "1200.0") << "1000 + 40 px / 2 px × 10";
    EXPECT_EQ(mNumber->GetValue(), 1000.0);
    EXPECT_EQ(mChanges, 0);
    mouse.Release();
    EXPECT_EQ(mNumber->GetValue(), 1200.0);
    EXPECT_EQ(mChanges, 1);
}

TEST_F(ScrubField, ShiftDragsTenTimesAsFastAndControlATenth)
{
    ui_qt::Mouse mouse(*mField);
    mouse.Press();
    mouse.MoveBy(20, Qt::ShiftModifier); // + 20 / 2 × 10 × 10
    EXPECT_EQ(mField->text(), "2000.0");
    mouse.MoveBy(20, Qt::ControlModifier); // + 20 / 2 × 10 / 10
    EXPECT_EQ(mField->text(), "2010.0");
    mouse.MoveBy(-20); // - 20 / 2 × 10
    mouse.Release();
    EXPECT_EQ(mNumber->GetValue(), 1910.0);
    EXPECT_EQ(mChanges, 1);
}

TEST_F(ScrubField, AnotherButtonDoesNotEndADrag)
{
    ui_qt::Mouse mouse(*mField);
    mouse.Press();
    mouse.MoveBy(20); // + 20 / 2 × 10
    mouse.RightClickMeanwhile();
    EXPECT_EQ(mNumber->GetValue(), 1000.0);
    mouse.MoveBy(20);
    mouse.Release();
    EXPECT_EQ(mNumber->GetValue(), 1200.0);
    EXPECT_EQ(mChanges, 1);
}

TEST_F(ScrubField, EscapeTakesADragBack)
{
    ui_qt::Mouse mouse(*mField);
    mouse.Press();
    mouse.MoveBy(200);
    PressKey(*mField, Qt::Key_Escape);
    EXPECT_EQ(mField->text(), "1000.0");
    mouse.MoveBy(200);
    mouse.Release();
    EXPECT_EQ(mNumber->GetValue(), 1000.0);
    EXPECT_EQ(mChanges, 0);
    EXPECT_FALSE(mOpen.Dialog().IsClosed()) << "this Escape is the drag's";
}

TEST_F(ScrubField, ADragThatTurnsRoundAtALimitTakesEffectAtOnce)
{
    ui_qt::Mouse mouse(*mField);
    mouse.Press();
    mouse.MoveBy(-2000); // far below the least number, 1
    EXPECT_EQ(mField->text(), "1.0");
    mouse.MoveBy(4);
    EXPECT_EQ(mField->text(), "21.0");
    mouse.Release();
    EXPECT_EQ(mNumber->GetValue(), 21.0);
}

TEST_F(ScrubField, AClickChangesNothing)
{
    mNumber->SetValue(1000.04321);
    ui_qt::Mouse mouse(*mField);
    mouse.Press();
    mouse.MoveBy(2); // a hand moves a little during a click
    mouse.Release();
    EXPECT_EQ(mNumber->GetValue(), 1000.04321);
    EXPECT_EQ(mChanges, 0);
    EXPECT_TRUE(mField->hasFocus());
}

TEST_F(ScrubField, DoubleClickAndReturnBeginToType)
{
    ui_qt::Mouse(*mField).DoubleClick();
    ASSERT_FALSE(mField->isReadOnly());
    TypeText(*mField, "440");
    PressKey(*mField, Qt::Key_Return);
    EXPECT_EQ(mNumber->GetValue(), 440.0);
    EXPECT_TRUE(mField->isReadOnly());
    PressKey(*mField, Qt::Key_Return);
    ASSERT_FALSE(mField->isReadOnly());
    TypeText(*mField, "99999");
    PressKey(*mField, Qt::Key_Tab);
    EXPECT_EQ(mNumber->GetValue(), 24000.0) << "kept within its limits when the field was left";
    EXPECT_EQ(mChanges, 2);
}

TEST_F(ScrubField, AFirstDigitTakesThePlaceOfTheWholeNumber)
{
    Focus(*mField);
    TypeText(*mField, "88.5");
    PressKey(*mField, Qt::Key_Return);
    EXPECT_EQ(mNumber->GetValue(), 88.5);
    EXPECT_EQ(mChanges, 1);
}

TEST_F(ScrubField, EscapeTakesTypingBack)
{
    Focus(*mField);
    PressKey(*mField, Qt::Key_Return);
    TypeText(*mField, "5");
    PressKey(*mField, Qt::Key_Escape);
    EXPECT_TRUE(mField->isReadOnly());
    EXPECT_EQ(mField->text(), "1000.0");
    EXPECT_EQ(mChanges, 0);
    EXPECT_FALSE(mOpen.Dialog().IsClosed());
}

TEST_F(ScrubField, ArrowsAndPageKeysStepWithoutTyping)
{
    Focus(*mField);
    PressKey(*mField, Qt::Key_Up);
    EXPECT_EQ(mNumber->GetValue(), 1010.0);
    PressKey(*mField, Qt::Key_PageDown);
    EXPECT_EQ(mNumber->GetValue(), 910.0);
    EXPECT_TRUE(mField->isReadOnly());
}

TEST_F(ScrubField, ADisabledOneCannotBeDragged)
{
    mNumber->SetDisabled(true);
    ui_qt::Mouse mouse(*mField);
    mouse.Press();
    mouse.MoveBy(100);
    mouse.Release();
    EXPECT_EQ(mNumber->GetValue(), 1000.0);
    EXPECT_EQ(mChanges, 0);
}

} // namespace
