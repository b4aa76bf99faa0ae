#include "CommandLine.h"

#include "Commands.h"
#include "ValueChecks.h"

#include <CLI/CLI.hpp>

#include <sstream>
#include <utility>

namespace tessel::cli {
namespace {

CLI::Validator Checked(ValueCheck check)
{
    return {std::move(check), /*description=*/""};
}

template <class Value>
Option AddNotEmpty(CLI::App& app, const std::string& names, Value& value, const std::string& help)
{
    return Option(*app.add_option(names, value, help)->check(Checked(NotEmpty())));
}

template <class Number>
Option AddWhole(CLI::App& app, const std::string& names, Number& number, std::int64_t least,
                const std::string& help)
{
    // Transformed, because the check writes the number without leading zeros.
    return Option(*app.add_option(names, number, help)->transform(Checked(WholeFrom(least))));
}

/// What is wrong with a command line, in one line. Names what was typed where a command was expected.
std::string WhatIsWrong(const CLI::App& app, const CLI::ParseError& error)
{
    const std::vector<std::string> unknown = app.remaining();
    if (!app.get_subcommands().empty() || unknown.empty()) {
        return error.what();
    }
    std::string known;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
        known += (known.empty() ? "" : ", ") + command->get_name();
    }
    return "'" + unknown.front() + "' is no command; there are " + known;
}

} // namespace

Option Option::Required() const
{
    return Option(*mOption->required());
}

Option Option::ValueName(const std::string& name) const
{
    return Option(*mOption->type_name(name));
}

Option Option::OneEach() const
{
    return Option(*mOption->allow_extra_args(false));
}

Option Option::ShowDefault() const
{
    return Option(*mOption->capture_default_str());
}

bool Option::WasGiven() const
{
    return mOption->count() > 0;
}

Option Command::AddOption(const std::string& names, std::string& text, const std::string& help) const
{
    return AddNotEmpty(*mApp, names, text, help);
}

Option Command::AddOption(const std::string& names, std::filesystem::path& file, const std::string& help) const
{
    return AddNotEmpty(*mApp, names, file, help);
}

Option Command::AddOption(const std::string& names, std::vector<std::string>& texts,
                          const std::string& help) const
{
    return AddNotEmpty(*mApp, names, texts, help);
}

Option Command::AddOption(const std::string& names, std::vector<std::filesystem::path>& files,
                          const std::string& help) const
{
    return AddNotEmpty(*mApp, names, files, help);
}

Option Command::AddNumber(const std::string& names, int& number, int least, const std::string& help) const
{
    return AddWhole(*mApp, names, number, least, help);
}

Option Command::AddNumber(const std::string& names, std::int64_t& number, std::int64_t least,
                          const std::string& help) const
{
    return AddWhole(*mApp, names, number, least, help);
}

Option Command::AddNumber(const std::string& names, std::optional<std::int64_t>& number, std::int64_t least,
                          const std::string& help) const
{
    return AddWhole(*mApp, names, number, least, help);
}

Option Command::AddSeconds(const std::string& names, double& seconds, double least, double most,
                           const std::string& help) const
{
    return Option(*mApp->add_option(names, seconds, help)->check(Checked(Seconds(least, most))));
}

Option Command::AddChoice(const std::string& names, std::string& word, const std::vector<std::string>& words,
                          const std::string& help) const
{
    return Option(*mApp->add_option(names, word, help)->check(CLI::IsMember(words)));
}

void Command::AddFlag(const std::string& names, bool& flag, const std::string& help) const
{
    mApp->add_flag(names, flag, help);
}

void Command::SetFooter(const std::string& text) const
{
    mApp->footer(text);
}

void Command::OnRun(std::function<void()> run) const
{
    mApp->callback(std::move(run));
}

CommandLine::CommandLine(const std::string& program, const std::string& description, const std::string& version)
    : mApp(std::make_unique<CLI::App>(description, program))
{
    mApp->require_subcommand(1);
    mApp->fallthrough(); // the shared options may also stand after the command
    mApp->set_version_flag("--version", program + ' ' + version);
}

CommandLine::~CommandLine() = default;

Command CommandLine::Shared() const
{
    return Command(*mApp);
}

Command CommandLine::AddCommand(const std::string& name, const std::string& description) const
{
    return Command(*mApp->add_subcommand(name, description));
}

void CommandLine::Run(int argc, const char* const* argv) const
{
    try {
        mApp->parse(argc, argv);
    } catch (const CLI::Success& answer) { // --help and --version
        std::ostringstream text;
        mApp->exit(answer, text, text);
        WriteOut(text.str());
    } catch (const CLI::ParseError& error) {
        throw UsageError(WhatIsWrong(*mApp, error) + " (see " + mApp->get_name() + " --help)");
    }
}

} // namespace tessel::cli
