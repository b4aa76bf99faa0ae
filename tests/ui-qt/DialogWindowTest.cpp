#include "QtFixture.h"

#include <kestrel/qelui/dialogs/UI_MessageBox.h>
#include <kestrel/qelui/toolkit/Toolkit.h>
#include <kestrel/qelui/toolkit/UserInterface.h>

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QEventLoop>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QWheelEvent>
#include <atomic>
#include <functional>
#include <new>
#include <set>
#include <stdexcept>
#include <thread>

using kestrelqt::Click;
using kestrelqt::Focus;
using kestrelqt::PressKey;
using kestrelqt::TypeText;

namespace {

/// Runs the dialog modally on the Qt toolkit; `act` is called once with its window, from the event loop.
void RunWith(qelui::UI_Dialog& dialog, const std::function<void(QWidget&)>& act)
{
    auto& userInterface = qelui::UserInterface::Get();
    userInterface.SetToolkit(&ui_qt::Toolkit());
    QTimer::singleShot(0, qApp, [&] { act(*static_cast<QWidget*>(dialog.NativeWindow())); });
    // A dialog that nothing closes must not hang the test.
    QTimer guard;
    guard.setSingleShot(true);
    bool timedOut = false;
    QObject::connect(&guard, &QTimer::timeout, &guard, [&] {
        timedOut = true;
        dialog.Close();
    });
    guard.start(20000);
    const auto restore = [&] { userInterface.SetToolkit(nullptr); };
    try {
        dialog.RunModal();
    } catch (...) {
        restore();
        throw;
    }
    restore();
    EXPECT_FALSE(timedOut);
}

struct OkCancelDialog {
    OkCancelDialog() : dialog("dialog")
    {
        dialog.SetTitle("Settings & more");
        dialog.Add(std::make_unique<qelui::UI_Button>("act")).SetLabel("Act");
        dialog.Add(std::make_unique<qelui::UI_OkCancelRow>("row"));
        dialog.GetControl<qelui::UI_Button>("okButton").NotifyWhenChanged([this] {
            ++oks;
            dialog.Close();
        });
        dialog.GetControl<qelui::UI_Button>("cancelButton").NotifyWhenChanged([this] {
            ++cancels;
            dialog.Close();
        });
    }
    qelui::UI_Dialog dialog;
    int oks = 0;
    int cancels = 0;
};

QPushButton& ButtonOf(QWidget& window, const char* identifier)
{
    return *window.findChild<QPushButton*>(QString::fromLatin1(identifier));
}

TEST(DialogWindow, ClosingTheWindowIsOneCancel)
{
    OkCancelDialog test;
    RunWith(test.dialog, [](QWidget& window) {
        EXPECT_EQ(window.windowTitle(), "Settings & more");
        window.close();
    });
    EXPECT_EQ(test.cancels, 1);
    EXPECT_EQ(test.oks, 0);
    EXPECT_EQ(test.dialog.NativeWindow(), nullptr);
}

TEST(DialogWindow, EscapeIsOneCancel)
{
    OkCancelDialog test;
    RunWith(test.dialog, [](QWidget& window) { PressKey(ButtonOf(window, "act"), Qt::Key_Escape); });
    EXPECT_EQ(test.cancels, 1);
}

void Escape(QWidget& window)
{
    PressKey(*window.findChild<QPushButton*>("act"), Qt::Key_Escape);
}

TEST(DialogWindow, AfterAChangeTheSecondEscapeCancels)
{
    OkCancelDialog test;
    RunWith(test.dialog, [&test](QWidget& window) {
        ButtonOf(window, "act").click();
        Escape(window);
        EXPECT_FALSE(test.dialog.IsClosed());
        EXPECT_EQ(test.dialog.Status().Text(), "Close again to discard the changes");
        EXPECT_EQ(window.findChild<QLabel*>("statusLine")->text(), "Close again to discard the changes");
        window.close();
    });
    EXPECT_EQ(test.cancels, 1);
}

TEST(DialogWindow, AnActBetweenTwoEscapesTakesTheWarningBack)
{
    OkCancelDialog test;
    RunWith(test.dialog, [&test](QWidget& window) {
        ButtonOf(window, "act").click();
        Escape(window);
        ButtonOf(window, "act").click();
        EXPECT_EQ(test.dialog.Status().Report(), "");
        Escape(window);
        EXPECT_FALSE(test.dialog.IsClosed()) << "warned of the new change";
        Escape(window);
    });
    EXPECT_EQ(test.cancels, 1);
}

TEST(DialogWindow, AChangeThatWasTakenBackIsNone)
{
    OkCancelDialog test;
    std::string document = "as it was";
    test.dialog.SetDocument([&document] { return document; });
    test.dialog.GetControl<qelui::UI_Button>("act").NotifyWhenChanged(
        [&document] { document = document == "changed" ? "as it was" : "changed"; });
    RunWith(test.dialog, [&test](QWidget& window) {
        ButtonOf(window, "act").click();
        Escape(window);
        EXPECT_FALSE(test.dialog.IsClosed());
        ButtonOf(window, "act").click();
        Escape(window);
    });
    EXPECT_EQ(test.cancels, 1);
}

TEST(DialogWindow, ClosingTheWindowWarnsOfANumberThatIsTypedButNotEntered)
{
    OkCancelDialog test;
    auto& number = test.dialog.Add(std::make_unique<qelui::UI_NumberEdit>("number"));
    number.SetValue(720);
    test.dialog.SetDocument([&number] { return number.ShownText(); });
    RunWith(test.dialog, [&](QWidget& window) {
        auto& field = *window.findChild<QLineEdit*>("number");
        Focus(field);
        field.selectAll();
        TypeText(field, "960");
        window.close();
        EXPECT_FALSE(test.dialog.IsClosed());
        EXPECT_EQ(test.dialog.Status().Report(), "Close again to discard the changes");
        EXPECT_EQ(number.GetValue(), 960) << "what the field shows is what would be discarded";
        window.close();
    });
    EXPECT_EQ(test.cancels, 1);
}

TEST(DialogWindow, TheCancelButtonCancelsAtOnce)
{
    OkCancelDialog test;
    RunWith(test.dialog, [](QWidget& window) {
        ButtonOf(window, "act").click();
        ButtonOf(window, "cancelButton").click();
    });
    EXPECT_EQ(test.cancels, 1);
}

TEST(DialogWindow, ReturnPressesTheButtonThatHasTheFocus)
{
    OkCancelDialog test;
    RunWith(test.dialog, [](QWidget& window) {
        QPushButton& cancel = ButtonOf(window, "cancelButton");
        Focus(cancel);
        PressKey(cancel, Qt::Key_Return);
    });
    EXPECT_EQ(test.cancels, 1);
    EXPECT_EQ(test.oks, 0);
}

// Its Alt key presses a button without giving it the focus: the next keys and the status line would belong to
// another control.
TEST(DialogWindow, AButtonThatIsPressedHasTheFocus)
{
    OkCancelDialog test;
    test.dialog.GetControl<qelui::UI_Button>("act").SetTooltip("Acts.");
    RunWith(test.dialog, [&test](QWidget& window) {
        Focus(ButtonOf(window, "cancelButton"));
        ButtonOf(window, "act").animateClick();
        QTimer::singleShot(300, &window, [&] { // Qt shows the button pressed for 100 ms
            EXPECT_TRUE(ButtonOf(window, "act").hasFocus());
            EXPECT_EQ(test.dialog.Status().Explanation(), "Acts.");
            ButtonOf(window, "okButton").click();
        });
    });
    EXPECT_EQ(test.oks, 1);
}

TEST(DialogWindow, WhatAHandlerThrowsIsThrownAfterTheModalRun)
{
    OkCancelDialog test;
    bool cameBack = false;
    test.dialog.GetControl<qelui::UI_Button>("act").NotifyWhenChanged(
        [] { throw std::runtime_error("thrown"); });
    const auto run = [&] {
        RunWith(test.dialog, [&](QWidget& window) {
            QPushButton& act = ButtonOf(window, "act");
            Click(act, act.rect().center());
            cameBack = true; // through Qt, which must not see the exception
        });
    };
    try {
        run();
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "thrown");
    }
    EXPECT_TRUE(cameBack);
    EXPECT_EQ(test.dialog.NativeWindow(), nullptr) << "the window is gone by then";
    EXPECT_EQ(test.oks + test.cancels, 0);
}

