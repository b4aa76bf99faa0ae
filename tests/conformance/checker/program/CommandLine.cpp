#include "CommandLine.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <map>
#include <stdexcept>

namespace conformance {

const char* const kUsage = R"(usage: kestrel-conformance PLUGIN [options]
       kestrel-conformance --list [--json]

Checks an importer plug-in. Each check runs in a process of its own.

  --document FILE      a document of the importer, for the checks that open one
  --suite NAME         run one suite, general or tessel; tessel then runs on any importer
  --check ID           run this check only, or all of a subject (frame); may be repeated
  --expect-failing ID  this check must fail; may be repeated
  --expect-skipped ID  this check must be skipped, and no other may; may be repeated
  --time-limit SECONDS for each check (default 60)
  --seed NUMBER        of the random times, positions and damages (default 1)
  --json               results as JSON on standard output
  --junit FILE         results also as JUnit XML into FILE
  --verbose            show what the plug-in prints
  --version            print the version

Exit code 0 when exactly the expected checks failed (without --expect-failing: none), 1 otherwise, 2 for a
wrong command line. A skipped check counts as neither, unless --expect-skipped is given.
)";

namespace {

template <class Number>
Number ParseNumber(const std::string& option, const std::string& text, Number smallest)
{
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < smallest) {
        throw std::invalid_argument(option + " takes a whole number from " + std::to_string(smallest) +
                                    ", not '" + text + "'");
    }
    return number;
}

Suite ParseSuite(const std::string& name)
{
    if (name != "general" && name != "tessel") {
        throw std::invalid_argument("--suite takes general or tessel, not '" + name + "'");
    }
    return name == "general" ? Suite::General : Suite::Tessel;
}

/// The file that `what` names, wherever the checks run.
std::filesystem::path ParseFile(const std::string& what, const std::string& text)
{
    if (text.empty()) {
        throw std::invalid_argument(what + " is an empty name, a file was expected");
    }
    return std::filesystem::absolute(text);
}

bool Matches(const std::string& chosen, const std::string& id)
{
    return id == chosen || id.rfind(chosen + ".", 0) == 0;
}

} // namespace

Options ParseCommandLine(const std::vector<std::string>& arguments)
{
    Options options;
    const std::map<std::string, std::function<void()>> switches = {
        {"--json", [&] { options.format = Format::Json; }}, {"--verbose", [&] { options.verbose = true; }},
        {"--list", [&] { options.list = true; }},           {"--help", [&] { options.help = true; }},
        {"--version", [&] { options.version = true; }},
    };
    using Text = const std::string&;
    const std::map<std::string, std::function<void(Text)>> settings = {
        {"--document", [&](Text value) { options.document = ParseFile("--document", value); }},
        {"--suite", [&](Text value) { options.suite = ParseSuite(value); }},
        {"--check", [&](Text value) { options.only.push_back(value); }},
        {"--expect-failing", [&](Text value) { options.expectFailing.push_back(value); }},
        {"--expect-skipped", [&](Text value) { options.expectSkipped.push_back(value); }},
        {"--time-limit",
         [&](Text value) { options.timeLimit = std::chrono::seconds(ParseNumber("--time-limit", value, 1)); }},
        {"--seed", [&](Text value) { options.seed = ParseNumber<std::uint64_t>("--seed", value, 0); }},
        {"--junit", [&](Text value) { options.junitFile = value; }},
        {"--run-here", [&](Text value) { options.runHere = value; }}, // for the checker itself
    };
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        if (const auto found = switches.find(*argument); found != switches.end()) {
            found->second();
        } else if (const auto setting = settings.find(*argument); setting != settings.end()) {
            if (argument + 1 == arguments.end()) {
                throw std::invalid_argument(*argument + " needs a value");
            }
            setting->second(*++argument);
        } else if (argument->rfind("--", 0) == 0) {
            throw std::invalid_argument("there is no option " + *argument + "; --help names them");
        } else if (!options.plugin.empty()) {
            throw std::invalid_argument("one plug-in at a time: '" + *argument + "' is one too many");
        } else {
            options.plugin = ParseFile("the plug-in", *argument);
        }
    }
    if (options.plugin.empty() && !options.list && !options.help && !options.version) {
        throw std::invalid_argument("which plug-in? Name its file; --help names the options");
    }
    if (!options.plugin.empty() && !std::filesystem::is_regular_file(options.plugin)) {
        throw std::invalid_argument("the plug-in " + options.plugin.string() + " is not a file");
    }
    if (!options.document.empty() && !std::filesystem::is_regular_file(options.document)) {
        throw std::invalid_argument("--document " + options.document.string() + " is not a file");
    }
    return options;
}

bool IsChosen(const Options& options, const Check& check)
{
    if (options.suite && *options.suite != check.InSuite()) {
        return false;
    }
    return options.only.empty() ||
           std::any_of(options.only.begin(), options.only.end(),
                       [&check](const std::string& chosen) { return Matches(chosen, check.id); });
}

void RequireKnownIds(const Options& options, const std::vector<Check>& checks)
{
    for (const auto* const ids : {&options.only, &options.expectFailing, &options.expectSkipped}) {
        for (const std::string& id : *ids) {
            const bool isKnown = std::any_of(checks.begin(), checks.end(), [&](const Check& check) {
                return ids == &options.only ? Matches(id, check.id) : id == check.id;
            });
            if (!isKnown) {
                throw std::invalid_argument("there is no check '" + id + "'; --list names them");
            }
        }
    }
}

} // namespace conformance
