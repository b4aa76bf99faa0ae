/// Small pictures of what the settings in a dialog make.
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

/// The first and the last frame that settings make.
struct PreviewPictures {
    PreviewPicture first;
    PreviewPicture last;        ///< without size where there is one frame only
    std::int64_t lastFrame = 0; ///< number of the last frame, counted from 0
};

/// How a program makes pictures of the settings in a dialog. Neither function throws anything but what a
/// toolkit treats as "no picture". Threads: the toolkit calls both on its preview thread, [serialised]. Reading
/// a long document is slow, too.
struct PreviewRenderer {
    /// What of a settings document the pictures show: texts that look alike give the same result, so that they
    /// are rendered once. Called after each change.
    std::function<std::string(const std::string& settingsText)> reduce;
    /// Makes the pictures of such a result, empty ones where it has no pictures. Costs as much as two frames.
    std::function<PreviewPictures(const std::string& reduced)> render;

    [[nodiscard]] explicit operator bool() const { return reduce && render; }
};

} // namespace qelui
