#include "CommandLine.h"

#include "Commands.h"
#include "ValueChecks.h"
#include "help/HelpPage.h"

#include <tessel/typed/NearMisses.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace tessel::cli {
namespace {

using typed::DidYouMean;
using typed::NamesOfRows;

constexpr char kUsualGroup[] = "Options";

template <class Value>
constexpr bool kIsList = false;
template <class Element>
constexpr bool kIsList<std::vector<Element>> = true;

CLI::Validator Checked(ValueCheck check)
{
    return {std::move(check), /*description=*/""};
}

/// "-o,--output" as two names.
std::vector<std::string> SplitNames(const std::string& names)
{
    std::vector<std::string> parts;
    std::size_t start = 0;
    while (start <= names.size()) {
        const std::size_t end = std::min(names.find(',', start), names.size());
        parts.push_back(names.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

/// The command whose options were being parsed; null before one was named.
const CommandText* NamedCommand(const CLI::App& app, const ProgramText& program)
{
    const auto parsed = app.get_subcommands();
    const auto found =
        std::find_if(program.commands.begin(), program.commands.end(), [&parsed](const CommandText& command) {
            return !parsed.empty() && parsed.front()->get_name() == command.name;
        });
    return found != program.commands.end() ? &*found : nullptr;
}

void AppendNames(const std::deque<OptionGroup>& groups, std::vector<std::string>& names)
{
    for (const OptionGroup& group : groups) {
        for (const OptionText& option : group.options) {
            names.insert(names.end(), option.names.begin(), option.names.end());
        }
    }
}

/// What is said of an argument that nothing takes.
std::string UnknownArgument(const std::string& argument, const ProgramText& program, const CommandText* command)
{
    if (command == nullptr) {
        const std::vector<std::string> names = NamesOfRows(program.commands);
        std::string known;
        for (const std::string& name : names) {
            known += (known.empty() ? "" : ", ") + name;
        }
        if (!argument.starts_with('-')) {
            return "'" + argument + "' is no command; there are " + known + DidYouMean(argument, names);
        }
    }
    if (!argument.starts_with('-')) {
        return "'" + argument + "' is one argument too many";
    }
    const std::string option = argument.substr(0, argument.find('='));
    std::vector<std::string> names;
    AppendNames(program.shared.groups, names);
    if (command != nullptr) {
        AppendNames(command->groups, names);
    }
    return "'" + option + "' is no option" + (command != nullptr ? " of " + command->name : "") +
           DidYouMean(option, names);
}

std::string Missing(const std::string& argument, const CommandText& command)
{
    std::string choices;
    for (const OptionText& positional : command.positionals) {
        if (positional.names.front() == argument) {
            for (const std::string& choice : positional.choices) {
                choices += (choices.empty() ? ": it is one of " : ", ") + choice;
            }
        }
    }
    return argument + " is missing" + choices;
}

/// The parser's complaint in this program's words.
std::string WhatIsWrong(const CLI::App& app, const ProgramText& program, const CLI::ParseError& error)
{
    const CommandText* command = NamedCommand(app, program);
    std::string said = error.what();
    const std::string name = said.substr(0, said.find(": "));
    const std::vector<std::string> unknown = app.remaining(/*recurse=*/true);
    if (!unknown.empty() && (command == nullptr || dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr)) {
        return UnknownArgument(unknown.front(), program, command);
    }
    if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) {
        return command == nullptr ? "a command is missing"
                                  : Missing(said.substr(0, said.find(" is required")), *command);
    }
    if (const std::size_t end = said.find(" was given a disallowed flag override"); end != std::string::npos) {
        return (end == 1 ? "-" : "--") + said.substr(0, end) + " takes no value";
    }
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
        return name + (said.find("At Most") != std::string::npos ? " takes one value" : " needs a value");
    }
    return said;
}

} // namespace

Option Option::Required() const
{
    mOption->required();
    mText->isRequired = true;
    return *this;
}

Option Option::ValueName(const std::string& name) const
{
    if (!mText->value.empty()) { // an argument is called by its name
        mText->value = name;
    }
    return *this;
}

Option Option::OneEach() const
{
    mOption->allow_extra_args(false);
    return *this;
}

Option Option::Once() const
{
    mOption->expected(1);
    mText->takesSeveral = false;
    return *this;
}

Option Option::ShowDefault() const
{
    mOption->capture_default_str();
    mText->usual = mOption->get_default_str();
    return *this;
}

Option Option::WithChoices(std::vector<std::string> words) const
{
    mText->choices = std::move(words);
    return *this;
}

Option Option::TakesFile(FileKind kind) const
{
    mText->file = kind;
    return *this;
}

bool Option::WasGiven() const
{
    return mOption->count() > 0;
}

OptionText& Command::NewText(const std::string& names, const std::string& help) const
{
    OptionText text;
    text.names = SplitNames(names);
    text.text = help;
    if (!names.starts_with('-')) {
        return mText->positionals.emplace_back(std::move(text));
    }
    if (mText->groups.empty()) {
        mText->groups.push_back({kUsualGroup, {}});
    }
    return mText->groups.back().options.emplace_back(std::move(text));
}

template <class Value>
Option Command::AddNotEmpty(const std::string& names, Value& value, const std::string& help) const
{
    OptionText& text = NewText(names, help);
    text.value = names.starts_with('-') ? "TEXT" : "";
    text.takesSeveral = kIsList<Value>;
    return {*mApp->add_option(names, value, help)->check(Checked(NotEmpty())), text};
}

template <class Number>
Option Command::AddWhole(const std::string& names, Number& number, std::int64_t least, std::int64_t most,
                         const std::string& help) const
{
    OptionText& text = NewText(names, help);
    text.value = "NUMBER";
    // Transformed, because the check writes the number without leading zeros.
    return {*mApp->add_option(names, number, help)->transform(Checked(Whole(least, most))), text};
}

void Command::StartGroup(const std::string& heading) const
{
    auto& groups = mText->groups;
    const auto found = std::find_if(groups.begin(), groups.end(),
                                    [&heading](const OptionGroup& group) { return group.name == heading; });
    if (found == groups.end()) {
        groups.push_back({heading, {}});
    } else if (found + 1 != groups.end()) {
        throw std::logic_error("the options of '" + heading + "' do not stand together");
    }
}

Option Command::AddOption(const std::string& names, std::string& text, const std::string& help) const
{
    return AddNotEmpty(names, text, help);
}

Option Command::AddOption(const std::string& names, std::filesystem::path& file, const std::string& help) const
{
    return AddNotEmpty(names, file, help).ValueName("FILE").TakesFile(FileKind::Any);
}

Option Command::AddOption(const std::string& names, std::vector<std::string>& texts,
                          const std::string& help) const
{
    return AddNotEmpty(names, texts, help);
}

Option Command::AddOption(const std::string& names, std::vector<std::filesystem::path>& files,
                          const std::string& help) const
{
    return AddNotEmpty(names, files, help).ValueName("FILE").TakesFile(FileKind::Any);
}

Option Command::AddNumber(const std::string& names, int& number, int least, int most,
                          const std::string& help) const
{
    return AddWhole(names, number, least, most, help);
}

Option Command::AddNumber(const std::string& names, std::int64_t& number, std::int64_t least,
                          const std::string& help) const
{
    return AddWhole(names, number, least, INT64_MAX, help);
}

Option Command::AddNumber(const std::string& names, std::optional<std::int64_t>& number, std::int64_t least,
                          const std::string& help) const
{
    return AddWhole(names, number, least, INT64_MAX, help);
}

Option Command::AddSeconds(const std::string& names, double& seconds, double least, double most,
                           const std::string& help) const
{
    OptionText& text = NewText(names, help);
    text.value = "SECONDS";
    return {*mApp->add_option(names, seconds, help)->check(Checked(Seconds(least, most))), text};
}

Option Command::AddChoice(const std::string& names, std::string& word, const std::vector<std::string>& words,
                          const std::string& help) const
{
    OptionText& text = NewText(names, help);
    text.value = names.starts_with('-') ? "WORD" : "";
    text.choices = words;
    return {*mApp->add_option(names, word, help)->check(Checked(OneOf(words))), text};
}

Option Command::AddFlag(const std::string& names, bool& flag, const std::string& help) const
{
    OptionText& text = NewText(names, help);
    return {*mApp->add_flag(names, flag, help)->disable_flag_override(), text};
}

void Command::SetDescription(const std::string& text) const
{
    mText->description = text;
}

void Command::AddExample(const std::string& command, const std::string& text) const
{
    mText->examples.push_back({command, text});
}

void Command::OnRun(std::function<void()> run) const
{
    mApp->callback(std::move(run));
}

CommandLine::CommandLine(const std::string& program, const std::string& summary, const std::string& version)
    : mHidden(std::make_unique<std::deque<CommandText>>()), mText(std::make_unique<ProgramText>()),
      mApp(std::make_unique<CLI::App>(summary, program))
{
    mText->name = program;
    mText->summary = summary;
    mText->version = version;
    mText->shared.name = program;
    mApp->require_subcommand(1);
    mApp->fallthrough(); // the shared options may also stand after the command
    mApp->set_version_flag("--version", program + ' ' + version)->disable_flag_override();
    mText->shared.groups.push_back({"All commands", {}});
    auto& options = mText->shared.groups.back().options;
    options.push_back({.names = {"-h", "--help"}, .text = "Print this page, or that of a command"});
    options.push_back({.names = {"--version"}, .text = "Print the version"});
}

CommandLine::~CommandLine() = default;

Command CommandLine::Shared() const
{
    return {*mApp, mText->shared};
}

Command CommandLine::AddCommand(const std::string& name, const std::string& summary) const
{
    CommandText& text = mText->commands.emplace_back();
    text.name = name;
    text.summary = summary;
    return {*mApp->add_subcommand(name, summary), text};
}

Command CommandLine::AddHiddenCommand(const std::string& name, const std::string& summary) const
{
    return {*mApp->add_subcommand(name, summary), mHidden->emplace_back()};
}

void CommandLine::AddTopic(TopicText topic) const
{
    mText->topics.push_back(std::move(topic));
}

void CommandLine::Refuse(const std::string& whatIsWrong) const
{
    const CommandText* command = NamedCommand(*mApp, *mText);
    throw UsageError(whatIsWrong + " (see " + mText->name + (command != nullptr ? ' ' + command->name : "") +
                     " --help)");
}

void CommandLine::Run(int argc, const char* const* argv) const
{
    try {
        mApp->parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        const CommandText* command = NamedCommand(*mApp, *mText);
        WriteOut(command != nullptr ? CommandPage(*mText, *command, PageWidth())
                                    : ProgramPage(*mText, PageWidth()));
    } catch (const CLI::CallForVersion&) {
        WriteOut(mText->name + ' ' + mText->version + '\n');
    } catch (const CLI::ParseError& error) {
        Refuse(WhatIsWrong(*mApp, *mText, error));
    }
}

} // namespace tessel::cli