/// Something in a window whose event handling fails.
class Faulty final : public QObject {
public:
    bool event(QEvent* /*event*/) override { throw std::bad_alloc(); }
};

/// @return whether the sender of the event came back, as Qt's event loop must.
bool SendFaultyEvent()
{
    Faulty faulty;
    QEvent event(QEvent::User);
    QApplication::sendEvent(&faulty, &event);
    return true;
}

TEST(DialogWindow, WhatAnEventThrowsIsThrownAfterTheModalRun)
{
    OkCancelDialog test;
    bool cameBack = false;
    EXPECT_THROW(RunWith(test.dialog, [&](QWidget&) { cameBack = SendFaultyEvent(); }), std::bad_alloc);
    EXPECT_TRUE(cameBack) << "through Qt, which must not see the exception";
    EXPECT_EQ(test.dialog.NativeWindow(), nullptr);
    EXPECT_EQ(test.oks + test.cancels, 0);
}

TEST(DialogWindow, WhatAnEventThrowsInANestedDialogEndsBoth)
{
    OkCancelDialog test;
    bool cameBack = false;
    bool isBoxOver = false;
    test.dialog.GetControl<qelui::UI_Button>("act").NotifyWhenChanged([&] {
        QTimer::singleShot(0, qApp, [&] { cameBack = SendFaultyEvent(); });
        qelui::dialogs::UI_MessageBox box(&test.dialog, "Title", "Text", qelui::dialogs::kButtonsYesNo,
                                          qelui::dialogs::kButtonYes, qelui::dialogs::kIconWarning);
        try {
            box.RunModal();
        } catch (const std::bad_alloc&) {
            isBoxOver = QApplication::activeModalWidget() == test.dialog.NativeWindow();
            throw;
        }
    });
    EXPECT_THROW(RunWith(test.dialog,
                         [](QWidget& window) {
                             QPushButton& act = ButtonOf(window, "act");
                             Click(act, act.rect().center());
                         }),
                 std::bad_alloc);
    EXPECT_TRUE(cameBack);
    EXPECT_TRUE(isBoxOver) << "the box is gone when its caller hears of it";
    EXPECT_EQ(test.oks + test.cancels, 0);
}

