/// The command line as commands declare it.
///
/// CommandLine.cpp alone includes the parsing library, whose header takes longer to compile than any command.
#pragma once

#include "help/HelpText.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace tessel::cli {

/// One declared option or argument. Copies refer to the same one, which lives as long as its `CommandLine`.
/// Threads: [serialised], like the rest of this header.
class Option {
public:
    Option(CLI::Option& option, OptionText& text) noexcept : mOption(&option), mText(&text) {}

    // NOLINTBEGIN(modernize-use-nodiscard): results are for further calls; the last one is not used.
    /// A command line without it is wrong.
    Option Required() const;

    /// What `--help` calls its value: "FRAME". Without it the value's type: "TEXT".
    Option ValueName(const std::string& name) const;

    /// Of an option with several values: each time it is named it takes one.
    Option OneEach() const;

    /// Of an option with several values: it may be named once, with one value.
    Option Once() const;

    /// `--help` shows the value that the variable holds now.
    Option ShowDefault() const;

    /// Words that it takes, for `--help` and completions. They are not checked here.
    Option WithChoices(std::vector<std::string> words) const;

    /// Its value is a file of this kind, for completions.
    Option TakesFile(FileKind kind) const;
    // NOLINTEND(modernize-use-nodiscard)

    /// Whether the parsed command line names it.
    [[nodiscard]] bool WasGiven() const;

private:
    CLI::Option* mOption;
    OptionText* mText;
};

/// One command, or what all of them share. Copies refer to the same one.
///
/// `names` are "-o,--output" for an option and a bare "CLIP" for an argument. The variables keep their values
/// where the option is not given, and must live until the command has run. An empty text or path is an error,
/// not "not given": a shell makes one of a variable that is not set.
class Command {
public:
    Command(CLI::App& app, CommandText& text) noexcept : mApp(&app), mText(&text) {}

    /// The heading in `--help` of the options that are added from now on; "Options" until the first call. The
    /// heading that stands last is continued.
    /// @throws std::logic_error  for an earlier one
    void StartGroup(const std::string& heading) const;

    Option AddOption(const std::string& names, std::string& text, const std::string& help) const;
    /// A file. @{
    Option AddOption(const std::string& names, std::filesystem::path& file, const std::string& help) const;
    Option AddOption(const std::string& names, std::vector<std::filesystem::path>& files,
                     const std::string& help) const;
    /// @}
    /// Several values; an argument takes all that are left.
    Option AddOption(const std::string& names, std::vector<std::string>& texts, const std::string& help) const;

    /// A decimal whole number from `least` to `most`; leading zeros do not make it octal. @{
    Option AddNumber(const std::string& names, int& number, int least, int most, const std::string& help) const;
    /// As far as 64 bits reach.
    Option AddNumber(const std::string& names, std::int64_t& number, std::int64_t least,
                     const std::string& help) const;
    Option AddNumber(const std::string& names, std::optional<std::int64_t>& number, std::int64_t least,
                     const std::string& help) const;
    /// @}

    /// A finite number of seconds, `least` to `most`.
    Option AddSeconds(const std::string& names, double& seconds, double least, double most,
                      const std::string& help) const;

    /// One of the given words.
    Option AddChoice(const std::string& names, std::string& word, const std::vector<std::string>& words,
                     const std::string& help) const;

    Option AddFlag(const std::string& names, bool& flag, const std::string& help) const;

    /// Paragraphs between the summary and the arguments in `--help`, separated by newlines.
    void SetDescription(const std::string& text) const;

    /// A command line at the end of `--help`, as typed; a test runs it. The files that it may read are those of
    /// the folder `samples`, also as "clip.tessel".
    void AddExample(const std::string& command, const std::string& text) const;

    /// What the command does once the command line is parsed. `run` may throw anything.
    void OnRun(std::function<void()> run) const;

private:
    template <class Value>
    Option AddNotEmpty(const std::string& names, Value& value, const std::string& help) const;
    template <class Number>
    Option AddWhole(const std::string& names, Number& number, std::int64_t least, std::int64_t most,
                    const std::string& help) const;
    [[nodiscard]] OptionText& NewText(const std::string& names, const std::string& help) const;

    CLI::App* mApp;
    CommandText* mText;
};

/// The program's whole command line: options that every command takes, and the commands.
class CommandLine {
public:
    /// @param version  what `--version` prints after the program's name
    CommandLine(const std::string& program, const std::string& summary, const std::string& version);
    ~CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    /// Where the options that stand before or after any command are added.
    [[nodiscard]] Command Shared() const;

    [[nodiscard]] Command AddCommand(const std::string& name, const std::string& summary) const;

    /// A command that programs call and people do not: it stands in no list and has no page.
    [[nodiscard]] Command AddHiddenCommand(const std::string& name, const std::string& summary) const;

    /// Adds a page of `tessel help TOPIC`.
    void AddTopic(TopicText topic) const;

    /// Everything that was declared so far.
    [[nodiscard]] const ProgramText& Text() const noexcept { return *mText; }

    /// Parses and runs the one command that is named, or writes what `--help` and `--version` ask for.
    /// @param argv  `argc` arguments, the program's name first, as `main` gets them
    /// @throws UsageError for a command line that does not parse; what the command throws;
    ///         importhost::HostError if standard output takes no text
    void Run(int argc, const char* const* argv) const;

private:
    [[noreturn]] void Refuse(const std::string& whatIsWrong) const;

    std::unique_ptr<std::deque<CommandText>> mHidden;
    std::unique_ptr<ProgramText> mText; // outlives the parser, whose options point into it
    std::unique_ptr<CLI::App> mApp;
};

} // namespace tessel::cli
