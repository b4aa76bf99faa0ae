#include "Script.h"

#include <kestrel/qelui/controls/UI_Number.h>

#include <charconv>
#include <cmath>
#include <functional>
#include <system_error>
#include <utility>

namespace qelui::script {

namespace {

struct Word {
    std::string text;
    bool quoted = false;
};

/// What is wrong with a line; its number is added by the caller.
struct LineError {
    std::string text;
};

/// Splits a line at blanks; quoted texts may hold blanks, `\"` and `\\`. @throws LineError
std::vector<Word> SplitLine(std::string_view line)
{
    std::vector<Word> words;
    std::size_t at = 0;
    const auto isBlank = [&](std::size_t index) { return line[index] == ' ' || line[index] == '\t'; };
    while (at < line.size()) {
        if (isBlank(at)) {
            ++at;
            continue;
        }
        if (line[at] == '#') {
            break;
        }
        Word word;
        if (line[at] == '"') {
            word.quoted = true;
            ++at;
            for (;; ++at) {
                if (at >= line.size()) {
                    throw LineError{"a quoted text is not closed"};
                }
                if (line[at] == '"') {
                    break;
                }
                if (line[at] == '\\') {
                    ++at;
                    if (at >= line.size() || (line[at] != '"' && line[at] != '\\')) {
                        throw LineError{R"(a backslash in a quoted text stands before " or \ only)"};
                    }
                }
                word.text += line[at];
            }
            ++at;
            if (at < line.size() && !isBlank(at)) {
                throw LineError{"a quoted text ends inside a word"};
            }
        } else {
            while (at < line.size() && !isBlank(at)) {
                if (line[at] == '"') {
                    throw LineError{"a quoted text begins inside a word"};
                }
                word.text += line[at++];
            }
        }
        words.push_back(std::move(word));
    }
    return words;
}

/// The words of one line after its command, read from left to right. All functions throw `LineError`.
class Arguments {
public:
    Arguments(std::vector<Word> words, std::string usage) : mWords(std::move(words)), mUsage(std::move(usage))
    {
    }

