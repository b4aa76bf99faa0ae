/// The interface between the models of this library and the toolkits that show them.
///
/// ## How a toolkit shows a dialog
/// `UI_Dialog::RunModal` calls `Toolkit::RunModal(dialog)`. The toolkit
/// 1. builds a widget for every control of the tree (`dialog.Children()`, recursively, in reading order),
///    in its model's present state, and registers a `WindowObserver` with `dialog.SetObserver`;
/// 2. shows the window over `dialog.ParentWindow()` (through `NativeWindow()`, null allowed), sets
///    `dialog.SetNativeWindow` for nested dialogs, and runs its event loop;
/// 3. for every act of a person calls the model's function: `UI_Button::Press`, `UI_CheckBox::EnterChecked`,
///    `UI_RadioButton::Press`, `UI_Popup::Choose`, `UI_NumberView::EnterValue` or `EnterText`. The verb limits,
///    stores and runs the handlers. Handlers change other controls, which arrive as `OnControlChanged`; they
///    open nested dialogs, which arrive as the other functions of `Toolkit` before the verb returns; they close
///    the dialog, which arrives as `OnDialogClosed`. Where the focus moves to a control, the toolkit calls
///    `dialog.Status().Explain`; it shows the status line, whose changes arrive as `OnStatusChanged`;
/// 4. where the person closes the window or presses Escape, calls `dialog.RequestClose()`, and does not
///    close the window itself;
/// 5. returns once `OnDialogClosed` was heard and the window is gone, with observer and native window set
///    back to null.
///
/// These functions do not throw the exceptions of handlers: the dialog keeps the exception, closes, and throws
/// it after step 5. Exceptions from the toolkit's own event handling must be treated in the same way.
///
/// ## How a script plays
/// Where `dialog.Script()` is not null, the toolkit calls `dialog.Script()->Play(driver)` once, as soon as the
/// window stands and from inside its event loop (for Qt, a single-shot timer). `Play` acts through the
/// toolkit's own `script::ControlDriver` and always leaves the dialog closed. Nested dialogs open during
/// `Play`, from inside a driver call; for them the request's `script` is not null, and the toolkit first takes
/// the answer from it and then makes its own dialog give exactly this answer, by acting on the real widgets
/// where it can. A missing answer counts as a cancel; the runner records the failure.
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelui/DrawSupplier.h>
#include <kestrel/qelui/TopLevelWindow.h>
#include <kestrel/qelui/dialogs/ColorPickerDialog.h>
#include <kestrel/qelui/dialogs/OS_FileDialog.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace qelui {

class UI_Dialog;
namespace script {
class ScriptRunner;
}

struct FileDialogRequest {
    bool saveAs = false; ///< a file to write, else one to open
    std::vector<dialogs::FileFilter> filters;
    std::u16string proposedName;  ///< save as only; a name without folder
    std::string title;            ///< what the file is for
    std::filesystem::path folder; ///< where to begin; empty lets the toolkit choose
    TopLevelWindow* parent = nullptr;
    script::ScriptRunner* script = nullptr;
};

struct MessageBoxRequest {
    std::string title;
    std::string text;
    int buttonSet = 0;     ///< `dialogs::kButtonsYesNo`
    int defaultButton = 0; ///< `dialogs::kButtonYes` or `kButtonNo`
    int icon = 0;          ///< `dialogs::kIconWarning`
    TopLevelWindow* parent = nullptr;
    script::ScriptRunner* script = nullptr;
};

struct ColorPickerRequest {
    sharedui::PickerColor color;
    bool offersAlpha = false; ///< a field for alpha is shown
    DrawSupplier drawSupplier;
    TopLevelWindow* parent = nullptr;
    script::ScriptRunner* script = nullptr;
};

/// Implemented by the Qt toolkit and by the scripted one. One object, on one thread. [ui-thread]
class KESTRELUI_API Toolkit {
public:
    Toolkit() = default;
    virtual ~Toolkit();
    Toolkit(const Toolkit&) = delete;
    Toolkit& operator=(const Toolkit&) = delete;

    /// Shows a dialog until it is closed; see above.
    virtual void RunModal(UI_Dialog& dialog) = 0;

    /// @return the absolute path chosen, nothing where the person cancelled. A save-as dialog adds the
    ///         filter's extension to a name typed without one.
    [[nodiscard]] virtual std::optional<std::u16string> RunFileDialog(const FileDialogRequest& request) = 0;

    /// @return the button pressed, `dialogs::kButtonYes` or `kButtonNo`.
    [[nodiscard]] virtual int RunMessageBox(const MessageBoxRequest& request) = 0;

    /// @return the colour, with the bits of every channel that the person left alone; nothing on cancel.
    [[nodiscard]] virtual std::optional<sharedui::PickerColor>
    RunColorPicker(const ColorPickerRequest& request) = 0;
};

/// The entry function of a toolkit library, `extern "C"`. The first call makes the toolkit, which exists
/// until the process ends. Returns null if no window can be opened, with one line in `*whyNot`, which stays
/// valid until the next call. Never throws and never ends the process. [ui-thread]
inline constexpr char kToolkitEntryName[] = "KestrelGetToolkit";
using ToolkitEntry = Toolkit* (*)(const char** whyNot);

} // namespace qelui
