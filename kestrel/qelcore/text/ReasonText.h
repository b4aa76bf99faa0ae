/// Reasons of failures that come from outside, as the end of a line of ours.
#pragma once

#include "LetterCase.h"

#include <string>
#include <system_error>

namespace qelcore::text {

/// "permission denied" of "Permission denied": systems and libraries begin their texts with a capital letter.
/// Threads: [thread-safe].
[[nodiscard]] inline std::string ReasonText(std::string text)
{
    if (!text.empty()) {
        text.front() = LowerCase(text.front());
    }
    return text;
}

/// The system's reason. Threads: [thread-safe].
[[nodiscard]] inline std::string ReasonText(const std::error_code& error)
{
    return ReasonText(error.message());
}

} // namespace qelcore::text
