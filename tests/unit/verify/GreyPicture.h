/// A grey picture in memory, for tests of what looks at one component.
#pragma once

#include <tessel/verify/read/Movie.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tessel::verify {

/// 8-bit samples, row after row without gaps.
struct GreyPicture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> samples;

    /// Borrows the samples.
    [[nodiscard]] read::ComponentView View() const
    {
        read::ComponentView view;
        view.first = reinterpret_cast<const std::byte*>(samples.data());
        view.rowBytes = width;
        view.step = 1;
        view.width = width;
        view.height = height;
        return view;
    }
};

} // namespace tessel::verify
