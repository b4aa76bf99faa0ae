#include "QtFixture.h"

#include <kestrel/qellumenfactory/LayoutBuilder.h>
#include <kestrel/qellumenfactory/Parser.h>
#include <kestrel/qelui/controls/UI_StaticText.h>
#include <kestrel/qt/controls/AltLetters.h>
#include <kestrel/qt/controls/ElidedLabel.h>
#include <kestrel/qt/dialogs/ColorChips.h>
#include <kestrel/qt/dialogs/ColorPickerWindow.h>
#include <kestrel/qt/dialogs/StatusBar.h>

#include <support/TemporaryFolder.h>

#include <QAccessible>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

using kestrelqt::PressKey;

namespace {

bool TakesTab(const QWidget& widget)
{
    return (widget.focusPolicy() & Qt::TabFocus) != 0 && widget.isEnabled() && widget.isVisible() &&
           widget.focusProxy() == nullptr;
}

/// Everything in the window that the tab key should reach.
std::vector<QWidget*> Reachable(const QWidget& window)
{
    std::vector<QWidget*> widgets;
    for (QWidget* const widget : window.findChildren<QWidget*>()) {
        if (TakesTab(*widget)) {
            widgets.push_back(widget);
        }
    }
    return widgets;
}

std::string Describe(const QWidget& widget)
{
    return std::string(widget.metaObject()->className()) + " \"" + widget.objectName().toStdString() + '"';
}

/// Name of its own, or a label that points at it.
void ExpectNamed(QWidget& widget)
{
    QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(&widget);
    ASSERT_NE(interface, nullptr) << Describe(widget);
    const bool named = !interface->text(QAccessible::Name).trimmed().isEmpty();
    EXPECT_TRUE(named || !interface->relations(QAccessible::Label).isEmpty())
        << Describe(widget) << " has neither a name nor a label";
    EXPECT_TRUE(interface->state().focusable) << Describe(widget);
}

/// Where the tab key leads, from the first control round to it again.
std::vector<QWidget*> WalkByTab(QWidget& first)
{
    std::vector<QWidget*> visited;
    kestrelqt::Focus(first);
    constexpr std::size_t kMost = 200;
    for (QWidget* at = &first; visited.size() < kMost;) {
        visited.push_back(at);
        PressKey(*at, Qt::Key_Tab);
        at = QApplication::focusWidget();
        if (at == nullptr || at == &first) {
            break;
        }
    }
    return visited;
}

class SettingsDialog : public testing::Test {
protected:
    void SetUp() override
    {
        ui_qt::Toolkit();
        mDialog = qellumenfactory::BuildDialog(
            qellumenfactory::ParseLayout(test::ReadFile(SETTINGS_LAYOUT), "settings").root);
        for (qelui::UI_ControlView* const control : mDialog->AllControls()) {
            if (auto* const popup = dynamic_cast<qelui::UI_Popup*>(control)) {
                popup->AddItem("An item of a usual length");
                popup->SetValue(0);
            }
        }
        mWindow = std::make_unique<kestrelqt::DialogWindow>(*mDialog);
        ui_qt::ShowAndActivate(*mWindow);
    }

