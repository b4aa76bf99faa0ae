/// Why a clip's frame or sound could not be had, in the words of its document.
#pragma once

#include "DocumentFacts.h"

#include <kestrel/importhost/Clip.h>
#include <kestrel/importhost/HostError.h>
#include <kestrel/qelcore/logging/Log.h>

#include <optional>
#include <string>

namespace tessel::document {

/// One line that names the key that is wrong and what would be right; nothing where the document is not the
/// reason.
[[nodiscard]] std::optional<std::string> FailureText(const importhost::ClipFailure& failure,
                                                     const importhost::ClipDescription& description,
                                                     const DocumentFacts& facts);

/// Whether a message of the plug-in reports a request that failed; any other is a warning.
[[nodiscard]] bool IsFailureReport(const qelcore::logging::Message& message) noexcept;

/// The failure with the reason alone that the plug-in's report of it gives, where it gives one.
[[nodiscard]] std::string FailureText(const importhost::PluginFailure& failure);

} // namespace tessel::document
