/// Why a clip's frame or sound could not be had, in the words of its document.
#pragma once

#include "DocumentFacts.h"

#include <kestrel/importhost/Clip.h>

#include <optional>
#include <string>

namespace tessel::document {

/// One line that names the key that is wrong and what would be right; nothing where the document is not the
/// reason.
[[nodiscard]] std::optional<std::string> FailureText(const importhost::ClipFailure& failure,
                                                     const importhost::ClipDescription& description,
                                                     const DocumentFacts& facts);

} // namespace tessel::document
