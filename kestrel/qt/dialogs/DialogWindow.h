/// A dialog's window.
#pragma once

#include "DialogLayout.h"

#include <kestrel/qelui/dialogs/UI_Dialog.h>

#include <QDialog>

class QEventLoop;

namespace kestrelqt {

class PreviewPane;
class ScrollArea;
class StatusBar;

/// Builds the widgets, shows the models in them, and runs until the dialog is closed. Fits itself to the
/// screen: the controls move closer, the preview gives way, and then they scroll upright; status line, OK and
/// Cancel stay in sight. [ui-thread]
class DialogWindow final : public QDialog, private qelui::WindowObserver {
public:
    /// @param room  Logical pixels that the window may take; by default those of the screen.
    explicit DialogWindow(qelui::UI_Dialog& dialog, QSize room = {});
    DialogWindow(const DialogWindow&) = delete;
    DialogWindow& operator=(const DialogWindow&) = delete;
    ~DialogWindow() override;

    /// Shows the window and returns after the dialog is closed. Plays the dialog's script if it has one.
    void Run();

    /// The binding of a control of the dialog, null for groups.
    [[nodiscard]] ControlWidget* BindingOf(const qelui::UI_ControlView& control) const;
    [[nodiscard]] const StatusBar& Status() const noexcept { return *mStatus; }
    /// A picture of the whole window with an up-to-date preview.
    [[nodiscard]] QPixmap Picture();

protected:
    void reject() override;
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void OnControlChanged(qelui::UI_ControlView& control) override;
    void OnDialogClosed() override;
    void OnStatusChanged() override;
    void Follow(qelui::UI_ControlView& control);
    void BuildFoot();
    /// Builds the controls in the roomiest density that fits the screen.
    void BuildContent();
    void ConnectKeys();
    void FitToScreen();
    /// The preview gets what the controls leave.
    void ArrangePreview();
    /// Scrolls to a control that a key gave the focus.
    void ShowFocused(QWidget& widget, Qt::FocusReason reason);

    qelui::UI_Dialog& mDialog;
    QSize mRoom;
    DialogWidgets mWidgets;
    ScrollArea* mScroll = nullptr;
    PreviewPane* mPreview = nullptr;
    QWidget* mFoot = nullptr; ///< status line, OK and Cancel
    StatusBar* mStatus = nullptr;
    QEventLoop* mLoop = nullptr;
};

} // namespace kestrelqt
