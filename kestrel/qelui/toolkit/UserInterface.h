/// Which toolkit shows dialogs in this process, and what script plays on it.
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelcore/exceptions/Exceptions.h>
#include <kestrel/qelui/dialogs/PreviewPicture.h>

#include <filesystem>
#include <optional>
#include <string>

namespace qelui {

class Toolkit;

/// No toolkit can be had. `what()` is one line that says why and what would help.
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

/// The process's choices. Environment variables are read at each question:
/// - `KESTREL_UI`: `qt` or `scripted`; unset, it is `qt` where a display is there and the Qt toolkit can be
///   loaded, else `scripted` where a script is named, else there is none;
/// - `KESTREL_UI_SCRIPT`: the script's file.
class KESTRELUI_API UserInterface {
public:
    [[nodiscard]] static UserInterface& Get();

    /// The toolkit to use now. Loads the Qt toolkit's library at the first need; it stays loaded.
    /// @throws NoToolkitError
    [[nodiscard]] Toolkit& GetToolkit();

    /// Makes every dialog from now on use `toolkit`, which is borrowed; null ends that.
    void SetToolkit(Toolkit* toolkit) noexcept { mToolkit = toolkit; }

    /// Names the script in place of the environment; an empty path ends that.
    void SetScript(std::filesystem::path file) { mScript = std::move(file); }
    /// The script named by `SetScript`, else by the environment; empty for none.
    [[nodiscard]] std::filesystem::path Script() const;

    /// How the last script that played failed, nothing where it did not. The same line goes to the log.
    [[nodiscard]] const std::optional<ScriptFailure>& LastScriptFailure() const noexcept { return mFailure; }
    void SetScriptFailure(std::optional<ScriptFailure> failure);

    /// The document that the last dialog's controls described when it closed, however it was closed; nothing
    /// where the dialog offers none. @{
    [[nodiscard]] const std::optional<std::string>& LastDocument() const noexcept { return mLastDocument; }
    void SetLastDocument(std::optional<std::string> document) { mLastDocument = std::move(document); }
    /// @}

    /// How this program makes pictures of documents, for a toolkit that shows one beside a dialog's controls;
    /// empty where it makes none. @{
    [[nodiscard]] const PreviewRenderer& GetPreviewRenderer() const noexcept { return mPreviewRenderer; }
    void SetPreviewRenderer(PreviewRenderer renderer) { mPreviewRenderer = std::move(renderer); }
    /// @}

    UserInterface(const UserInterface&) = delete;
    UserInterface& operator=(const UserInterface&) = delete;

private:
    UserInterface() = default;
    ~UserInterface() = default;
    Toolkit* mToolkit = nullptr;
    std::filesystem::path mScript;
    std::optional<ScriptFailure> mFailure;
    std::optional<std::string> mLastDocument;
    PreviewRenderer mPreviewRenderer;
};

} // namespace qelui
