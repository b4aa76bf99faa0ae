/// Settings of rate and duration.
#pragma once

#include "Settings.h"

#include <optional>
#include <string>
#include <vector>

namespace tessel::typed {

/// Each is an `apply` of `Setting`, under the rules that stand there. @{
void ApplyRate(const TypedValues& values, document::DocumentEditor& document);
void ApplyDuration(const TypedValues& values, document::DocumentEditor& document);
/// @}

/// The `remark` of the rate: a rate that ticks cannot say exactly.
[[nodiscard]] std::optional<std::string> RemarkOnRate(const TypedValues& values);

/// The names that a rate takes.
[[nodiscard]] std::vector<std::string> RateChoices();

} // namespace tessel::typed
