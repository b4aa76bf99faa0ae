#include "FakeToolkit.h"

#include <kestrel/qelcore/logging/Log.h>
#include <kestrel/qelui/controls/UI_Button.h>
#include <kestrel/qelui/controls/UI_Number.h>

#include <gtest/gtest.h>
#include <support/ScopedVariable.h>

#include <functional>
#include <memory>
#include <new>
#include <stdexcept>
#include <vector>

namespace {

using namespace qelui;
using tests::FakeToolkit;

struct SmallDialog {
    SmallDialog()
    {
        ok.NotifyWhenChanged([this] { dialog.Close(); });
        cancel.NotifyWhenChanged([this] {
            ++cancels;
            dialog.Close();
        });
    }
    UI_Dialog dialog{"d"};
    UI_Button& button = dialog.Add(std::make_unique<UI_Button>("b"));
    UI_NumberEdit& number = dialog.Add(std::make_unique<UI_NumberEdit>("n"));
    UI_OkCancelRow& row = dialog.Add(std::make_unique<UI_OkCancelRow>(""));
    UI_Button& ok = row.GetControl<UI_Button>("okButton");
    UI_Button& cancel = row.GetControl<UI_Button>("cancelButton");
    int cancels = 0;
};

/// Notes what a toolkit would hear.
struct Recorder final : WindowObserver {
    void OnControlChanged(UI_ControlView& control) override { changed.push_back(&control); }
    void OnDialogClosed() override { ++closed; }
    std::vector<UI_ControlView*> changed;
    int closed = 0;
};

TEST(Dialog, OkClosesWithoutCancel)
{
    SmallDialog small;
    const FakeToolkit toolkit([&](UI_Dialog& dialog) {
        EXPECT_EQ(&dialog, &small.dialog);
        small.ok.Press();
        EXPECT_TRUE(dialog.IsClosed());
    });
    small.dialog.RunModal();
    EXPECT_EQ(small.cancels, 0);
}

TEST(Dialog, ATwoWayCancelPressesTheButtonOnce)
{
    SmallDialog small;
    const FakeToolkit toolkit([](UI_Dialog& dialog) {
        dialog.RequestCancel();
        dialog.RequestCancel();
    });
    small.dialog.RunModal();
    EXPECT_EQ(small.cancels, 1);
}

TEST(Dialog, AToolkitThatReturnsEarlyCancels)
{
    SmallDialog small;
    const FakeToolkit toolkit;
    small.dialog.RunModal();
    EXPECT_EQ(small.cancels, 1);
    EXPECT_TRUE(small.dialog.IsClosed());
}

TEST(Dialog, CancelClosesAlsoWithoutAButtonOrWithADisabledOne)
{
    UI_Dialog bare("d");
    bare.RequestCancel();
    EXPECT_TRUE(bare.IsClosed());
    SmallDialog small;
    small.cancel.SetDisabled(true);
    small.dialog.RequestCancel();
    EXPECT_TRUE(small.dialog.IsClosed());
    EXPECT_EQ(small.cancels, 0);
}

TEST(Dialog, WhatAHandlerThrowsComesOutOfTheModalRun)
{
    SmallDialog small;
    small.button.NotifyWhenChanged([] { throw std::runtime_error("handler"); });
    const FakeToolkit toolkit([&](UI_Dialog& dialog) {
        EXPECT_NO_THROW(small.button.Press());
        EXPECT_TRUE(dialog.IsClosed());
        // Late events have no receiver.
        small.button.Press();
        small.cancel.Press();
    });
    try {
        small.dialog.RunModal();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "handler");
    }
    EXPECT_EQ(small.cancels, 0);
}

TEST(Dialog, AHandlerThatThrowsEndsTheHandlersOfItsControl)
{
    SmallDialog small;
    int later = 0;
    small.button.NotifyWhenChanged([] { throw 5; });
    small.button.NotifyWhenChanged([&] { ++later; });
    const FakeToolkit toolkit([&](UI_Dialog&) { small.button.Press(); });
    EXPECT_THROW(small.dialog.RunModal(), int);
    EXPECT_EQ(later, 0);
}

