/// `tessel help`: pages about commands and topics, and all of it as data.

#include "CommandLine.h"
#include "Commands.h"
#include "help/HelpData.h"
#include "help/HelpPage.h"
#include "help/Topics.h"

#include <tessel/typed/NearMisses.h>

#include <memory>
#include <string>
#include <vector>

namespace tessel::cli {
namespace {

using typed::DidYouMean;
using typed::NamesOfRows;

struct HelpOptions {
    std::string subject;
    bool dumpJson = false;
};

template <class Rows>
auto* RowCalled(const Rows& rows, const std::string& name)
{
    for (const auto& row : rows) {
        if (row.name == name) {
            return &row;
        }
    }
    return static_cast<decltype(&*rows.begin())>(nullptr);
}

void RunHelp(const ProgramText& program, const HelpOptions& options)
{
    if (options.dumpJson) {
        WriteOut(HelpAsJson(program));
        return;
    }
    if (options.subject.empty()) {
        WriteOut(ProgramPage(program, PageWidth()));
        return;
    }
    const std::string subject = options.subject == "colours" ? "colors" : options.subject;
    if (const TopicText* topic = RowCalled(program.topics, subject)) {
        WriteOut(TopicPage(*topic, PageWidth()));
        return;
    }
    if (const CommandText* command = RowCalled(program.commands, subject)) {
        WriteOut(CommandPage(program, *command, PageWidth()));
        return;
    }
    std::vector<std::string> names = NamesOfRows(program.topics);
    for (const CommandText& command : program.commands) {
        names.push_back(command.name);
    }
    std::string known;
    for (const std::string& name : names) {
        known += (known.empty() ? "" : ", ") + name;
    }
    throw UsageError("there is no help on '" + options.subject + "', but on " + known +
                     DidYouMean(options.subject, names));
}

} // namespace

void AddHelpCommand(CommandLine& commandLine)
{
    const auto options = std::make_shared<HelpOptions>();
    const Command command = commandLine.AddCommand("help", "Explain a topic or a command");
    commandLine.AddTopic(AboutDocuments());
    commandLine.AddTopic(AboutCodecs());
    commandLine.AddTopic(AboutColors());
    command.AddOption("TOPIC", options->subject, "A topic or a command; without it the list of both")
        .WithChoices(NamesOfRows(commandLine.Text().topics));
    command.AddFlag("--dump-json", options->dumpJson,
                    "Print all help as JSON, for those who make man pages and completions");
    command.AddExample("tessel help codecs", "What goes into which file");
    command.AddExample("tessel help render", "The same as tessel render --help");
    command.OnRun([&commandLine, options] { RunHelp(commandLine.Text(), *options); });
}

} // namespace tessel::cli
