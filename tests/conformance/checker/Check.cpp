#include "Check.h"

#include "general/GeneralChecks.h"
#include "tessel/TesselChecks.h"

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
    for (auto* const subject : {LibraryChecks,
                                RegistrationChecks,
                                FileTypeChecks,
                                RequestChecks,
                                OpenChecks,
                                DescribeChecks,
                                FrameChecks,
                                AudioChecks,
                                ColorChecks,
                                SettingsChecks,
                                ThreadChecks,
                                AllocationChecks,
                                TesselSelectorChecks,
                                TesselStartUpChecks,
                                TesselRegistrationChecks,
                                TesselInstanceChecks,
                                TesselDescriptionChecks,
                                TesselSettingsTextChecks,
                                TesselSettingsDialogChecks,
                                TesselDocumentChecks,
                                TesselFrameChecks,
                                TesselSwatchChecks,
                                TesselAudioChecks,
                                TesselBarrierChecks}) {
        std::vector<Check> checks = subject();
        std::move(checks.begin(), checks.end(), std::back_inserter(all));
    }
    return all;
}

} // namespace conformance
