#include "QtFixture.h"

#include <kestrel/qellumenfactory/LayoutBuilder.h>
#include <kestrel/qellumenfactory/Parser.h>
#include <kestrel/qt/dialogs/ColorPickerWindow.h>

#include <QAccessible>
#include <QLabel>
#include <algorithm>
#include <fstream>
#include <sstream>
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
        std::ifstream file(SETTINGS_LAYOUT);
        std::ostringstream text;
        text << file.rdbuf();
        ASSERT_TRUE(file.is_open()) << SETTINGS_LAYOUT;
        mDialog = qellumenfactory::BuildDialog(qellumenfactory::ParseLayout(text.str(), "settings").root);
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
    for (QWidget* at = &first;;) {
        EXPECT_FALSE(at->visibleRegion().isEmpty()) << Describe(*at) << " has the focus out of sight";
        PressKey(*at, Qt::Key_Tab);
        ui_qt::Settle();
        at = QApplication::focusWidget();
        if (at == &first) {
            break;
        }
        ASSERT_NE(at, nullptr);
    }
}

TEST(ColorPickerAccessibility, EveryFocusableControlHasANameAndTabReachesIt)
{
    ui_qt::Toolkit();
    kestrelqt::ColorPickerWindow picker({0.5F, 0.5F, 0.5F, 1.0F}, nullptr);
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
