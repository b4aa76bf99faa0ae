/// What choosing a toolkit needs from the platform.
#pragma once

#include <string>

namespace qelui {

class Toolkit;

/// Whether the environment names a display.
[[nodiscard]] bool IsDisplayPresent();

/// Whether the Qt toolkit's library is there. Nothing is run to find out.
[[nodiscard]] bool IsQtToolkitPresent();

/// Loads the Qt toolkit's library from the folder of this one and gets its toolkit.
/// @return null where that fails, with one line in `whyNot`.
[[nodiscard]] Toolkit* LoadQtToolkit(std::string& whyNot);

} // namespace qelui
