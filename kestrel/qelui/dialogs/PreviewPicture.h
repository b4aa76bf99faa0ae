/// A small picture of what the settings in a dialog make.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace qelui {

struct PreviewPicture {
    int width = 0;  ///< pixels as they are seen (square); 0 where there is nothing to show
    int height = 0; ///< pixels
    /// 0xAARRGGBB, not premultiplied, rows from the top without gaps.
    std::vector<std::uint32_t> pixels;
};

/// Makes the picture of a settings document: one without size where the settings have none. Does not throw.
/// Costs as much as a frame: call it when nothing has changed for a moment.
using PreviewRenderer = std::function<PreviewPicture(const std::string& settingsText)>;

} // namespace qelui
