/// What goes wrong between a person and a clip.
#pragma once

#include <kestrel/Export.h>

#include <stdexcept>
#include <string>

namespace importhost {

/// Work that failed. `what()` is one line for a person: what was wrong, with which file and key, and what
/// would be right.
class KESTRELHOST_API HostError : public std::runtime_error {
public:
    explicit HostError(const std::string& line) : std::runtime_error(line) {}
};

} // namespace importhost