TEST(DialogWindow, APreviewThatCannotBeMadeLeavesTheDialogAsItIs)
{
    OkCancelDialog test;
    int documents = 0;
    test.dialog.SetDocument([&documents]() -> std::string {
        if (++documents == 3) {
            throw std::bad_alloc();
        }
        return {};
    });
    auto& userInterface = qelui::UserInterface::Get();
    userInterface.SetPreviewRenderer(
        {.reduce = [](const std::string& text) { return text + "reduced"; },
         .render =
             [](const std::string&) {
                 return qelui::PreviewPictures{.first = {1, 1, {0xFF336699}}, .last = {}, .lastFrame = 0};
             }});
    RunWith(test.dialog, [&](QWidget& window) {
        test.dialog.GetControl<qelui::UI_Button>("act").SetLabel("Changed");
        QTimer::singleShot(400, &window, [&] { // a preview waits until nothing has changed for a moment
            EXPECT_FALSE(test.dialog.IsClosed());
            ButtonOf(window, "okButton").click();
        });
    });
    userInterface.SetPreviewRenderer({});
    EXPECT_EQ(documents, 4) << "to see changes by, at first, after the change, at the end";
    EXPECT_EQ(test.oks, 1);
    EXPECT_EQ(test.cancels, 0);
}

TEST(DialogWindow, APreviewIsRenderedBesideTheUiThreadAndOnlyWhenThePictureChanges)
{
    OkCancelDialog test;
    std::string picture = "red";
    int notes = 0;
    test.dialog.SetDocument([&] { return picture + ' ' + std::to_string(++notes); });
    std::atomic<int> renderings = 0;
    std::atomic<bool> wasOnUiThread = false;
    const auto note = [&wasOnUiThread, uiThread = std::this_thread::get_id()] {
        wasOnUiThread = wasOnUiThread || std::this_thread::get_id() == uiThread;
    };
    std::string lastRendered; // read after the rendering thread is done
    auto& userInterface = qelui::UserInterface::Get();
    userInterface.SetPreviewRenderer({.reduce =
                                          [&note](const std::string& text) { // takes as long as the document is
                                              note();
                                              return text.substr(0, text.find(' '));
                                          },
                                      .render =
                                          [&](const std::string& reduced) {
                                              ++renderings;
                                              note();
                                              lastRendered = reduced;
                                              const std::uint32_t color =
                                                  reduced == "red" ? 0xFFFF0000U : 0xFF0000FFU;
                                              return qelui::PreviewPictures{.first = {1, 1, {color}},
                                                                            .last = {1, 1, {0xFF00FF00U}},
                                                                            .lastFrame = 9};
                                          }});
    RunWith(test.dialog, [&](QWidget& window) {
        auto& dialogWindow = static_cast<kestrelqt::DialogWindow&>(window);
        window.resize(1200, 400);
        const auto colors = [&dialogWindow] {
            const QImage image = dialogWindow.Picture().toImage();
            std::set<QRgb> found;
            for (int x = 0; x < image.width(); ++x) {
                found.insert(image.pixel(x, 40));
            }
            return found;
        };
        EXPECT_EQ(colors().count(0xFFFF0000), 1U);
        EXPECT_EQ(colors().count(0xFF00FF00), 1U) << "the last frame, beside the first one";
        EXPECT_EQ(renderings, 1);
        auto& act = test.dialog.GetControl<qelui::UI_Button>("act");
        act.SetLabel("Changed"); // the document has changed, the picture has not
        EXPECT_EQ(colors().count(0xFFFF0000), 1U);
        EXPECT_EQ(renderings, 1);
        picture = "blue";
        act.SetLabel("Changed again");
        EXPECT_EQ(colors().count(0xFF0000FF), 1U);
        EXPECT_EQ(renderings, 2);
        window.close();
    });
    userInterface.SetPreviewRenderer({});
    EXPECT_EQ(lastRendered, "blue");
    EXPECT_FALSE(wasOnUiThread);
    EXPECT_EQ(test.cancels, 1);
}

