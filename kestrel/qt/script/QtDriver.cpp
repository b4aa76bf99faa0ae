#include "QtDriver.h"

#include "PersonEvents.h"

#include <kestrel/qelcore/text/PathText.h>
#include <kestrel/qelui/controls/UI_Button.h>
#include <kestrel/qelui/controls/UI_Number.h>
#include <kestrel/qelui/controls/UI_Popup.h>
#include <kestrel/qt/dialogs/DialogWindow.h>
#include <kestrel/qt/dialogs/StatusBar.h>

#include <QAbstractItemView>
#include <QComboBox>
#include <QLineEdit>
#include <QPixmap>

namespace kestrelqt {

namespace {

/// The widget of a control; the runner acts only on controls that have one.
template <class Widget>
Widget& WidgetOf(const DialogWindow& window, const qelui::UI_ControlView& control)
{
    return *static_cast<Widget*>(window.BindingOf(control)->Widget());
}

/// Clicks a check box or radio button on its indicator.
void ClickIndicator(QWidget& widget)
{
    Focus(widget);
    Click(widget, QPoint(8, widget.height() / 2));
}

} // namespace

qelui::script::SeenState QtDriver::See(qelui::UI_ControlView& control)
{
    const ControlWidget* const binding = mWindow.BindingOf(control);
    return binding == nullptr ? qelui::script::SeeModel(control) : binding->See();
}

std::string QtDriver::SeeStatus()
{
    return mWindow.Status().Shown().toStdString();
}

void QtDriver::Press(qelui::UI_Button& button)
{
    auto& widget = WidgetOf<QWidget>(mWindow, button);
    Focus(widget);
    Click(widget, widget.rect().center());
}

void QtDriver::Press(qelui::UI_RadioButton& button)
{
    ClickIndicator(WidgetOf<QWidget>(mWindow, button));
}

void QtDriver::Check(qelui::UI_CheckBox& box, bool /*checked*/)
{
    ClickIndicator(WidgetOf<QWidget>(mWindow, box));
}

void QtDriver::Choose(qelui::UI_Popup& popup, int index)
{
    auto& combo = WidgetOf<QComboBox>(mWindow, popup);
    Focus(combo);
    combo.showPopup();
    combo.view()->setCurrentIndex(combo.model()->index(index, combo.modelColumn()));
    PressKey(*combo.view(), Qt::Key_Return);
}

void QtDriver::Type(qelui::UI_NumberView& number, std::string_view text)
{
    auto& field = WidgetOf<QLineEdit>(mWindow, number);
    Focus(field);
    if (field.isReadOnly()) {
        PressKey(field, Qt::Key_Return); // hot text: begin to type
    }
    PressKey(field, Qt::Key_A, Qt::ControlModifier);
    TypeText(field, QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
    PressKey(field, Qt::Key_Return);
}

bool QtDriver::SaveScreenshot(const std::filesystem::path& file, std::string& whyNot)
{
    const std::string path = qelcore::text::UTF8Text(file);
    if (mWindow.Picture().save(QString::fromStdString(path), "PNG")) {
        return true;
    }
    whyNot = path + " cannot be written";
    return false;
}

} // namespace kestrelqt
