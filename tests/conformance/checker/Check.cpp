#include "Check.h"

#include <iterator>

namespace conformance {

void Expect(bool holds, const std::string& what)
{
    if (!holds) {
        throw Violation(what);
    }
}

void ExpectEqual(long long actual, long long expected, const std::string& what)
{
    Expect(actual == expected,
           what + ": " + std::to_string(actual) + " where " + std::to_string(expected) + " is right");
}

std::vector<Check> AllChecks()
{
    std::vector<Check> all;
    for (auto* const subject : {SelectorChecks, StartUpChecks, RegistrationChecks, InstanceChecks,
                                DescriptionChecks, SettingsTextChecks, SettingsDialogChecks, DocumentChecks,
                                FrameChecks, SwatchChecks, AudioChecks, AllocationChecks}) {
        std::vector<Check> checks = subject();
        std::move(checks.begin(), checks.end(), std::back_inserter(all));
    }
    return all;
}

} // namespace conformance