    std::unique_ptr<qelui::UI_Dialog> mDialog;
    std::unique_ptr<kestrelqt::DialogWindow> mWindow;
};

TEST_F(SettingsDialog, EveryFocusableControlHasANameOrALabel)
{
    const auto widgets = Reachable(*mWindow);
    ASSERT_GT(widgets.size(), 20U) << "the walk found hardly anything";
    for (QWidget* const widget : widgets) {
        ExpectNamed(*widget);
    }
}

TEST_F(SettingsDialog, EveryControlExplainsItself)
{
    for (qelui::UI_ControlView* const control : mDialog->AllControls()) {
        const auto* const binding = mWindow->BindingOf(*control);
        if (binding != nullptr && !control->Tooltip().empty()) {
            EXPECT_TRUE(binding->Widget()->toolTip().contains(QString::fromStdString(control->Tooltip())))
                << control->Identifier();
        }
    }
}

TEST_F(SettingsDialog, TabReachesEveryControlOnceInTheLayoutsOrder)
{
    std::vector<QWidget*> wanted;
    for (qelui::UI_ControlView* const control : mDialog->AllControls()) {
        const auto* const binding = mWindow->BindingOf(*control);
        if (binding != nullptr && control->Kind() != qelui::ControlKind::StaticText) {
            wanted.push_back(binding->Widget());
        }
    }
    const auto visited = WalkByTab(*wanted.front());
    ASSERT_EQ(visited.size(), wanted.size());
    for (std::size_t at = 0; at < wanted.size(); ++at) {
        EXPECT_EQ(visited[at], wanted[at])
            << at << ": " << Describe(*visited[at]) << ", not " << Describe(*wanted[at]);
    }
    auto reachable = Reachable(*mWindow);
    auto walked = visited;
    std::sort(reachable.begin(), reachable.end());
    std::sort(walked.begin(), walked.end());
    EXPECT_EQ(walked, reachable) << "the tab key misses something, or something nameless takes it";
}

// As one reads: a step never leads up unless it leads to the right, into the next column.
TEST_F(SettingsDialog, TabOrderReadsDownAndToTheRight)
{
    auto widgets =
        WalkByTab(*mWindow->BindingOf(mDialog->GetControl<qelui::UI_Popup>("pixelFormatPopupID"))->Widget());
    for (std::size_t at = 1; at < widgets.size(); ++at) {
        const QPoint from = widgets[at - 1]->mapTo(mWindow.get(), QPoint(0, 0));
        const QPoint to = widgets[at]->mapTo(mWindow.get(), QPoint(0, 0));
        EXPECT_TRUE(to.y() > from.y() || to.x() > from.x())
            << Describe(*widgets[at - 1]) << " to " << Describe(*widgets[at]);
    }
}

TEST_F(SettingsDialog, ShiftTabLeadsBack)
{
    auto& first = *mWindow->BindingOf(mDialog->GetControl<qelui::UI_Popup>("pixelFormatPopupID"))->Widget();
    kestrelqt::Focus(first);
    PressKey(first, Qt::Key_Tab);
    QWidget* const second = QApplication::focusWidget();
    ASSERT_NE(second, &first);
    PressKey(*second, Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(QApplication::focusWidget(), &first);
}

TEST_F(SettingsDialog, NothingIsCutAtItsNaturalSize)
{
    mWindow->resize(mWindow->sizeHint().expandedTo(mWindow->size()));
    ui_qt::Settle();
    for (const QLabel* const label : mWindow->findChildren<QLabel*>()) {
        if (!label->text().isEmpty()) {
            EXPECT_GE(label->width(), label->sizeHint().width()) << label->text().toStdString();
        }
    }
    for (const QWidget* const widget : Reachable(*mWindow)) {
        EXPECT_GE(widget->height(), widget->minimumSizeHint().height()) << Describe(*widget);
        EXPECT_GE(widget->width(), widget->minimumSizeHint().width()) << Describe(*widget);
    }
}

/// The dialog on a screen that leaves it so much room, in logical pixels.
class SettingsDialogOn : public SettingsDialog, public testing::WithParamInterface<QSize> {
protected:
    void SetUp() override
    {
        SettingsDialog::SetUp();
        for (qelui::UI_ControlView* const control : mDialog->AllControls()) {
            if (auto* const popup = dynamic_cast<qelui::UI_Popup*>(control)) {
                popup->AddItem("KsPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_601");
            } else if (auto* const text = dynamic_cast<qelui::UI_StaticText*>(control)) {
                text->SetValue("/a/path/through/folders/with/long/names/that/leads/to/a/file/in/the/end.json");
            }
        }
        mWindow = nullptr; // before its successor observes the dialog
        mWindow = std::make_unique<kestrelqt::DialogWindow>(*mDialog, GetParam());
        ui_qt::ShowAndActivate(*mWindow);
        mScroll = mWindow->findChild<QScrollArea*>();
        ASSERT_NE(mScroll, nullptr);
    }

    QScrollArea* mScroll = nullptr;
};

TEST_P(SettingsDialogOn, NothingIsCutSideways)
{
    EXPECT_LE(mWindow->width(), GetParam().width());
    EXPECT_LE(mWindow->height(), GetParam().height());
    EXPECT_EQ(mScroll->horizontalScrollBar()->maximum(), 0) << "pixels to scroll sideways";
    const QRect sides = mScroll->widget()->rect();
    for (const QWidget* const widget : mScroll->widget()->findChildren<QWidget*>()) {
        const QRect place(widget->mapTo(mScroll->widget(), QPoint(0, 0)), widget->size());
        EXPECT_TRUE(sides.left() <= place.left() && place.right() <= sides.right()) << Describe(*widget);
        EXPECT_GE(widget->width(), widget->minimumSizeHint().width()) << Describe(*widget);
    }
    for (const QLabel* const label : mScroll->widget()->findChildren<QLabel*>()) {
        EXPECT_GE(label->width(), label->minimumSizeHint().width()) << label->text().toStdString();
    }
}

TEST_P(SettingsDialogOn, OkAndTheStatusLineAreInSight)
{
    for (const char* const name : {"okButton", "cancelButton", "statusLine"}) {
        const auto& widget = *mWindow->findChild<QWidget*>(QString::fromLatin1(name));
        const QRect place(widget.mapTo(mWindow.get(), QPoint(0, 0)), widget.size());
        EXPECT_TRUE(mWindow->rect().contains(place)) << name;
    }
}

TEST_P(SettingsDialogOn, NumbersStandBesideTheirLabels)
{
    for (const QLabel* const label : mWindow->findChildren<QLabel*>()) {
        const auto* const field = qobject_cast<const QLineEdit*>(label->buddy());
        if (field != nullptr) {
            constexpr int kFarAway = 200; // from the end of the label to the end of the field
            const int labelEnd = label->mapTo(mWindow.get(), QPoint(label->width(), 0)).x();
            const int fieldEnd = field->mapTo(mWindow.get(), QPoint(field->width(), 0)).x();
            EXPECT_LT(fieldEnd - labelEnd, kFarAway) << label->text().toStdString();
        }
    }
}

// 1920x1080, 1366x768, and 1920x1080 at scale 2, without what a desktop takes.
INSTANTIATE_TEST_SUITE_P(Screens, SettingsDialogOn,
                         testing::Values(QSize(1904, 1020), QSize(1350, 708), QSize(944, 480)),
                         [](const auto& info) {
                             return std::to_string(info.param.width()) + "x" +
                                    std::to_string(info.param.height());
                         });

TEST_F(SettingsDialog, AllIsInSightAtOnceOnAFullHdScreen)
{
    mWindow = nullptr;
    mWindow = std::make_unique<kestrelqt::DialogWindow>(*mDialog, QSize(1904, 1020));
    ui_qt::ShowAndActivate(*mWindow);
    EXPECT_EQ(mWindow->findChild<QScrollArea*>()->verticalScrollBar()->maximum(), 0) << "pixels to scroll";
}

void ExpectShareARow(const QWidget& window, const char* button, const char* text)
{
    const auto& first = *window.findChild<QWidget*>(QString::fromLatin1(button));
    const auto& second = *window.findChild<QWidget*>(QString::fromLatin1(text));
    const QPoint from = first.mapTo(&window, first.rect().center());
    const QPoint to = second.mapTo(&window, second.rect().center());
    EXPECT_LT(std::abs(to.y() - from.y()), first.height()) << button;
    EXPECT_GT(to.x(), from.x()) << button;
}

TEST_F(SettingsDialog, AButtonAndThePathChosenWithItShareARow)
{
    mWindow = nullptr;
    mWindow = std::make_unique<kestrelqt::DialogWindow>(*mDialog, QSize(1350, 708));
    ui_qt::ShowAndActivate(*mWindow);
    ExpectShareARow(*mWindow, "swatchColorsFileButtonID", "swatchColorsFilePathTextID");
    ExpectShareARow(*mWindow, "saveToPathButtonID", "saveToPathStaticTextID");
}

// The swatch files stand beside another group, where a button and a path of 350 pixels do not fit.
TEST_F(SettingsDialog, OnTheNarrowestScreenTheSavePathStillSharesTheRowOfItsButton)
{
    mWindow = nullptr;
    mWindow = std::make_unique<kestrelqt::DialogWindow>(*mDialog, QSize(944, 480));
    ui_qt::ShowAndActivate(*mWindow);
    ExpectShareARow(*mWindow, "saveToPathButtonID", "saveToPathStaticTextID");
}

TEST_F(SettingsDialog, AltLettersDifferAndReachAlmostEverything)
{
    std::map<QChar, std::string> taken;
    int withLetter = 0;
    for (const auto& [control, letter] : kestrelqt::ChooseAltLetters(*mDialog, kestrelqt::IsColorButton)) {
        EXPECT_TRUE(taken.emplace(letter, control->Identifier()).second)
            << control->Identifier() << " and " << taken[letter];
        ++withLetter;
    }
    EXPECT_EQ(taken[QLatin1Char('O')], "okButton");
    EXPECT_EQ(taken[QLatin1Char('C')], "cancelButton");
    // 34 controls, of which the eight colour channels share their labels in pairs.
    EXPECT_GE(withLetter, 22);
}

// Their captions follow the settings, so a letter that they take would move the letters of other controls
// from one document to the next.
TEST_F(SettingsDialog, AltLettersAreTheSameWhateverTheColorButtonsSay)
{
    std::vector<std::map<const qelui::UI_ControlView*, QChar>> letters;
    for (const auto& [first, second] :
         {std::pair("Upper Field Color", "Lower Field Color"), std::pair("Top Color", "Bottom Color"),
          std::pair("[unused]", "[unused]")}) {
        mDialog->GetControl<qelui::UI_Button>("chooseColorButtonID0").SetLabel(first);
        mDialog->GetControl<qelui::UI_Button>("chooseColorButtonID1").SetLabel(second);
        letters.push_back(kestrelqt::ChooseAltLetters(*mDialog, kestrelqt::IsColorButton));
    }
    EXPECT_EQ(letters[0], letters[1]);
    EXPECT_EQ(letters[0], letters[2]);
    EXPECT_EQ(letters[0].count(&mDialog->GetControl<qelui::UI_Button>("chooseColorButtonID0")), 0U);
}

TEST_F(SettingsDialog, TheStatusLineExplainsTheControlWithTheFocus)
{
    const auto& control = mDialog->GetControl<qelui::UI_NumberEdit>("frameHeightID");
    kestrelqt::Focus(*mWindow->BindingOf(control)->Widget());
    EXPECT_EQ(mWindow->Status().Shown(), "Height of a frame in pixels, from 16 to 100000.");
}

TEST_F(SettingsDialog, APathKeepsItsFileNameAndCanBeCopied)
{
    auto& text = mDialog->GetControl<qelui::UI_StaticText>("saveToPathStaticTextID");
    const std::string path =
        "/a/path/that/is/far/too/long/for/the/room/that/it/has/in/this/dialog/on/a/screen/clip.tessel";
    text.SetValue(path);
    QWidget& label = *mWindow->BindingOf(text)->Widget();
    const QString shown = kestrelqt::ElidedPath(QString::fromStdString(path), label.fontMetrics(), 200);
    EXPECT_TRUE(shown.endsWith(QLatin1String("/clip.tessel"))) << shown.toStdString();
    EXPECT_LE(label.fontMetrics().horizontalAdvance(shown), 200);
    kestrelqt::Focus(label);
    ASSERT_TRUE(label.hasFocus());
    PressKey(label, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), path);
}

TEST_F(SettingsDialog, TheChipOfAColorButtonFollowsItsChannels)
{
    const auto chip = [this](const char* button) {
        const auto& widget = *mWindow->findChild<QPushButton*>(QString::fromLatin1(button));
        return widget.icon().pixmap(QSize(28, 14)).toImage().pixelColor(10, 7);
    };
    EXPECT_EQ(chip("chooseColorButtonID0"), QColor(0, 0, 0));
    mDialog->GetControl<qelui::UI_NumberEdit>("chooseColorRedTextID0")
        .SetValue(1.5); // more than a screen shows
    mDialog->GetControl<qelui::UI_NumberEdit>("chooseColorBlueTextID0").SetValue(0.6); // 0.6 × 255 = 153
    EXPECT_EQ(chip("chooseColorButtonID0"), QColor(255, 0, 153));
    EXPECT_EQ(chip("chooseColorButtonID1"), QColor(0, 0, 0));
}

TEST_F(SettingsDialog, OkStaysInSightOnASmallScreen)
{
    mWindow->resize(600, 320);
    ui_qt::Settle();
    for (const char* const identifier : {"okButton", "cancelButton"}) {
        const auto& button = *mWindow->BindingOf(mDialog->GetControl<qelui::UI_Button>(identifier))->Widget();
        const QRect place(button.mapTo(mWindow.get(), QPoint(0, 0)), button.size());
        EXPECT_TRUE(mWindow->rect().contains(place)) << identifier;
        EXPECT_FALSE(button.visibleRegion().isEmpty()) << identifier;
    }
}

TEST_F(SettingsDialog, TabScrollsWhatItReachesIntoSight)
{
    mWindow->resize(600, 320);
    ui_qt::Settle();
    auto& first = *mWindow->BindingOf(mDialog->GetControl<qelui::UI_Popup>("pixelFormatPopupID"))->Widget();
    kestrelqt::Focus(first);
    QWidget* at = &first;
    do {
        PressKey(*at, Qt::Key_Tab);
        ui_qt::Settle();
        at = QApplication::focusWidget();
        ASSERT_NE(at, nullptr);
        EXPECT_FALSE(at->visibleRegion().isEmpty()) << Describe(*at) << " has the focus out of sight";
    } while (at != &first); // from Cancel up to the first control again
}

// From OK, which is always in sight, so that nothing but the focus can scroll.
TEST_F(SettingsDialog, AltKeysAndShiftTabScrollWhatTheyReachIntoSight)
{
    mWindow->resize(600, 320);
    ui_qt::Settle();
    QWidget& ok = *mWindow->findChild<QWidget*>("okButton");
    for (QWidget* const widget : Reachable(*mWindow)) {
        kestrelqt::Focus(ok);
        widget->setFocus(Qt::ShortcutFocusReason);
        ui_qt::Settle();
        EXPECT_FALSE(widget->visibleRegion().isEmpty()) << Describe(*widget) << " has the focus out of sight";
    }
    mWindow->findChild<QScrollArea*>()->verticalScrollBar()->setValue(0);
    kestrelqt::Focus(ok);
    PressKey(ok, Qt::Key_Backtab, Qt::ShiftModifier);
    ui_qt::Settle();
    EXPECT_FALSE(QApplication::focusWidget()->visibleRegion().isEmpty()) << "the control before OK";
}

double Luminance(QRgb color)
{
    const auto linear = [](int part) {
        const double value = part / 255.0;
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) + 0.0722 * linear(qBlue(color));
}

/// Pixels whose two colours have the contrast that WCAG 2.2, 2.4.13 asks of a change of the focus, 3:1.
int PixelsThatShow(const QImage& before, const QImage& after)
{
    int count = 0;
    for (int y = 0; y < before.height(); ++y) {
        for (int x = 0; x < before.width(); ++x) {
            const double a = Luminance(before.pixel(x, y)) + 0.05;
            const double b = Luminance(after.pixel(x, y)) + 0.05;
            count += std::max(a, b) / std::min(a, b) >= 3.0 ? 1 : 0;
        }
    }
    return count;
}

class FocusIn : public SettingsDialog, public testing::WithParamInterface<qelui::Theme> {};

TEST_P(FocusIn, IsSeenOnEveryControl)
{
    kestrelqt::ApplyTheme(*qApp, GetParam());
    mDialog->GetControl<qelui::UI_StaticText>("saveToPathStaticTextID").SetValue("/a/clip.tessel");
    mWindow = nullptr;
    mWindow = std::make_unique<kestrelqt::DialogWindow>(*mDialog, QSize(1904, 1020));
    ui_qt::ShowAndActivate(*mWindow);
    const auto widgets = Reachable(*mWindow);
    ASSERT_GT(widgets.size(), 30U);
    for (QWidget* const widget : widgets) {
        kestrelqt::Focus(widget == widgets.front() ? *widgets.back() : *widgets.front());
        const QImage before = widget->grab().toImage();
        kestrelqt::Focus(*widget);
        ASSERT_TRUE(widget->hasFocus()) << Describe(*widget);
        // Around the smallest thing with a focus, an indicator of 14 pixels.
        EXPECT_GE(PixelsThatShow(before, widget->grab().toImage()), 28) << Describe(*widget);
    }
    mWindow = nullptr;
    kestrelqt::ApplyTheme(*qApp, qelui::Theme::Dark);
}

INSTANTIATE_TEST_SUITE_P(Themes, FocusIn, testing::Values(qelui::Theme::Dark, qelui::Theme::Light),
                         [](const auto& info) { return ui_qt::NameOf(info.param); });

TEST(ColorPickerAccessibility, EveryFocusableControlHasANameAndTabReachesIt)
{
    ui_qt::Toolkit();
    kestrelqt::ColorPickerWindow picker({0.5F, 0.5F, 0.5F, 1.0F}, kestrelqt::ColorPickerWindow::Alpha::Offered,
                                        nullptr);
    ui_qt::ShowAndActivate(picker);
    auto reachable = Reachable(picker);
    for (QWidget* const widget : reachable) {
        ExpectNamed(*widget);
    }
    auto walked = WalkByTab(*reachable.front());
    std::sort(walked.begin(), walked.end());
    std::sort(reachable.begin(), reachable.end());
    EXPECT_EQ(walked, reachable);
}

} // namespace