TEST(DialogWindow, APreviewComesBackAfterOneThatCouldNotBeMade)
{
    OkCancelDialog test;
    int notes = 0;
    test.dialog.SetDocument([&notes] { return std::to_string(++notes); });
    std::atomic<int> reductions = 0;
    auto& userInterface = qelui::UserInterface::Get();
    userInterface.SetPreviewRenderer(
        {.reduce = [&reductions](const std::string& /*text*/) -> std::string {
             if (++reductions == 2) {
                 throw std::bad_alloc();
             }
             return "always the same";
         },
         .render =
             [](const std::string& /*reduced*/) {
                 return qelui::PreviewPictures{.first = {1, 1, {0xFFFF0000U}}, .last = {}, .lastFrame = 0};
             }});
    RunWith(test.dialog, [&test](QWidget& window) {
        auto& dialogWindow = static_cast<kestrelqt::DialogWindow&>(window);
        window.resize(1200, 400);
        const auto isRed = [&dialogWindow] {
            const QImage image = dialogWindow.Picture().toImage();
            bool isFound = false;
            for (int x = 0; x < image.width(); ++x) {
                isFound = isFound || image.pixel(x, 40) == 0xFFFF0000;
            }
            return isFound;
        };
        EXPECT_TRUE(isRed());
        auto& act = test.dialog.GetControl<qelui::UI_Button>("act");
        act.SetLabel("Changed");
        EXPECT_FALSE(isRed()) << "there is no memory for it";
        act.SetLabel("Changed again");
        EXPECT_TRUE(isRed());
        window.close();
    });
    userInterface.SetPreviewRenderer({});
}

TEST(DialogWindow, ABoxAnswersWithTheButtonPressedAndNoWhenClosed)
{
    ui_qt::Toolkit();
    qelui::MessageBoxRequest request;
    request.title = "Title";
    request.text = "Again?";
    request.buttonSet = qelui::dialogs::kButtonsYesNo;
    request.defaultButton = qelui::dialogs::kButtonYes;
    request.icon = qelui::dialogs::kIconWarning;
    const auto answer = [&request](Qt::Key key) {
        QTimer::singleShot(0, qApp, [key] { PressKey(*QApplication::activeModalWidget(), key); });
        return ui_qt::Toolkit().RunMessageBox(request);
    };
    EXPECT_EQ(answer(Qt::Key_Return), qelui::dialogs::kButtonYes) << "the default button";
    EXPECT_EQ(answer(Qt::Key_Escape), qelui::dialogs::kButtonNo);
    request.defaultButton = qelui::dialogs::kButtonNo;
    EXPECT_EQ(answer(Qt::Key_Return), qelui::dialogs::kButtonNo);
}

