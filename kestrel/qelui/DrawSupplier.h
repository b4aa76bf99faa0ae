/// What a window is drawn with.
#pragma once

namespace qelui {

enum class Theme { Dark, Light };

/// Handed from whoever opens a window to the toolkit that draws it.
struct DrawSupplier {
    Theme theme = Theme::Dark;
};

} // namespace qelui
