/// What the choice of a toolkit asks the platform.
#pragma once

#include <string>

namespace qelui {

class Toolkit;

/// Whether windows can be shown here, as far as it can be told without trying.
[[nodiscard]] bool IsDisplayPresent();

/// Loads the Qt toolkit's library, which stands beside this one, and gets its toolkit.
/// @return null where that fails, with one line in `whyNot`.
[[nodiscard]] Toolkit* LoadQtToolkit(std::string& whyNot);

} // namespace qelui
