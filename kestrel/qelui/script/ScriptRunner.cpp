#include "ScriptRunner.h"

#include "Dump.h"

#include <kestrel/qelcore/files/WholeFile.h>
#include <kestrel/qelcore/text/PathText.h>
#include <kestrel/qelcore/text/Unicode.h>
#include <kestrel/qelui/controls/UI_Button.h>
#include <kestrel/qelui/controls/UI_Number.h>
#include <kestrel/qelui/controls/UI_Popup.h>

#include <charconv>
#include <cstddef>
#include <fstream>
#include <system_error>
#include <utility>

namespace qelui::script {

namespace {

/// Why a command failed. Becomes the run's failure, with the command's line.
struct CommandError {
    std::string text;
};

std::string InQuotes(std::string_view text)
{
    return '"' + std::string(text) + '"';
}

std::string_view TruthText(bool truth) noexcept
{
    return truth ? "true" : "false";
}

/// @throws CommandError
UI_ControlView& Find(UI_Dialog& dialog, const std::string& identifier)
{
    UI_ControlView* const control = dialog.FindControl(identifier);
    if (control == nullptr) {
        throw CommandError{"the dialog has no control " + identifier};
    }
    return *control;
}

/// @throws CommandError
int ParseIndex(const std::string& identifier, const std::string& text)
{
    int index = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, index);
    if (error != std::errc{} || stop != end) {
        throw CommandError{identifier + " is a popup and takes an item's index, not " + InQuotes(text)};
    }
    return index;
}

/// @throws CommandError
bool ParseTruth(const std::string& identifier, const std::string& text)
{
    if (text != "true" && text != "false") {
        throw CommandError{identifier + " takes true or false, not " + InQuotes(text)};
    }
    return text == "true";
}

/// @throws CommandError
double NeedNumber(const std::string& identifier, const std::string& text)
{
    const std::optional<double> number = ParseNumber(text);
    if (!number) {
        throw CommandError{identifier + " takes a number, not " + InQuotes(text)};
    }
    return *number;
}

void WriteFile(const std::string& name, const std::string& text)
{
    std::ofstream file(std::filesystem::path(name), std::ios::binary);
    file << text;
    file.close();
    if (!file) {
        throw CommandError{"cannot write " + InQuotes(name)};
    }
}

} // namespace

/// Executes one command. Every function throws `CommandError` if it fails.
struct ScriptRunner::Visitor {
    ScriptRunner& runner;
    ControlDriver& driver;

    /// The control, which must be enabled.
    [[nodiscard]] UI_ControlView& FindEnabled(const std::string& identifier) const
    {
        UI_ControlView& control = Find(runner.mDialog, identifier);
        if (!driver.See(control).enabled) {
            throw CommandError{identifier + " is disabled"};
        }
        return control;
    }

    void ChooseItem(const std::string& identifier, UI_Popup& popup, int index) const
    {
        const SeenState seen = driver.See(popup);
        if (index < 0 || static_cast<std::size_t>(index) >= seen.items.size()) {
            throw CommandError{identifier + " has no item " + std::to_string(index) + "; it has " +
                               std::to_string(seen.items.size())};
        }
        if (const SeenItem& item = seen.items[static_cast<std::size_t>(index)]; !item.enabled) {
            throw CommandError{identifier + ": item " + InQuotes(item.text) + " is disabled"};
        }
        driver.Choose(popup, index);
    }

    void operator()(const Set& command) const
    {
        UI_ControlView& control = FindEnabled(command.identifier);
        if (auto* const number = dynamic_cast<UI_NumberView*>(&control)) {
            (void)NeedNumber(command.identifier, command.value);
            driver.Type(*number, command.value);
        } else if (auto* const popup = dynamic_cast<UI_Popup*>(&control)) {
            ChooseItem(command.identifier, *popup, ParseIndex(command.identifier, command.value));
        } else if (auto* const box = dynamic_cast<UI_CheckBox*>(&control)) {
            const bool checked = ParseTruth(command.identifier, command.value);
            if (driver.See(control).value != TruthText(checked)) {
                driver.Check(*box, checked);
            }
        } else {
            throw CommandError{command.identifier + " is a " + std::string(NameOf(control.Kind())) +
                               " and cannot be set"};
        }
    }

