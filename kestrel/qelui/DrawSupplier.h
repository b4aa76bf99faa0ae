/// How a window is drawn. Threads: [any-thread].
#pragma once

namespace qelui {

enum class Theme { Dark, Light };

/// Passed by the code that opens a window to the toolkit that draws it.
struct DrawSupplier {
    Theme theme = Theme::Dark;
};

} // namespace qelui
