/// The general suite: what any importer does, whatever its documents hold.
#pragma once

#include "../Check.h"

namespace conformance {

/// The checks of each subject. @{
[[nodiscard]] std::vector<Check> LibraryChecks();
[[nodiscard]] std::vector<Check> RegistrationChecks();
[[nodiscard]] std::vector<Check> FileTypeChecks();
[[nodiscard]] std::vector<Check> RequestChecks();
[[nodiscard]] std::vector<Check> OpenChecks();
[[nodiscard]] std::vector<Check> DescribeChecks();
[[nodiscard]] std::vector<Check> FrameChecks();
[[nodiscard]] std::vector<Check> AudioChecks();
[[nodiscard]] std::vector<Check> ColorChecks();
[[nodiscard]] std::vector<Check> SettingsChecks();
[[nodiscard]] std::vector<Check> ThreadChecks();
[[nodiscard]] std::vector<Check> AllocationChecks();
/// @}

} // namespace conformance
