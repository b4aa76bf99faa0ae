/// Runs checks, each in a process of its own: the starting side and the started side.
#pragma once

#include "CommandLine.h"

#include <string>

namespace conformance {

enum class Verdict { Passed, Failed, Skipped };

struct Outcome {
    Verdict verdict = Verdict::Failed;
    std::string reason;   ///< why it failed or was skipped
    double seconds = 0.0; ///< from start to end of its process
};

/// Starts this program again for one check. A check that cannot be run has failed, with the reason.
[[nodiscard]] Outcome RunInOwnProcess(const Check& check, const Options& options);

/// The started side: runs the check that `options.runHere` names, reports, and ends the process.
[[noreturn]] void RunHere(const Options& options);

} // namespace conformance
