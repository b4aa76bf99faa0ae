#include "HelpPage.h"

#include "Terminal.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <optional>
#include <system_error>

namespace tessel::cli {
namespace {

constexpr std::size_t kUsualWidth = 80;
constexpr std::size_t kIndent = 2;
constexpr std::size_t kTextColumn = 26; // where the texts of options begin

std::optional<std::size_t> ColumnsVariable()
{
    const char* text = std::getenv("COLUMNS"); // NOLINT(concurrency-mt-unsafe): only read
    const std::string_view digits = text != nullptr ? text : "";
    std::size_t columns = 0;
    const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), columns);
    const bool isNumber = error == std::errc{} && stop == digits.data() + digits.size() && columns > 0;
    return isNumber ? std::optional(columns) : std::nullopt;
}

/// Columns that a text takes: characters, not bytes.
std::size_t Columns(std::string_view text)
{
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
    }));
}

/// Where the last cell of a table's row begins: behind its first gap of two blanks. A row without such a gap is
/// one cell behind its leading blanks.
std::size_t LastCell(std::string_view row)
{
    const std::size_t first = std::min(row.find_first_not_of(' '), row.size());
    const std::size_t gap = row.find("  ", first);
    return gap == std::string_view::npos ? first : std::min(row.find_first_not_of(' ', gap), row.size());
}

/// Adds words to the page's last line, which has `used` columns, and to more lines, which begin at `column`.
void WrapWords(std::string_view words, std::size_t used, std::size_t column, std::size_t width,
               std::string& page)
{
    bool isFirst = true; // of its line
    while (!words.empty()) {
        const std::size_t end = std::min(words.find(' '), words.size());
        const std::string_view word = words.substr(0, end);
        words.remove_prefix(std::min(end + 1, words.size()));
        if (!isFirst && used + 1 + Columns(word) > width) {
            page += '\n' + std::string(column, ' ');
            used = column;
            isFirst = true;
        }
        page += isFirst ? "" : " ";
        page += word;
        used += (isFirst ? 0 : 1) + Columns(word);
        isFirst = false;
    }
    page += '\n';
}

void WrapLine(std::string_view line, std::size_t indent, std::size_t width, std::string& page)
{
    if (line.empty()) {
        page += '\n';
        return;
    }
    const std::size_t cell = line.front() == ' ' ? LastCell(line) : 0;
    page += std::string(indent, ' ') + std::string(line.substr(0, cell));
    WrapWords(line.substr(cell), indent + cell, indent + std::min(cell, width / 2), width, page);
}

std::string Join(const std::vector<std::string>& words)
{
    std::string line;
    for (const std::string& word : words) {
        line += (line.empty() ? "" : ", ") + word;
    }
    return line;
}

/// A name and what it means, side by side; below each other where the name is long.
void AddEntry(const std::string& name, const std::string& text, std::size_t width, std::string& page)
{
    const std::size_t column = std::min(kTextColumn, width / 2);
    const std::string margin(kIndent, ' ');
    std::string wrapped = Wrapped(text, column, width);
    if (kIndent + Columns(name) + 2 <= column && !wrapped.empty()) {
        wrapped.replace(0, kIndent + Columns(name), margin + name);
        page += wrapped;
    } else {
        page += margin + name + '\n' + wrapped;
    }
}

std::string NamesOf(const OptionText& option)
{
    std::string names = Join(option.names);
    if (!option.value.empty()) {
        names += ' ' + option.value;
    }
    return names + (option.takesSeveral ? "..." : "");
}

std::string MeaningOf(const OptionText& option)
{
    std::string text = option.text;
    if (!option.choices.empty()) {
        text += ": " + Join(option.choices);
    }
    if (!option.usual.empty()) {
        text += " (usually " + option.usual + ')';
    }
    return text;
}

void AddOptions(const std::string& heading, const std::deque<OptionText>& options, std::size_t width,
                std::string& page)
{
    if (options.empty()) {
        return;
    }
    page += '\n' + heading + ":\n";
    for (const OptionText& option : options) {
        AddEntry(NamesOf(option), MeaningOf(option), width, page);
    }
}

void AddGroups(const std::deque<OptionGroup>& groups, std::size_t width, std::string& page)
{
    for (const OptionGroup& group : groups) {
        AddOptions(group.name, group.options, width, page);
    }
}

void AddExamples(const std::vector<Example>& examples, std::size_t width, std::string& page)
{
    if (!examples.empty()) {
        page += "\nExamples:\n";
    }
    for (const Example& example : examples) {
        // As it is typed: a command that is broken into lines cannot be copied.
        page += std::string(kIndent, ' ') + example.command + '\n';
        page += Wrapped(example.text, 3 * kIndent, width);
    }
}

} // namespace

std::string UsageOf(const ProgramText& program, const CommandText& command)
{
    std::string usage = program.name + ' ' + command.name;
    std::string required;
    bool hasOptions = false;
    for (const OptionGroup& group : command.groups) {
        for (const OptionText& option : group.options) {
            hasOptions = hasOptions || !option.isRequired;
            if (option.isRequired) {
                required += ' ' + option.names.front() + ' ' + option.value;
            }
        }
    }
    usage += hasOptions ? " [OPTIONS]" : "";
    for (const OptionText& argument : command.positionals) {
        const std::string name = argument.names.front() + (argument.takesSeveral ? "..." : "");
        usage += argument.isRequired ? ' ' + name : " [" + name + ']';
    }
    return usage + required;
}

std::size_t PageWidth()
{
    const std::optional<std::size_t> terminal = TerminalColumns();
    const std::size_t columns = terminal ? *terminal : ColumnsVariable().value_or(kUsualWidth);
    return std::clamp(columns, kNarrowestPage, kWidestPage);
}

std::string Wrapped(std::string_view text, std::size_t indent, std::size_t width)
{
    std::string page;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        WrapLine(text.substr(0, end), indent, width, page);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return page;
}

std::string ProgramPage(const ProgramText& program, std::size_t width)
{
    std::string page = Wrapped("Usage: " + program.name + " COMMAND [OPTIONS] ...", 0, width);
    page += '\n' + Wrapped(program.summary, 0, width) + "\nCommands:\n";
    for (const CommandText& command : program.commands) {
        AddEntry(command.name, command.summary, width, page);
    }
    AddGroups(program.shared.groups, width, page);
    page += "\nTopics:\n";
    for (const TopicText& topic : program.topics) {
        AddEntry("help " + topic.name, topic.summary, width, page);
    }
    AddExamples(program.shared.examples, width, page);
    return page;
}

std::string CommandPage(const ProgramText& program, const CommandText& command, std::size_t width)
{
    std::string page = Wrapped("Usage: " + UsageOf(program, command), 0, width);
    page += '\n' + Wrapped(command.summary, 0, width);
    if (!command.description.empty()) {
        page += '\n' + Wrapped(command.description, 0, width);
    }
    AddOptions("Arguments", command.positionals, width, page);
    AddGroups(command.groups, width, page);
    AddGroups(program.shared.groups, width, page);
    AddExamples(command.examples, width, page);
    return page;
}

std::string TopicPage(const TopicText& topic, std::size_t width)
{
    return Wrapped(topic.summary, 0, width) + '\n' + Wrapped(topic.text, 0, width);
}

} // namespace tessel::cli
