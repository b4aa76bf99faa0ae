/// Dialog scripts: text files with one command a line that act on a dialog as a person would.
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelui/dialogs/ColorPickerDialog.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace qelui::script {

/// The commands. Values stay texts: what they mean depends on the control's kind. @{
struct Set {
    std::string identifier;
    std::string value;
};
struct Choose {
    std::string identifier;
    std::string item;
};
struct Press {
    std::string identifier;
};
struct Type {
    std::string identifier;
    std::string text; ///< need not be a number
};
struct AnswerFile {
    std::optional<std::string> path; ///< nothing: cancel
};
struct AnswerColor {
    std::optional<sharedui::PickerColor> color; ///< nothing: cancel
};
struct AnswerBox {
    bool yes = false;
};
struct Expect {
    std::string identifier;
    std::string value;
};
struct ExpectText {
    std::string identifier;
    std::string text;
};
struct ExpectEnabled {
    std::string identifier;
    bool enabled = false;
};
struct ExpectItem {
    std::string identifier;
    int index = 0;
    std::string text;
    bool enabled = false;
};
struct ExpectStatus {
    std::string text;
};
struct Dump {
    std::string file;
};
struct Screenshot {
    std::string file;
};
/// @}

struct Command {
    int line = 0; ///< counted from 1
    std::variant<Set, Choose, Press, Type, AnswerFile, AnswerColor, AnswerBox, Expect, ExpectText,
                 ExpectEnabled, ExpectItem, ExpectStatus, Dump, Screenshot>
        action;
};

/// Where and why a text is not a script.
struct ScriptError {
    int line = 0; ///< counted from 1
    std::string text;
};

/// Parses UTF-8 text up to its first error. A script is parsed completely before it is played, so that an
/// error in its last line does not leave half an edit. Threads: [any-thread]. Throws only `std::bad_alloc`.
/// @return the commands, or the first error.
[[nodiscard]] KESTRELUI_API std::variant<std::vector<Command>, ScriptError> ParseScript(std::string_view text);

} // namespace qelui::script
