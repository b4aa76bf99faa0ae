#include "Runner.h"

#include "../host/TemporaryFolder.h"
#include "../tessel/Documents.h"
#include "../tessel/TesselChecks.h"
#include "Process.h"

#include <algorithm>
#include <chrono>
#include <exception>

namespace conformance {

namespace {

/// The first line of a report; the reason follows.
constexpr const char* kVerdictLines[] = {"passed\n", "failed\n", "skipped\n"};

std::string Report(Verdict verdict, const std::string& reason)
{
    return kVerdictLines[static_cast<int>(verdict)] + reason;
}

/// What the process's own report says. A process that ends without one, with whatever status, has failed.
Outcome OutcomeOf(const ProcessEnd& end)
{
    for (const Verdict verdict : {Verdict::Passed, Verdict::Failed, Verdict::Skipped}) {
        const std::string line = kVerdictLines[static_cast<int>(verdict)];
        if (end.status == 0 && end.report.rfind(line, 0) == 0) {
            return {verdict, end.report.substr(line.size())};
        }
    }
    return {Verdict::Failed,
            "the check's process ended with status " + std::to_string(end.status) + " before the check did"};
}

/// Loads the plug-in, gives the check its document, and runs it.
void RunCheck(const Check& check, const Options& options, const TemporaryFolder& folder)
{
    Plugin plugin(options.plugin, options.seed);
    const bool opensTesselFiles = plugin.FirstExtension() == kTesselExtension;
    if (check.InSuite() == Suite::Tessel && !opensTesselFiles && options.suite != Suite::Tessel) {
        throw Skipped("the importer's files are ." + plugin.FirstExtension() + " and not .tessel files");
    }
    if (!options.document.empty()) {
        plugin.SetDocument(options.document);
    } else if (opensTesselFiles) {
        plugin.SetDocument(folder.Write("sample.tessel", SampleDocument()));
    }
    check.run(plugin);
}

} // namespace

Outcome RunInOwnProcess(const Check& check, const Options& options)
{
    // Made and removed by this side, so that a check that crashes leaves no files.
    const TemporaryFolder folder;
    ProcessOrder order;
    order.executable = OwnExecutable();
    order.arguments = {options.plugin.string(), "--run-here", check.id, "--seed", std::to_string(options.seed)};
    if (!options.document.empty()) {
        order.arguments.insert(order.arguments.end(), {"--document", options.document.string()});
    }
    if (options.suite) {
        order.arguments.insert(order.arguments.end(),
                               {"--suite", *options.suite == Suite::Tessel ? "tessel" : "general"});
    }
    order.environment = {{"TMPDIR", folder.Path().string()}};
    order.withoutVariables = "KESTREL_";
    order.timeLimit = options.timeLimit;
    order.showOutput = options.verbose;

    const auto start = std::chrono::steady_clock::now();
    const ProcessEnd end = RunProcess(order);
    Outcome outcome;
    switch (end.how) {
    case ProcessEnd::How::Exited:
        outcome = OutcomeOf(end);
        break;
    case ProcessEnd::How::Crashed:
        outcome.reason = "crashed: " + end.reason;
        break;
    case ProcessEnd::How::TimedOut:
        outcome.reason = "did not end within " + std::to_string(options.timeLimit.count()) +
                         (options.timeLimit.count() == 1 ? " second" : " seconds");
        break;
    case ProcessEnd::How::NotStarted:
        outcome.reason = "not run: " + end.reason;
        break;
    }
    outcome.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return outcome;
}

void RunHere(const Options& options)
{
    std::string report;
    try {
        const std::vector<Check> checks = AllChecks();
        const auto check = std::find_if(checks.begin(), checks.end(),
                                        [&](const Check& each) { return each.id == options.runHere; });
        const TemporaryFolder folder;
        if (check == checks.end()) {
            throw Violation("there is no check " + options.runHere);
        }
        RunCheck(*check, options, folder);
        report = Report(Verdict::Passed, "");
    } catch (const Skipped& skipped) {
        report = Report(Verdict::Skipped, skipped.what());
    } catch (const std::exception& error) {
        report = Report(Verdict::Failed, error.what());
    } catch (...) {
        report = Report(Verdict::Failed, "an exception left the plug-in");
    }
    EndProcess(WriteReport(report) ? 0 : 1);
}

} // namespace conformance
