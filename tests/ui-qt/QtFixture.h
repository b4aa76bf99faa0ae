/// What tests of the Qt toolkit share: an application without a screen, a mouse and a keyboard.
#pragma once

#include <kestrel/qelui/controls/UI_Button.h>
#include <kestrel/qelui/controls/UI_Number.h>
#include <kestrel/qelui/controls/UI_Popup.h>
#include <kestrel/qelui/dialogs/UI_Dialog.h>
#include <kestrel/qt/QtToolkit.h>
#include <kestrel/qt/dialogs/DialogWindow.h>
#include <kestrel/qt/script/PersonEvents.h>
#include <kestrel/qt/style/Theme.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>
#include <memory>
#include <string>

namespace ui_qt {

/// The process's toolkit, on the platform that has no screen.
inline kestrelqt::QtToolkit& Toolkit()
{
    static kestrelqt::QtToolkit* const toolkit = [] {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        // Never destroyed, as in the toolkit's own library.
        auto made = std::make_unique<kestrelqt::QtToolkit>();
        kestrelqt::ApplyTheme(*qApp, qelui::Theme::Dark);
        return made.release();
    }();
    return *toolkit;
}

/// A theme in the name of a test.
inline std::string NameOf(qelui::Theme theme)
{
    return theme == qelui::Theme::Dark ? "Dark" : "Light";
}

/// Lets Qt process the events that wait.
inline void Settle()
{
    for (int round = 0; round < 5; ++round) {
        QApplication::processEvents();
    }
}

inline void ShowAndActivate(QWidget& window)
{
    window.show();
    window.activateWindow();
    Settle();
}

/// A dialog under test and its window, shown without a modal run.
class OpenDialog {
public:
    OpenDialog() : mDialog("dialog") { Toolkit(); }

    template <class Control>
    Control& Add(const std::string& identifier, const std::string& label = "Label:")
    {
        auto& control = mDialog.Add(std::make_unique<Control>(identifier));
        control.SetLabel(label);
        return control;
    }
    qelui::UI_Dialog& Dialog() { return mDialog; }

    /// After the last control was added.
    void Open()
    {
        mWindow = std::make_unique<kestrelqt::DialogWindow>(mDialog);
        ShowAndActivate(*mWindow);
    }
    kestrelqt::DialogWindow& Window() { return *mWindow; }

    template <class Widget>
    Widget& Find(const char* identifier)
    {
        auto* const widget = mWindow->findChild<Widget*>(QString::fromLatin1(identifier));
        EXPECT_NE(widget, nullptr) << identifier;
        return *widget;
    }

private:
    qelui::UI_Dialog mDialog;
    std::unique_ptr<kestrelqt::DialogWindow> mWindow;
};

/// A mouse that presses, moves in steps and releases.
class Mouse {
public:
    explicit Mouse(QWidget& widget) : mWidget(widget), mAt(widget.rect().center()) {}

    void Press() { Send(QEvent::MouseButtonPress, Qt::LeftButton, Qt::NoModifier); }
    void MoveBy(int pixels, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        mAt.rx() += pixels;
        Send(QEvent::MouseMove, Qt::LeftButton, modifiers);
    }
    void Release() { Send(QEvent::MouseButtonRelease, Qt::NoButton, Qt::NoModifier); }
    /// A click of another button while the left one is held.
    void RightClickMeanwhile()
    {
        Send(QEvent::MouseButtonPress, Qt::LeftButton | Qt::RightButton, Qt::NoModifier, Qt::RightButton);
        Send(QEvent::MouseButtonRelease, Qt::LeftButton, Qt::NoModifier, Qt::RightButton);
    }
    void DoubleClick()
    {
        Press();
        Release();
        Send(QEvent::MouseButtonDblClick, Qt::LeftButton, Qt::NoModifier);
        Release();
    }

private:
    void Send(QEvent::Type type, Qt::MouseButtons held, Qt::KeyboardModifiers modifiers,
              Qt::MouseButton button = Qt::LeftButton)
    {
        QMouseEvent event(type, QPointF(mAt), QPointF(mWidget.mapToGlobal(mAt)),
                          type == QEvent::MouseMove ? Qt::NoButton : button, held, modifiers);
        QApplication::sendEvent(&mWidget, &event);
    }

    QWidget& mWidget;
    QPoint mAt;
};

} // namespace ui_qt
