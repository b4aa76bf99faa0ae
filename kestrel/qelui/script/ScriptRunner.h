/// Plays one script on one dialog. Threads: [ui-thread].
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelui/dialogs/ColorPickerDialog.h>
#include <kestrel/qelui/dialogs/UI_Dialog.h>
#include <kestrel/qelui/script/ControlDriver.h>
#include <kestrel/qelui/script/Script.h>
#include <kestrel/qelui/toolkit/UserInterface.h>

#include <deque>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace qelui::script {

/// Made by `UI_Dialog::RunModal`. The first failure cancels the dialog and ends the script.
class KESTRELUI_API ScriptRunner {
public:
    /// Reads and parses the file. A file that cannot be read or parsed is a failure like any other: `Play`
    /// then only cancels.
    ScriptRunner(std::filesystem::path file, UI_Dialog& dialog);

    /// The same with parsed commands; `file` is their name in failures.
    ScriptRunner(std::filesystem::path file, std::vector<Command> commands, UI_Dialog& dialog);

    /// Executes the commands in order. When it returns, the dialog is closed: by the script's press on OK or
    /// Cancel, else cancelled. Called once by the toolkit, see <kestrel/qelui/toolkit/Toolkit.h>.
    void Play(ControlDriver& driver);

    /// The next queued answer, for a nested dialog that opens while `Play` runs. Nothing, or false, if the
    /// script cancels or answers no. No answer in the queue is a failure and counts as cancel. @{
    [[nodiscard]] std::optional<std::u16string> TakeFileAnswer(); ///< an absolute path
    [[nodiscard]] std::optional<sharedui::PickerColor> TakeColorAnswer();
    [[nodiscard]] bool TakeBoxAnswer();
    /// @}

    [[nodiscard]] const std::optional<ScriptFailure>& Failure() const noexcept { return mFailure; }

private:
    template <class Answer>
    struct Queued {
        int line = 0;
        Answer answer;
    };
    struct Visitor;

    void Fail(int line, std::string text);
    void Execute(const Command& command, ControlDriver& driver);
    /// Whether every answer was used; if not, that is a failure.
    [[nodiscard]] bool AreAnswersUsedUp();

    std::filesystem::path mFile;
    UI_Dialog& mDialog;
    std::vector<Command> mCommands;
    int mLine = 0;
    std::deque<Queued<AnswerFile>> mFileAnswers;
    std::deque<Queued<AnswerColor>> mColorAnswers;
    std::deque<Queued<AnswerBox>> mBoxAnswers;
    std::optional<ScriptFailure> mFailure;
};

} // namespace qelui::script
