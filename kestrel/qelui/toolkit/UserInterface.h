/// Which toolkit shows dialogs in this process, and what script plays on it.
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelcore/exceptions/Exceptions.h>
#include <kestrel/qelui/dialogs/Adviser.h>
#include <kestrel/qelui/dialogs/PreviewPicture.h>

#include <filesystem>
#include <optional>
#include <string>

namespace qelui {

class Toolkit;

/// There is no toolkit. `what()` is one line with the reason and a remedy.
class KESTRELUI_API NoToolkitError : public qelcore::Exception, public std::runtime_error {
public:
    explicit NoToolkitError(const std::string& line);
    ~NoToolkitError() override;
    NoToolkitError(const NoToolkitError&) = default;
    NoToolkitError& operator=(const NoToolkitError&) = default;
};

/// Why a script stopped.
struct KESTRELUI_API ScriptFailure {
    std::string script; ///< the file's name as it was given
    int line = 0;       ///< counted from 1; 0 where the file could not be read
    std::string text;   ///< what was wrong

    /// "edit.script:12: frameWidthID is 1280, not 1920"
    [[nodiscard]] std::string Describe() const;
};

/// The process's choices. Environment variables are read at each call:
/// - `KESTREL_UI`: `qt` or `scripted`. If it is not set: `qt` if there is a display and Qt can open windows
///   on it, else `scripted` if a script is named, else there is no toolkit;
/// - `KESTREL_UI_SCRIPT`: the script's file.
/// Threads: [ui-thread].
class KESTRELUI_API UserInterface {
public:
    [[nodiscard]] static UserInterface& Get();

    /// The toolkit to use. Loads the Qt toolkit's library when it is first needed; the library stays loaded.
    /// @throws NoToolkitError
    [[nodiscard]] Toolkit& GetToolkit();

    /// Makes all dialogs use `toolkit`, which is borrowed; null undoes this.
    void SetToolkit(Toolkit* toolkit) noexcept { mToolkit = toolkit; }

    /// Names the script, in place of the environment variable; an empty path undoes this.
    void SetScript(std::filesystem::path file) { mScript = std::move(file); }
    /// The script named by `SetScript`, else by the environment; empty for none.
    [[nodiscard]] std::filesystem::path Script() const;

    /// How this program names a script, such as an option, for messages; empty where it has no way.
    void SetScriptOption(std::string option) { mScriptOption = std::move(option); }

    /// What brings the windows where their library is not installed, such as a package's name, for messages;
    /// empty where nothing is known to.
    void SetWindowsPackage(std::string package) { mWindowsPackage = std::move(package); }

    /// Why the last script failed; nothing if it did not. The failure is also logged.
    [[nodiscard]] const std::optional<ScriptFailure>& LastScriptFailure() const noexcept { return mFailure; }
    void SetScriptFailure(std::optional<ScriptFailure> failure);

    /// The document that the last dialog's controls described when it closed, also after Cancel; nothing if
    /// the dialog offers none. @{
    [[nodiscard]] const std::optional<std::string>& LastDocument() const noexcept { return mLastDocument; }
    void SetLastDocument(std::optional<std::string> document) { mLastDocument = std::move(document); }
    /// @}

    /// The program's functions that render a document, for a toolkit that shows its pictures beside a dialog's
    /// controls; empty if the program has none. @{
    [[nodiscard]] const PreviewRenderer& GetPreviewRenderer() const noexcept { return mPreviewRenderer; }
    void SetPreviewRenderer(PreviewRenderer renderer) { mPreviewRenderer = std::move(renderer); }
    /// @}

    /// The program's sentences for status lines; empty if the program has none. @{
    [[nodiscard]] const Adviser& GetAdviser() const noexcept { return mAdviser; }
    void SetAdviser(Adviser adviser) { mAdviser = std::move(adviser); }
    /// @}

    /// The folder in which file dialogs begin, such as that of the edited file; empty lets the toolkit choose.
    /// @{
    [[nodiscard]] const std::filesystem::path& FileFolder() const noexcept { return mFileFolder; }
    void SetFileFolder(std::filesystem::path folder) { mFileFolder = std::move(folder); }
    /// @}

    UserInterface(const UserInterface&) = delete;
    UserInterface& operator=(const UserInterface&) = delete;

private:
    UserInterface() = default;
    [[nodiscard]] std::string ScriptNames() const;
    [[nodiscard]] std::string WindowsMissing() const;

    ~UserInterface() = default;
    Toolkit* mToolkit = nullptr;
    std::filesystem::path mScript;
    std::string mScriptOption;
    std::string mWindowsPackage;
    std::optional<ScriptFailure> mFailure;
    std::optional<std::string> mLastDocument;
    PreviewRenderer mPreviewRenderer;
    Adviser mAdviser;
    std::filesystem::path mFileFolder;
};

} // namespace qelui
