/// What the checker prints: lines for people, JSON and JUnit for programs.
#pragma once

#include "Runner.h"

#include <memory>
#include <string>
#include <vector>

namespace conformance {

struct Result {
    Check check;
    Outcome outcome;
};

/// One line a check, printed while the checks run, and the counts at the end.
void PrintLine(const Result& result);
void PrintCounts(const std::vector<Result>& results, const Options& options);

/// The checks' ids and sentences.
void PrintList(const std::vector<Check>& checks, Format format);

/// One JSON object with the plug-in, the seed, the counts and every check.
[[nodiscard]] std::string Json(const std::vector<Result>& results, const Options& options);

/// One JUnit test suite, whose cases are the checks.
[[nodiscard]] std::string JUnit(const std::vector<Result>& results, const Options& options);

} // namespace conformance
