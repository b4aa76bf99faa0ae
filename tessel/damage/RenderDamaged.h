/// A clip rendered with faults put in on purpose.
#pragma once

#include <tessel/export/Render.h>

#include <string>
#include <vector>

namespace tessel::damage {

/// Renders as `exporting::Render`, with every fault of `faults` ("NAME" or "NAME=VALUE") put in, in their
/// order.
/// @return the truth: a JSON document that says what was put in, and where
/// @throws FaultError for an unknown fault, or one that the clip cannot have, and what `exporting::Render`
/// throws
[[nodiscard]] std::string RenderDamaged(const exporting::SignalSource& source, const exporting::RenderJob& job,
                                        const std::vector<std::string>& faults);

/// The faults with their values and what they do, as a text for people.
[[nodiscard]] std::string FaultList();

} // namespace tessel::damage
