/// Conformance checks: each has an id and a sentence, and runs in a process of its own.
#pragma once

#include "Plugin.h"

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace conformance {

/// What a check throws when the plug-in does not do what the check's sentence says.
class Violation : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct Check {
    std::string id;       ///< stable, dotted: "start-up.gate.capital-true"
    std::string sentence; ///< what a conforming plug-in does
    void (*run)(Plugin& plugin) = nullptr;
};

/// @throws Violation with `what` where `holds` is false.
void Expect(bool holds, const std::string& what);

/// The same for two numbers, both of which the message shows.
void ExpectEqual(long long actual, long long expected, const std::string& what);

/// The checks of each subject. @{
[[nodiscard]] std::vector<Check> SelectorChecks();
[[nodiscard]] std::vector<Check> StartUpChecks();
[[nodiscard]] std::vector<Check> RegistrationChecks();
[[nodiscard]] std::vector<Check> InstanceChecks();
[[nodiscard]] std::vector<Check> DescriptionChecks();
[[nodiscard]] std::vector<Check> SettingsTextChecks();
[[nodiscard]] std::vector<Check> SettingsDialogChecks();
[[nodiscard]] std::vector<Check> DocumentChecks();
[[nodiscard]] std::vector<Check> FrameChecks();
[[nodiscard]] std::vector<Check> SwatchChecks();
[[nodiscard]] std::vector<Check> AudioChecks();
[[nodiscard]] std::vector<Check> AllocationChecks();
/// @}

/// All of them, in the order above.
[[nodiscard]] std::vector<Check> AllChecks();

} // namespace conformance
