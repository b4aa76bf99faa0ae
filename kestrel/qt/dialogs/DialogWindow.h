/// A dialog's window.
#pragma once

#include "DialogLayout.h"

#include <kestrel/qelui/dialogs/UI_Dialog.h>

#include <QDialog>

class QEventLoop;

namespace kestrelqt {

class PreviewPane;

/// Builds the widgets, shows the models in them, and runs until the dialog is closed. [ui-thread]
class DialogWindow final : public QDialog, private qelui::WindowObserver {
public:
    explicit DialogWindow(qelui::UI_Dialog& dialog);
    DialogWindow(const DialogWindow&) = delete;
    DialogWindow& operator=(const DialogWindow&) = delete;
    ~DialogWindow() override;

    /// Shows the window and returns after the dialog is closed. Plays the dialog's script if it has one.
    void Run();

    /// The binding of a control of the dialog, null for groups.
    [[nodiscard]] ControlWidget* BindingOf(const qelui::UI_ControlView& control) const;
    /// A picture of the whole window with an up-to-date preview.
    [[nodiscard]] QPixmap Picture();

protected:
    void reject() override;
    void closeEvent(QCloseEvent* event) override;

private:
    void OnControlChanged(qelui::UI_ControlView& control) override;
    void OnDialogClosed() override;
    void Follow(qelui::UI_ControlView& control);
    void FitToScreen(QWidget& content);

    qelui::UI_Dialog& mDialog;
    DialogWidgets mWidgets;
    PreviewPane* mPreview = nullptr;
    QWidget* mButtons = nullptr; ///< the row of OK and Cancel
    QEventLoop* mLoop = nullptr;
};

} // namespace kestrelqt
