/// A modal dialog: the root of a tree of controls, and the window they are in.
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelui/DrawSupplier.h>
#include <kestrel/qelui/TopLevelWindow.h>
#include <kestrel/qelui/controls/UI_Group.h>

#include <exception>
#include <functional>
#include <optional>
#include <string>

namespace qelui {

namespace script {
class ScriptRunner;
}

/// What a toolkit hears from a dialog that it shows. Called on the ui thread, also from within change
/// handlers; must not throw.
class KESTRELUI_API WindowObserver {
public:
    WindowObserver() = default;
    virtual ~WindowObserver();
    WindowObserver(const WindowObserver&) = delete;
    WindowObserver& operator=(const WindowObserver&) = delete;
    /// Bring the widget in line with its model: label, value, items, enabled state, tooltip. Code or a person
    /// changed it; a widget that a person just used hears of its own change, too. Signals that the widget
    /// sends while it is brought in line must not be entered again.
    virtual void OnControlChanged(UI_ControlView& control) = 0;
    /// The dialog is over: end the modal run.
    virtual void OnDialogClosed() = 0;
};

/// Life: built, handed to `RunModal` once, read, destroyed.
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
    /// dialog that is still open when the toolkit returns is cancelled. `UserInterface::LastDocument` gives the
    /// document that the controls describe at the end. What a change handler threw is thrown from here, once
    /// the window is gone.
    /// @throws NoToolkitError  no toolkit can be had; nothing was shown.
    void RunModal();

    /// Closes the window, neither OK nor Cancel. Safe inside change handlers, and more than once.
    void Close();
    [[nodiscard]] bool IsClosed() const noexcept { return mClosed; }

    /// What closing the window, Escape and a failed script do: a press on `cancelButton`, where that is
    /// present; the dialog is closed afterwards in every case.
    void RequestCancel();

    /// Set by the toolkit while it shows the dialog, null otherwise.
    void SetObserver(WindowObserver* observer) noexcept { mObserver = observer; }

    /// The script that plays on this dialog, null for none. Valid during `RunModal`.
    [[nodiscard]] script::ScriptRunner* Script() const noexcept { return mScript; }

    /// Optional: makes the document that the controls describe now. A toolkit shows a picture of it beside the
    /// controls (`UserInterface::GetPreviewRenderer`), and a program can keep it where the plug-in could not
    /// save it. Empty where the dialog has none. May throw, like a change handler. @{
    using Document = std::function<std::string()>;
    [[nodiscard]] const Document& GetDocument() const noexcept { return mDocument; }
    void SetDocument(Document document) { mDocument = std::move(document); }
    /// @}

private:
    friend class UI_ControlView;
    void KeepException(std::exception_ptr exception) noexcept;
    [[nodiscard]] std::optional<std::string> DocumentNow() const noexcept;

    std::string mTitle;
    TopLevelWindow* mParentWindow = nullptr;
    DrawSupplier mDrawSupplier;
    WindowObserver* mObserver = nullptr;
    script::ScriptRunner* mScript = nullptr;
    Document mDocument;
    bool mClosed = false;
    std::exception_ptr mKeptException;
};

} // namespace qelui