TEST(Dialog, TheObserverHearsOfCodeAndPersonAlikeAndOfTheEndOnce)
{
    SmallDialog small;
    Recorder recorder;
    const FakeToolkit toolkit([&](UI_Dialog& dialog) {
        dialog.SetObserver(&recorder);
        small.number.SetValue(1.0);
        small.number.EnterValue(2.0);
        small.button.SetLabel("x");
        small.ok.Press();
        dialog.Close();
        dialog.SetObserver(nullptr);
    });
    small.dialog.RunModal();
    const std::vector<UI_ControlView*> wanted{&small.number, &small.number, &small.button};
    EXPECT_EQ(recorder.changed, wanted);
    EXPECT_EQ(recorder.closed, 1);
}

TEST(Dialog, TheDocumentAtItsEndIsKeptHoweverItCloses)
{
    const auto documentAfter = [](const std::function<void(SmallDialog&)>& act) {
        SmallDialog small;
        small.dialog.SetDocument([&small] { return "n is " + std::to_string(small.number.GetValue()); });
        small.button.NotifyWhenChanged([] { throw std::runtime_error("handler"); });
        const FakeToolkit toolkit([&](UI_Dialog&) {
            small.number.EnterValue(5.0);
            act(small);
        });
        try {
            small.dialog.RunModal();
        } catch (const std::runtime_error&) { // the case below whose handler throws
        }
        return UserInterface::Get().LastDocument().value_or("none");
    };
    EXPECT_EQ(documentAfter([](SmallDialog& small) { small.ok.Press(); }), "n is 5.000000");
    EXPECT_EQ(documentAfter([](SmallDialog& small) { small.cancel.Press(); }), "n is 5.000000");
    EXPECT_EQ(documentAfter([](SmallDialog& small) { small.button.Press(); }), "n is 5.000000");
    EXPECT_EQ(documentAfter([](SmallDialog& small) { small.dialog.SetDocument({}); }), "none");
}

TEST(Dialog, ADocumentThatCannotBeMadeIsNoneAndChangesNothing)
{
    SmallDialog small;
    small.dialog.SetDocument([]() -> std::string { throw std::bad_alloc(); });
    const FakeToolkit toolkit([&](UI_Dialog&) { small.ok.Press(); });
    std::string logged;
    const qelcore::logging::ScopedListener listener(
        [&](const qelcore::logging::Message& message) { logged += message.text; });
    EXPECT_NO_THROW(small.dialog.RunModal());
    EXPECT_FALSE(UserInterface::Get().LastDocument());
    EXPECT_FALSE(logged.empty());
}

TEST(FileDialog, HandsItsRequestToTheToolkitAndKeepsTheAnswer)
{
    FakeToolkit toolkit;
    toolkit.files = {u"/a/b.json", std::nullopt};
    dialogs::OS_FileOpenDialog open(nullptr);
    open.AddFilter({"Swatch Colors File", "json"});
    EXPECT_EQ(open.RunModal(), 1);
    EXPECT_EQ(open.GetFile().FullPath(), u"/a/b.json");
    dialogs::OS_FileSaveAsDialog save(nullptr);
    save.SetProposedName(u"name");
    EXPECT_EQ(save.RunModal(), 0);
    EXPECT_EQ(save.GetFile().FullPath(), u"");
    ASSERT_EQ(toolkit.fileRequests.size(), 2U);
    EXPECT_FALSE(toolkit.fileRequests[0].saveAs);
    EXPECT_EQ(toolkit.fileRequests[0].filters.at(0).extension, "json");
    EXPECT_TRUE(toolkit.fileRequests[1].saveAs);
    EXPECT_EQ(toolkit.fileRequests[1].proposedName, u"name");
}