    void operator()(const Choose& command) const
    {
        auto* const popup = dynamic_cast<UI_Popup*>(&FindEnabled(command.identifier));
        if (popup == nullptr) {
            throw CommandError{command.identifier + " is not a popup"};
        }
        const SeenState seen = driver.See(*popup);
        for (std::size_t index = 0; index < seen.items.size(); ++index) {
            if (seen.items[index].text == command.item) {
                ChooseItem(command.identifier, *popup, static_cast<int>(index));
                return;
            }
        }
        throw CommandError{command.identifier + " has no item " + InQuotes(command.item)};
    }

    void operator()(const Press& command) const
    {
        UI_ControlView& control = FindEnabled(command.identifier);
        if (auto* const button = dynamic_cast<UI_Button*>(&control)) {
            const auto* const row = dynamic_cast<const UI_OkCancelRow*>(button->Parent());
            // Checked before the press, because the effects of OK cannot be undone. OK and Cancel open no
            // further dialogs, so no answer can be used later.
            if (row != nullptr && !runner.AreAnswersUsedUp()) {
                return;
            }
            driver.Press(*button);
        } else if (auto* const radio = dynamic_cast<UI_RadioButton*>(&control)) {
            driver.Press(*radio);
        } else {
            throw CommandError{command.identifier + " is a " + std::string(NameOf(control.Kind())) +
                               " and cannot be pressed"};
        }
    }

    void operator()(const Type& command) const
    {
        auto* const number = dynamic_cast<UI_NumberView*>(&FindEnabled(command.identifier));
        if (number == nullptr) {
            throw CommandError{command.identifier + " is no field to type into"};
        }
        driver.Type(*number, command.text);
    }

    void operator()(const AnswerFile& answer) const { runner.mFileAnswers.push_back({runner.mLine, answer}); }
    void operator()(const AnswerColor& answer) const { runner.mColorAnswers.push_back({runner.mLine, answer}); }
    void operator()(const AnswerBox& answer) const { runner.mBoxAnswers.push_back({runner.mLine, answer}); }

    void operator()(const Expect& command) const
    {
        UI_ControlView& control = Find(runner.mDialog, command.identifier);
        const SeenState seen = driver.See(control);
        bool same = seen.value == command.value;
        if (const auto* const number = dynamic_cast<const UI_NumberView*>(&control)) {
            const double wanted = NeedNumber(command.identifier, command.value);
            same = seen.value == FormatNumber(wanted, number->DecimalPlaces());
        } else if (dynamic_cast<const UI_Popup*>(&control) != nullptr) {
            same = seen.value == std::to_string(ParseIndex(command.identifier, command.value));
        } else if (seen.value.empty()) {
            throw CommandError{command.identifier + " is a " + std::string(NameOf(control.Kind())) +
                               " without a value; use expect-text"};
        } else {
            (void)ParseTruth(command.identifier, command.value);
        }
        if (!same) {
            throw CommandError{command.identifier + " is " + seen.value + ", not " + command.value};
        }
    }

    void operator()(const ExpectText& command) const
    {
        const SeenState seen = driver.See(Find(runner.mDialog, command.identifier));
        if (seen.text != command.text) {
            throw CommandError{command.identifier + " shows " + InQuotes(seen.text) + ", not " +
                               InQuotes(command.text)};
        }
    }

    void operator()(const ExpectEnabled& command) const
    {
        const SeenState seen = driver.See(Find(runner.mDialog, command.identifier));
        if (seen.enabled != command.enabled) {
            throw CommandError{command.identifier + (seen.enabled ? " is enabled" : " is disabled")};
        }
    }

    void operator()(const ExpectItem& command) const
    {
        UI_ControlView& control = Find(runner.mDialog, command.identifier);
        if (dynamic_cast<const UI_Popup*>(&control) == nullptr) {
            throw CommandError{command.identifier + " is not a popup"};
        }
        const SeenState seen = driver.See(control);
        const auto index = static_cast<std::size_t>(command.index);
        if (index >= seen.items.size()) {
            throw CommandError{command.identifier + " has no item " + std::to_string(command.index) +
                               "; it has " + std::to_string(seen.items.size())};
        }
        if (seen.items[index].text != command.text) {
            throw CommandError{command.identifier + "'s item " + std::to_string(command.index) + " is " +
                               InQuotes(seen.items[index].text) + ", not " + InQuotes(command.text)};
        }
        if (seen.items[index].enabled != command.enabled) {
            throw CommandError{command.identifier + ": item " + InQuotes(command.text) +
                               (seen.items[index].enabled ? " is enabled" : " is disabled")};
        }
    }