    [[nodiscard]] bool IsAtEnd() const noexcept { return mNext == mWords.size(); }
    [[nodiscard]] bool IsNext(std::string_view plainWord) const
    {
        return !IsAtEnd() && !mWords[mNext].quoted && mWords[mNext].text == plainWord;
    }
    std::string Plain()
    {
        Need(!IsAtEnd() && !mWords[mNext].quoted);
        return std::move(mWords[mNext++].text);
    }
    std::string Quoted()
    {
        Need(!IsAtEnd() && mWords[mNext].quoted);
        return std::move(mWords[mNext++].text);
    }
    bool Truth()
    {
        const std::string word = Plain();
        Need(word == "true" || word == "false");
        return word == "true";
    }
    int Index()
    {
        const std::string word = Plain();
        int index = 0;
        const char* const end = word.data() + word.size();
        const auto [stop, error] = std::from_chars(word.data(), end, index);
        Need(error == std::errc{} && stop == end && index >= 0);
        return index;
    }
    float Channel()
    {
        const std::string word = Plain();
        float value = 0.0F;
        const char* const end = word.data() + word.size();
        const auto [stop, error] = std::from_chars(word.data(), end, value);
        Need(error == std::errc{} && stop == end && std::isfinite(value));
        return value;
    }
    void End() const { Need(IsAtEnd()); }
    void Skip() noexcept { ++mNext; }
    void Need(bool condition) const
    {
        if (!condition) {
            throw LineError{"expected: " + mUsage};
        }
    }

private:
    std::vector<Word> mWords;
    std::string mUsage;
    std::size_t mNext = 0;
};

using Action = decltype(Command::action);

Action ParseAnswer(Arguments& arguments)
{
    if (arguments.IsNext("file")) {
        arguments.Skip();
        if (arguments.IsNext("cancel")) {
            arguments.Skip();
            return AnswerFile{};
        }
        AnswerFile answer{arguments.Quoted()};
        arguments.Need(!answer.path->empty());
        return answer;
    }
    if (arguments.IsNext("color")) {
        arguments.Skip();
        if (arguments.IsNext("cancel")) {
            arguments.Skip();
            return AnswerColor{};
        }
        sharedui::PickerColor color;
        color.red = arguments.Channel();
        color.green = arguments.Channel();
        color.blue = arguments.Channel();
        color.alpha = arguments.Channel();
        return AnswerColor{color};
    }
    arguments.Need(arguments.IsNext("box"));
    arguments.Skip();
    const std::string word = arguments.Plain();
    arguments.Need(word == "yes" || word == "no");
    return AnswerBox{word == "yes"};
}

struct CommandForm {
    std::string_view name;
    std::string_view usage;
    Action (*parse)(Arguments&);
};

// Aggregates are filled in the order of their members, which is the order of the words.
constexpr CommandForm kForms[] = {
    {"set", "set IDENTIFIER VALUE",
     [](Arguments& words) -> Action {
         std::string identifier = words.Plain();
         return Set{std::move(identifier), words.Plain()};
     }},
    {"choose", "choose IDENTIFIER \"ITEM\"",
     [](Arguments& words) -> Action {
         std::string identifier = words.Plain();
         return Choose{std::move(identifier), words.Quoted()};
     }},
    {"press", "press IDENTIFIER", [](Arguments& words) -> Action { return Press{words.Plain()}; }},
    {"type", "type IDENTIFIER \"TEXT\"",
     [](Arguments& words) -> Action {
         std::string identifier = words.Plain();
         return Type{std::move(identifier), words.Quoted()};
     }},
    {"answer",
     "answer file \"PATH\" | answer file cancel | answer color RED GREEN BLUE ALPHA | answer color cancel | "
     "answer box yes | answer box no",
     ParseAnswer},
    {"expect", "expect IDENTIFIER VALUE",
     [](Arguments& words) -> Action {
         std::string identifier = words.Plain();
         return Expect{std::move(identifier), words.Plain()};
     }},
    {"expect-text", "expect-text IDENTIFIER \"TEXT\"",
     [](Arguments& words) -> Action {
         std::string identifier = words.Plain();
         return ExpectText{std::move(identifier), words.Quoted()};
     }},
    {"expect-enabled", "expect-enabled IDENTIFIER true|false",
     [](Arguments& words) -> Action {
         std::string identifier = words.Plain();
         return ExpectEnabled{std::move(identifier), words.Truth()};
     }},
    {"expect-item", "expect-item IDENTIFIER INDEX \"ITEM\" true|false",
     [](Arguments& words) -> Action {
         std::string identifier = words.Plain();
         const int index = words.Index();
         std::string text = words.Quoted();
         return ExpectItem{std::move(identifier), index, std::move(text), words.Truth()};
     }},
    {"expect-status", "expect-status \"TEXT\"",
     [](Arguments& words) -> Action { return ExpectStatus{words.Quoted()}; }},
    {"dump", "dump \"FILE\"", [](Arguments& words) -> Action { return Dump{words.Quoted()}; }},
    {"screenshot", "screenshot \"FILE\"",
     [](Arguments& words) -> Action { return Screenshot{words.Quoted()}; }},
};

/// @throws LineError
Action ParseWords(std::vector<Word> words)
{
    const Word command = std::move(words.front());
    words.erase(words.begin());
    for (const CommandForm& form : kForms) {
        if (!command.quoted && command.text == form.name) {
            Arguments arguments(std::move(words), std::string(form.usage));
            Action action = form.parse(arguments);
            arguments.End();
            return action;
        }
    }
    std::string known;
    for (const CommandForm& form : kForms) {
        known += (known.empty() ? "" : ", ") + std::string(form.name);
    }
    throw LineError{'"' + command.text + "\" is not a command; the commands are: " + known};
}

} // namespace

std::variant<std::vector<Command>, ScriptError> ParseScript(std::string_view text)
{
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(kByteOrderMark)) {
        text.remove_prefix(kByteOrderMark.size());
    }
    std::vector<Command> commands;
    for (int number = 1; !text.empty(); ++number) {
        const auto end = text.find('\n');
        std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        try {
            std::vector<Word> words = SplitLine(line);
            if (!words.empty()) {
                commands.push_back({number, ParseWords(std::move(words))});
            }
        } catch (const LineError& error) {
            return ScriptError{number, error.text};
        }
    }
    return commands;
}

} // namespace qelui::script
