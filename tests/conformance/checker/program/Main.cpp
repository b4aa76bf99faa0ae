/// kestrel-conformance: checks an importer plug-in. docs/conformance.md describes it.

#include "CommandLine.h"
#include "Reports.h"
#include "Runner.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <fstream>
#include <stdexcept>

namespace conformance {

namespace {

bool Contains(const std::vector<std::string>& ids, const std::string& id)
{
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

/// Whether the outcome is the expected one. Says on standard error what else was expected.
bool IsAsExpected(const Result& result, const Options& options)
{
    const std::string& id = result.check.id;
    const bool shouldFail = Contains(options.expectFailing, id);
    const bool shouldSkip = Contains(options.expectSkipped, id);
    const Verdict verdict = result.outcome.verdict;
    if (shouldFail && verdict != Verdict::Failed) {
        std::fprintf(stderr, "conformance: %s was expected to fail\n", id.c_str());
        return false;
    }
    if (shouldSkip && verdict != Verdict::Skipped) {
        std::fprintf(stderr, "conformance: %s was expected to be skipped\n", id.c_str());
        return false;
    }
    if (verdict == Verdict::Skipped && !shouldSkip && !options.expectSkipped.empty()) {
        std::fprintf(stderr, "conformance: %s was not expected to be skipped\n", id.c_str());
        return false;
    }
    return verdict != Verdict::Failed || shouldFail;
}

void WriteJUnit(const std::vector<Result>& results, const Options& options)
{
    std::ofstream file(options.junitFile, std::ios::binary);
    file << JUnit(results, options);
    file.close();
    if (!file) {
        throw std::runtime_error(options.junitFile.string() + " cannot be written");
    }
}

int RunAll(const std::vector<Check>& checks, const Options& options)
{
    std::vector<Result> results;
    bool isAllExpected = true;
    for (const Check& check : checks) {
        if (!IsChosen(options, check)) {
            continue;
        }
        results.push_back({check, RunInOwnProcess(check, options)});
        if (options.format == Format::Text) {
            PrintLine(results.back());
        }
        isAllExpected = IsAsExpected(results.back(), options) && isAllExpected;
    }
    if (results.empty()) {
        throw std::runtime_error("--suite and --check together leave no check to run");
    }
    if (options.format == Format::Json) {
        std::fputs(Json(results, options).c_str(), stdout);
    } else {
        PrintCounts(results, options);
    }
    if (!options.junitFile.empty()) {
        WriteJUnit(results, options);
    }
    return isAllExpected ? 0 : 1;
}

int Main(const std::vector<std::string>& arguments)
{
    Options options;
    const std::vector<Check> checks = AllChecks();
    try {
        options = ParseCommandLine(arguments);
        RequireKnownIds(options, checks);
    } catch (const std::invalid_argument& error) {
        std::fprintf(stderr, "conformance: %s\n", error.what());
        return 2;
    }
    if (!options.runHere.empty()) {
        RunHere(options);
    }
    if (options.help || options.version) {
        std::fputs(options.help ? kUsage : "kestrel-conformance " CONFORMANCE_VERSION "\n", stdout);
        return 0;
    }
    if (options.list) {
        PrintList(checks, options.format);
        return 0;
    }
    return RunAll(checks, options);
}

} // namespace
} // namespace conformance

int main(int argc, char** argv)
{
    try {
        return conformance::Main({argv + 1, argv + argc});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "conformance: %s\n", error.what());
        return 1;
    }
}
