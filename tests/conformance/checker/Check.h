/// Conformance checks: each has an id and a sentence, and runs in a process of its own.
#pragma once

#include "host/Plugin.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace conformance {

/// What a check throws when the plug-in does not do what the check's sentence says.
class Violation : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What a check throws when it cannot say anything about this plug-in; the text is the reason.
class Skipped : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// General checks run on any importer; Tessel's run on the importer of `.tessel` files.
enum class Suite { General, Tessel };

struct Check {
    std::string id;       ///< stable; the subject before the last dot: "frame.as-described"
    std::string sentence; ///< what a conforming plug-in does
    void (*run)(Plugin& plugin) = nullptr;

    /// Ids of the Tessel suite begin with "tessel.".
    [[nodiscard]] Suite InSuite() const { return id.rfind("tessel.", 0) == 0 ? Suite::Tessel : Suite::General; }
};

/// @throws Violation with `what` where `holds` is false.
void Expect(bool holds, const std::string& what);

/// The same for two numbers, both of which the message shows.
void ExpectEqual(long long actual, long long expected, const std::string& what);

/// Every check of both suites, the general ones first.
[[nodiscard]] std::vector<Check> AllChecks();

} // namespace conformance
