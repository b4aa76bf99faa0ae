/// A modal dialog: the root of a tree of controls, and their window. Threads: [ui-thread].
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelui/DrawSupplier.h>
#include <kestrel/qelui/TopLevelWindow.h>
#include <kestrel/qelui/controls/UI_Group.h>
#include <kestrel/qelui/dialogs/StatusLine.h>

#include <exception>
#include <functional>
#include <optional>
#include <string>

namespace qelui {

namespace script {
class ScriptRunner;
}

/// Reports of a dialog to the toolkit that shows it. Called on the ui thread, also from within change
/// handlers. Must not throw.
class KESTRELUI_API WindowObserver {
public:
    WindowObserver() = default;
    virtual ~WindowObserver();
    WindowObserver(const WindowObserver&) = delete;
    WindowObserver& operator=(const WindowObserver&) = delete;
    /// The control has changed, by code or by a person: update label, value, items, enabled state and tooltip
    /// of its widget. This is also called for the widget that the person has just used. Signals that a widget
    /// sends during the update must not be entered into the model.
    virtual void OnControlChanged(UI_ControlView& control) = 0;
    /// The text of `UI_Dialog::Status` has changed.
    virtual void OnStatusChanged() {}
    /// The dialog is closed: end the modal run.
    virtual void OnDialogClosed() = 0;
};

/// Use: construct, call `RunModal` once, read the results, destroy.
class KESTRELUI_API UI_Dialog final : public UI_Group, public TopLevelWindow {
public:
    static constexpr std::string_view kTypeName = "qelui::UI_Dialog";
    explicit UI_Dialog(std::string identifier);
    ~UI_Dialog() override;
    UI_Dialog(const UI_Dialog&) = delete;
    UI_Dialog& operator=(const UI_Dialog&) = delete;

    [[nodiscard]] const std::string& Title() const noexcept { return mTitle; }
    void SetTitle(std::string title) { mTitle = std::move(title); }

    /// Borrowed; null for none. @{
    [[nodiscard]] TopLevelWindow* ParentWindow() const noexcept { return mParentWindow; }
    void SetParentWindow(TopLevelWindow* parent) noexcept { mParentWindow = parent; }
    /// @}
    [[nodiscard]] const DrawSupplier& GetDrawSupplier() const noexcept { return mDrawSupplier; }
    void SetDrawSupplier(const DrawSupplier& supplier) noexcept { mDrawSupplier = supplier; }

    /// Shows the dialog until it is closed.
    ///
    /// Chooses the toolkit, loads the script where one is named, and gives both to `Toolkit::RunModal`. A
    /// dialog that is still open when the toolkit returns is cancelled. `UserInterface::LastDocument` gives
    /// the document that the controls describe at the end. An exception of a change handler is thrown from
    /// here, after the window is gone.
    /// @throws NoToolkitError  there is no toolkit; nothing was shown.
    void RunModal();

    /// Closes the window without OK or Cancel. May be called in change handlers, and more than once.
    void Close();
    [[nodiscard]] bool IsClosed() const noexcept { return mClosed; }

    /// Presses `cancelButton` if there is one, then closes the dialog if it is still open. For scripts.
    void RequestCancel();

    /// A person closes the window or presses Escape: cancels a dialog in which nothing has changed. After
    /// changes the status line says that the next such call cancels; any act in between takes this back.
    void RequestClose();

    /// The line at the foot of the dialog. @{
    [[nodiscard]] StatusLine& Status() noexcept { return mStatus; }
    [[nodiscard]] const StatusLine& Status() const noexcept { return mStatus; }
    /// @}

    /// Set by the toolkit while it shows the dialog, null otherwise.
    void SetObserver(WindowObserver* observer) noexcept { mObserver = observer; }

    /// The script that plays on this dialog, null for none. Valid during `RunModal`.
    [[nodiscard]] script::ScriptRunner* Script() const noexcept { return mScript; }

    /// Optional: a function that makes the document which the controls describe now. A toolkit shows a
    /// picture of it beside the controls (`UserInterface::GetPreviewRenderer`), and a program can keep the
    /// document if the plug-in could not save it. Like a change handler, the function may throw. @{
    using Document = std::function<std::string()>;
    [[nodiscard]] const Document& GetDocument() const noexcept { return mDocument; }
    void SetDocument(Document document) { mDocument = std::move(document); }
    /// @}

private:
    friend class UI_ControlView;
    friend class StatusLine;
    void KeepException(std::exception_ptr exception) noexcept;
    [[nodiscard]] std::optional<std::string> DocumentNow() const noexcept;
    /// A person has used a control.
    void NoteAct() noexcept;
    [[nodiscard]] bool HasChanges() const noexcept;

    std::string mTitle;
    TopLevelWindow* mParentWindow = nullptr;
    DrawSupplier mDrawSupplier;
    WindowObserver* mObserver = nullptr;
    script::ScriptRunner* mScript = nullptr;
    Document mDocument;
    std::optional<std::string> mFirstDocument; ///< as the dialog opened
    bool mWasUsed = false;
    bool mWasWarned = false; ///< that closing discards changes
    bool mClosed = false;
    StatusLine mStatus{*this};
    std::exception_ptr mKeptException;
};

} // namespace qelui