class Popup : public testing::Test {
protected:
    void SetUp() override
    {
        mPopup = &mOpen.Add<qelui::UI_Popup>("popup", "Choice:");
        for (const char* const item :
             {"Apple", "Banana", "Cherry", "Damson with a name that is far from short"}) {
            mPopup->AddItem(item);
        }
        mPopup->SetItemEnabled(1, false);
        mPopup->SetValue(0);
        mPopup->NotifyWhenChanged([this] { ++mChanges; });
        mOpen.Open();
        mBox = &mOpen.Find<QComboBox>("popup");
        Focus(*mBox);
    }

    void ClickItem(int index)
    {
        mBox->showPopup();
        ui_qt::Settle();
        const QRect place = mBox->view()->visualRect(mBox->model()->index(index, 0));
        Click(*mBox->view()->viewport(), place.center());
        ui_qt::Settle();
    }

    ui_qt::OpenDialog mOpen;
    qelui::UI_Popup* mPopup = nullptr;
    QComboBox* mBox = nullptr;
    int mChanges = 0;
};

TEST_F(Popup, IgnoresAClickOnADisabledItem)
{
    ClickItem(1);
    mBox->hidePopup();
    EXPECT_EQ(mPopup->GetValue(), 0);
    EXPECT_EQ(mBox->currentIndex(), 0);
    EXPECT_EQ(mChanges, 0);
}

TEST_F(Popup, ArrowsSkipDisabledItems)
{
    PressKey(*mBox, Qt::Key_Down);
    EXPECT_EQ(mPopup->GetValue(), 2);
    EXPECT_EQ(mChanges, 1);
    PressKey(*mBox, Qt::Key_Up);
    EXPECT_EQ(mPopup->GetValue(), 0);
}

TEST_F(Popup, TypingFindsAnItemButNotADisabledOne)
{
    TypeText(*mBox, "c");
    EXPECT_EQ(mPopup->GetValue(), 2);
    PressKey(*mBox, Qt::Key_Home);
    EXPECT_EQ(mPopup->GetValue(), 0);
}

TEST_F(Popup, ChoosingTheShownItemAgainCounts)
{
    mBox->showPopup();
    ui_qt::Settle();
    PressKey(*mBox->view(), Qt::Key_Return);
    ui_qt::Settle();
    EXPECT_EQ(mPopup->GetValue(), 0);
    EXPECT_EQ(mChanges, 1);
}

TEST_F(Popup, FollowsCodeThatChangesItemsAndChoice)
{
    mPopup->RemoveAllItems();
    mPopup->AddItem("One");
    EXPECT_EQ(mBox->count(), 1);
    EXPECT_EQ(mBox->currentIndex(), -1) << "nothing is chosen until somebody does";
    mPopup->SetValue(0);
    EXPECT_EQ(mBox->currentText(), "One");
    EXPECT_EQ(mChanges, 0);
}

TEST_F(Popup, TypingFindsLettersInsideNames)
{
    TypeText(*mBox, "short");
    EXPECT_EQ(mPopup->GetValue(), 3);
}

TEST_F(Popup, TypingFindsLettersInsideNamesInTheOpenList)
{
    mBox->showPopup();
    ui_qt::Settle();
    TypeText(*mBox->view(), "err");
    EXPECT_EQ(mBox->view()->currentIndex().row(), 2) << "Cherry";
    PressKey(*mBox->view(), Qt::Key_Return);
    EXPECT_EQ(mPopup->GetValue(), 2);
}

TEST_F(Popup, ReturnOpensTheListAndPressesNothing)
{
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        PressKey(*mBox, key);
        ui_qt::Settle();
        EXPECT_TRUE(mBox->view()->isVisible());
        mBox->hidePopup();
    }
    EXPECT_EQ(mChanges, 0);
}