    void operator()(const ExpectStatus& command) const
    {
        if (const std::string seen = driver.SeeStatus(); seen != command.text) {
            throw CommandError{"the status line shows " + InQuotes(seen) + ", not " + InQuotes(command.text)};
        }
    }

    void operator()(const Dump& command) const { WriteFile(command.file, DumpDialog(runner.mDialog, driver)); }

    void operator()(const Screenshot& command) const
    {
        std::string whyNot;
        if (!driver.SaveScreenshot(std::filesystem::path(command.file), whyNot)) {
            throw CommandError{"no screenshot " + InQuotes(command.file) + ": " + whyNot};
        }
    }
};

ScriptRunner::ScriptRunner(std::filesystem::path file, UI_Dialog& dialog)
    : mFile(std::move(file)), mDialog(dialog)
{
    const std::optional<std::string> text = qelcore::files::ReadWholeFile(mFile);
    if (!text) {
        std::error_code error;
        const auto status = std::filesystem::status(mFile, error);
        const bool isSpecial = std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
        Fail(0, isSpecial ? "the script is not an ordinary file" : "the script cannot be read");
        return;
    }
    auto parsed = ParseScript(*text);
    if (const auto* const scriptError = std::get_if<ScriptError>(&parsed)) {
        Fail(scriptError->line, scriptError->text);
        return;
    }
    mCommands = std::get<std::vector<Command>>(std::move(parsed));
}

ScriptRunner::ScriptRunner(std::filesystem::path file, std::vector<Command> commands, UI_Dialog& dialog)
    : mFile(std::move(file)), mDialog(dialog), mCommands(std::move(commands))
{
}

void ScriptRunner::Fail(int line, std::string text)
{
    if (!mFailure) {
        mFailure = ScriptFailure{qelcore::text::UTF8Text(mFile), line, std::move(text)};
    }
}

bool ScriptRunner::AreAnswersUsedUp()
{
    int line = 0;
    const auto note = [&line](const auto& queue) {
        if (!queue.empty() && (line == 0 || queue.front().line < line)) {
            line = queue.front().line;
        }
    };
    note(mFileAnswers);
    note(mColorAnswers);
    note(mBoxAnswers);
    if (line != 0) {
        Fail(line, "this answer is left over: no dialog has asked for it");
    }
    return line == 0;
}

void ScriptRunner::Execute(const Command& command, ControlDriver& driver)
{
    mLine = command.line;
    if (mDialog.IsClosed()) {
        Fail(mLine, "the dialog is closed already");
        return;
    }
    try {
        std::visit(Visitor{*this, driver}, command.action);
    } catch (const CommandError& error) {
        Fail(command.line, error.text);
    }
}

void ScriptRunner::Play(ControlDriver& driver)
{
    for (const Command& command : mCommands) {
        if (mFailure) {
            break;
        }
        Execute(command, driver);
    }
    if (!mFailure) {
        (void)AreAnswersUsedUp();
    }
    mDialog.RequestCancel();
}

std::optional<std::u16string> ScriptRunner::TakeFileAnswer()
{
    if (mFileAnswers.empty()) {
        Fail(mLine, "a file dialog opened without an answer (answer file \"PATH\", or answer file cancel)");
        return std::nullopt;
    }
    const AnswerFile answer = std::move(mFileAnswers.front().answer);
    mFileAnswers.pop_front();
    if (!answer.path) {
        return std::nullopt;
    }
    const std::filesystem::path absolute = std::filesystem::absolute(*answer.path);
    return qelcore::text::ToUTF16(qelcore::text::UTF8Text(absolute));
}

std::optional<sharedui::PickerColor> ScriptRunner::TakeColorAnswer()
{
    if (mColorAnswers.empty()) {
        Fail(mLine, "a color picker opened without an answer (answer color R G B A, or answer color cancel)");
        return std::nullopt;
    }
    const AnswerColor answer = mColorAnswers.front().answer;
    mColorAnswers.pop_front();
    return answer.color;
}

bool ScriptRunner::TakeBoxAnswer()
{
    if (mBoxAnswers.empty()) {
        Fail(mLine, "a message box opened without an answer (answer box yes, or answer box no)");
        return false;
    }
    const bool yes = mBoxAnswers.front().answer.yes;
    mBoxAnswers.pop_front();
    return yes;
}

} // namespace qelui::script