TEST(ColorPicker, ACancelKeepsTheColorThatWasSet)
{
    FakeToolkit toolkit;
    toolkit.colors = {std::nullopt, sharedui::PickerColor{1.5F, -2.0F, 0.1F, 0.0F}};
    sharedui::ColorPickerDialog picker({}, nullptr, /*offersAlpha=*/true);
    picker.SetColor({0.1F, 0.2F, 0.3F, 0.4F});
    EXPECT_FALSE(picker.RunModal());
    EXPECT_EQ(picker.GetColor(), (sharedui::PickerColor{0.1F, 0.2F, 0.3F, 0.4F}));
    EXPECT_TRUE(picker.RunModal());
    EXPECT_EQ(picker.GetColor(), (sharedui::PickerColor{1.5F, -2.0F, 0.1F, 0.0F}));
}

TEST(ColorPicker, KeepsAlphaWhereItIsNotOffered)
{
    FakeToolkit toolkit;
    toolkit.colors = {sharedui::PickerColor{1.5F, -2.0F, 0.1F, 0.0F}};
    sharedui::ColorPickerDialog picker({}, nullptr, /*offersAlpha=*/false);
    picker.SetColor({0.1F, 0.2F, 0.3F, 0.4F});
    EXPECT_TRUE(picker.RunModal());
    EXPECT_EQ(picker.GetColor(), (sharedui::PickerColor{1.5F, -2.0F, 0.1F, 0.4F}));
}

/// The variables that choose a toolkit; null for those that are absent.
class Environment {
public:
    Environment(const char* userInterface, const char* script, const char* display)
        : mUserInterface("KESTREL_UI", userInterface), mScript("KESTREL_UI_SCRIPT", script),
          mDisplay("DISPLAY", display)
    {
    }

private:
    test::ScopedVariable mUserInterface;
    test::ScopedVariable mScript;
    test::ScopedVariable mDisplay;
    test::ScopedVariable mWayland{"WAYLAND_DISPLAY", nullptr};
};

/// The line with which no toolkit is had; empty where one is.
std::string Refusal()
{
    try {
        (void)UserInterface::Get().GetToolkit();
        return {};
    } catch (const NoToolkitError& error) {
        return error.what();
    }
}

TEST(UserInterface, WithoutDisplayAndScriptThereIsNoToolkit)
{
    const Environment environment(nullptr, nullptr, nullptr);
    EXPECT_NE(Refusal().find("there is no display"), std::string::npos) << Refusal();
    SmallDialog small;
    EXPECT_THROW(small.dialog.RunModal(), NoToolkitError);
}

TEST(UserInterface, WindowsThatAreNotInstalledAreNamedWithTheirPackage)
{
    // This test program links the dialogs' objects, so no toolkit's library stands beside them.
    UserInterface::Get().SetWindowsPackage("some-package");
    for (const char* const wanted : {"qt", static_cast<const char*>(nullptr)}) {
        const Environment environment(wanted, nullptr, ":1");
        EXPECT_NE(Refusal().find("the windows are not installed (they are in the package some-package)"),
                  std::string::npos)
            << Refusal();
    }
    UserInterface::Get().SetWindowsPackage({});
    const Environment environment(nullptr, nullptr, nullptr);
    EXPECT_NE(Refusal().find("there is no display"), std::string::npos);
    EXPECT_NE(Refusal().find("the windows are not installed;"), std::string::npos) << Refusal();
}

TEST(UserInterface, WithoutDisplayANamedScriptIsEnough)
{
    const Environment environment(nullptr, "x.script", nullptr);
    EXPECT_EQ(Refusal(), "");
    EXPECT_EQ(UserInterface::Get().Script(), "x.script");
}

TEST(UserInterface, AScriptSetInTheProcessWinsOverTheEnvironment)
{
    const Environment environment("scripted", nullptr, nullptr);
    EXPECT_NE(Refusal().find("no script is named"), std::string::npos) << Refusal();
    UserInterface::Get().SetScript("mine.script");
    EXPECT_EQ(Refusal(), "");
    EXPECT_EQ(UserInterface::Get().Script(), "mine.script");
    UserInterface::Get().SetScript({});
}

TEST(UserInterface, AnUnknownNameIsRefusedByName)
{
    const Environment environment("motif", "x.script", nullptr);
    EXPECT_NE(Refusal().find("\"motif\""), std::string::npos) << Refusal();
}

} // namespace
