/// What goes wrong between a clip and a file.
#pragma once

#include <stdexcept>
#include <string>

namespace tessel::exporting {

/// Work that failed. `what()` is one line for a person: what was wrong, with what, and what would be right.
class ExportError : public std::runtime_error {
public:
    explicit ExportError(const std::string& line) : std::runtime_error(line) {}
};

/// Something was asked for that there is not: a frame or a timecode that the clip does not have, a quality that
/// the codec does not know. The request has to change, not the clip.
class RequestError : public ExportError {
public:
    using ExportError::ExportError;
};

} // namespace tessel::exporting
