#include <kestrel/qelcore/exceptions/Exceptions.h>
#include <kestrel/qelui/controls/UI_Button.h>
#include <kestrel/qelui/controls/UI_Group.h>
#include <kestrel/qelui/controls/UI_Number.h>
#include <kestrel/qelui/controls/UI_Popup.h>
#include <kestrel/qelui/controls/UI_StaticText.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

using namespace qelui;

/// Counts what a control notifies.
struct Count {
    explicit Count(UI_ControlView& control)
    {
        control.NotifyWhenChanged([this] { ++times; });
    }
    int times = 0;
};

TEST(Popup, CodeChoosesDisabledItemsAndNobodyIsNotified)
{
    UI_Popup popup("p");
    const Count count(popup);
    EXPECT_EQ(popup.AddItem("a"), 0);
    EXPECT_EQ(popup.AddItem("c", -1), 1);
    EXPECT_EQ(popup.AddItem("b", 1), 1);
    EXPECT_EQ(popup.GetValue(), -1);
    popup.SetItemEnabled(1, false);
    popup.SetItemEnabled(17, false);
    popup.SetValue(1);
    EXPECT_EQ(popup.ShownText(), "b");
    EXPECT_EQ(count.times, 0);
}

TEST(Popup, AnIndexWithoutItemChoosesNone)
{
    UI_Popup popup("p");
    popup.AddItem("a");
    popup.SetValue(0);
    popup.SetValue(1);
    EXPECT_EQ(popup.GetValue(), -1);
    EXPECT_EQ(popup.ShownText(), "");
    popup.SetValue(-7);
    EXPECT_EQ(popup.GetValue(), -1);
}

TEST(Popup, APersonChoosesEnabledItemsOnly)
{
    UI_Popup popup("p");
    const Count count(popup);
    popup.AddItem("a");
    popup.AddItem("b");
    popup.SetItemEnabled(1, false);
    popup.Choose(1);
    popup.Choose(2);
    popup.Choose(-1);
    EXPECT_EQ(popup.GetValue(), -1);
    EXPECT_EQ(count.times, 0);
    popup.Choose(0);
    // Also for the item that is chosen already: the setting behind it may have another value.
    popup.Choose(0);
    EXPECT_EQ(count.times, 2);
    popup.SetDisabled(true);
    popup.Choose(0);
    EXPECT_EQ(count.times, 2);
}

TEST(CheckBox, NotifiesAChangeOnly)
{
    UI_CheckBox box("c");
    const Count count(box);
    box.EnterChecked(false);
    EXPECT_EQ(count.times, 0);
    box.EnterChecked(true);
    EXPECT_TRUE(box.IsChecked());
    EXPECT_EQ(count.times, 1);
    box.SetChecked(false);
    EXPECT_EQ(count.times, 1);
}

/// A radio group with an inner arranging group and an inner radio group.
struct Radios {
    UI_RadioGroup group{"g"};
    UI_RadioButton& first = group.Add(std::make_unique<UI_RadioButton>("first"));
    UI_Group& row = group.Add(std::make_unique<UI_Group>(""));
    UI_RadioButton& second = row.Add(std::make_unique<UI_RadioButton>("second"));
    UI_RadioGroup& inner = group.Add(std::make_unique<UI_RadioGroup>("inner"));
    UI_RadioButton& other = inner.Add(std::make_unique<UI_RadioButton>("other"));
};

TEST(RadioButton, APressSwitchesOffTheRestOfItsGroupAndNotifiesOnce)
{
    Radios radios;
    radios.first.SetValue(1);
    radios.other.SetValue(1);
    const Count first(radios.first);
    const Count second(radios.second);
    radios.second.Press();
    EXPECT_EQ(radios.first.GetValue(), 0);
    EXPECT_EQ(radios.second.GetValue(), 1);
    EXPECT_EQ(radios.other.GetValue(), 1) << "another group's button";
    EXPECT_EQ(first.times, 0);
    EXPECT_EQ(second.times, 1);
    radios.second.Press();
    EXPECT_EQ(second.times, 1) << "chosen already";
}

TEST(RadioButton, CodeMayChooseNoneOrSeveral)
{
    Radios radios;
    radios.first.SetValue(1);
    radios.second.SetValue(1);
    EXPECT_EQ(radios.first.GetValue() + radios.second.GetValue(), 2);
    radios.first.SetValue(0);
    radios.second.SetValue(0);
    EXPECT_EQ(radios.first.GetValue() + radios.second.GetValue(), 0);
}

TEST(Group, DisablesWhatItHolds)
{
    Radios radios;
    radios.group.SetDisabled(true);
    EXPECT_FALSE(radios.second.IsEnabled());
    radios.second.Press();
    EXPECT_EQ(radios.second.GetValue(), 0);
    radios.group.SetDisabled(false);
    radios.row.SetDisabled(true);
    EXPECT_FALSE(radios.second.IsEnabled());
    EXPECT_TRUE(radios.first.IsEnabled());
}

TEST(Group, FindsControlsByIdentifierAndClass)
{
    Radios radios;
    EXPECT_EQ(radios.group.FindControl("second"), &radios.second);
    EXPECT_EQ(radios.group.FindControl(""), nullptr);
    EXPECT_EQ(radios.group.FindControl("third"), nullptr);
    EXPECT_EQ(&radios.group.GetControl<UI_RadioButton>("other"), &radios.other);
}

TEST(Group, NamesTheTypeOfAControlThatItLacks)
{
    Radios radios;
    for (const char* const identifier : {"third", "second"}) {
        try {
            (void)radios.group.GetControl<UI_Popup>(identifier);
            ADD_FAILURE() << identifier << " was found as a popup";
        } catch (const qelcore::null_pointer_exception& exception) {
            EXPECT_NE(std::string(exception.what()).find("qelui::UI_Popup"), std::string::npos)
                << exception.what();
            EXPECT_NE(std::string(exception.what()).find(identifier), std::string::npos) << exception.what();
        }
    }
}

TEST(Group, ListsControlsInReadingOrder)
{
    Radios radios;
    const std::vector<UI_ControlView*> wanted{&radios.first, &radios.row, &radios.second, &radios.inner,
                                              &radios.other};
    EXPECT_EQ(radios.group.AllControls(), wanted);
}

TEST(OkCancelRow, BringsItsTwoButtons)
{
    UI_OkCancelRow row("");
    EXPECT_EQ(row.GetControl<UI_Button>("okButton").Label(), "OK");
    EXPECT_EQ(row.GetControl<UI_Button>("cancelButton").Label(), "Cancel");
}

TEST(Button, ADisabledOneIsNotPressed)
{
    UI_Button button("b");
    const Count count(button);
    button.Press();
    button.SetDisabled(true);
    button.Press();
    EXPECT_EQ(count.times, 1);
}

TEST(StaticText, ShowsItsValueNotItsLabel)
{
    UI_StaticText text("t");
    text.SetLabel("Path:");
    EXPECT_EQ(text.ShownText(), "");
    text.SetValue("/a");
    EXPECT_EQ(text.ShownText(), "/a");
}

} // namespace