TEST_F(Popup, TheWheelChangesNothingWhileTheListIsClosed)
{
    ASSERT_TRUE(mBox->hasFocus());
    for (const int notch : {-120, 120, -240}) {
        QWheelEvent event(QPointF(5, 5), mBox->mapToGlobal(QPointF(5, 5)), {}, {0, notch}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(mBox, &event);
        EXPECT_FALSE(event.isAccepted()) << "the dialog scrolls instead";
    }
    EXPECT_EQ(mPopup->GetValue(), 0);
    EXPECT_EQ(mChanges, 0);
}

TEST_F(Popup, ShrinksBelowItsLongestItemAndShowsThatInItsList)
{
    const int widest = mBox->fontMetrics().horizontalAdvance(mBox->itemText(3));
    EXPECT_LT(mBox->minimumSizeHint().width(), widest);
    mBox->setFixedWidth(mBox->minimumSizeHint().width());
    mBox->showPopup();
    ui_qt::Settle();
    EXPECT_GT(mBox->view()->width(), widest);
    mBox->hidePopup();
    mPopup->SetValue(3);
    EXPECT_TRUE(mBox->toolTip().startsWith(mBox->itemText(3))) << "the whole name of what is cut";
}

TEST_F(Popup, IsWideEnoughForItsLongestItemWhereThereIsRoom)
{
    int widest = 0;
    for (int index = 0; index < mBox->count(); ++index) {
        widest = qMax(widest, mBox->fontMetrics().horizontalAdvance(mBox->itemText(index)));
    }
    EXPECT_GT(mBox->width(), widest);
}

// In a column of its own a popup fills its card; Qt would shrink it a moment after a change of its items.
TEST(PopupInARow, KeepsTheWidthOfItsCardWhenItsItemsChange)
{
    ui_qt::OpenDialog open;
    auto& row = open.Dialog().Add(std::make_unique<qelui::UI_Group>("row"));
    row.SetOrientation(qelui::Orientation::Row);
    row.SetBorder(false);
    auto& card = row.Add(std::make_unique<qelui::UI_Group>("card"));
    auto& popup = card.Add(std::make_unique<qelui::UI_Popup>("popup"));
    popup.SetLabel("Choice:");
    popup.AddItem("One");
    auto& wide = card.Add(std::make_unique<qelui::UI_NumberEdit>("wide"));
    wide.SetMinSize(400, 0);
    open.Open();
    const auto& box = open.Find<QComboBox>("popup");
    const int width = box.width();
    ASSERT_GE(width, 400) << "as wide as the field below it";
    popup.SetItemEnabled(0, false);
    popup.AddItem("Another");
    QEventLoop wait;
    QTimer::singleShot(60, &wait, &QEventLoop::quit); // Qt's moment is 20 ms
    wait.exec();
    EXPECT_EQ(box.width(), width);
}

TEST(Pressable, CheckBoxEntersWhatAClickMakesOfIt)
{
    ui_qt::OpenDialog open;
    auto& box = open.Add<qelui::UI_CheckBox>("box", "Salt & pepper");
    int changes = 0;
    box.NotifyWhenChanged([&changes] { ++changes; });
    open.Open();
    auto& widget = open.Find<QCheckBox>("box");
    Click(widget, QPoint(8, widget.height() / 2));
    EXPECT_TRUE(box.IsChecked());
    PressKey(widget, Qt::Key_Space);
    EXPECT_FALSE(box.IsChecked());
    EXPECT_EQ(changes, 2);
    box.SetChecked(true);
    EXPECT_TRUE(widget.isChecked());
    EXPECT_EQ(changes, 2) << "code does not notify";
}

TEST(Pressable, RadioButtonsExcludeOneAnotherForAPersonOnly)
{
    ui_qt::OpenDialog open;
    auto& group = open.Dialog().Add(std::make_unique<qelui::UI_RadioGroup>("group"));
    auto& first = group.Add(std::make_unique<qelui::UI_RadioButton>("first"));
    auto& second = group.Add(std::make_unique<qelui::UI_RadioButton>("second"));
    first.SetValue(1);
    second.SetValue(1);
    int changes = 0;
    second.NotifyWhenChanged([&changes] { ++changes; });
    open.Open();
    auto& firstWidget = open.Find<QRadioButton>("first");
    auto& secondWidget = open.Find<QRadioButton>("second");
    EXPECT_TRUE(firstWidget.isChecked());
    EXPECT_TRUE(secondWidget.isChecked());
    Click(firstWidget, QPoint(8, firstWidget.height() / 2));
    EXPECT_TRUE(firstWidget.isChecked()) << "chosen already, so nothing happens";
    EXPECT_TRUE(secondWidget.isChecked());
    first.SetValue(0);
    second.SetValue(0);
    Click(secondWidget, QPoint(8, secondWidget.height() / 2));
    EXPECT_EQ(second.GetValue(), 1);
    EXPECT_FALSE(firstWidget.isChecked());
    EXPECT_EQ(changes, 1);
}

} // namespace
