/// What is wrong with something that a person typed.
#pragma once

#include <stdexcept>

namespace tessel::typed {

/// A setting, a key or a value that cannot be, or a clip that could not be played with it. `what()` is one line
/// for a person: what was wrong, with what, and what would be right.
class SettingError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace tessel::typed
