/// Frames of bars from code values.
#pragma once

#include <tessel/export/convert/FrameView.h>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace tessel::scopes {

/// Y', Cb, Cr at 8 bits.
using Code = std::array<std::uint8_t, 3>;

/// Bars of one pair of pixels each.
inline exporting::FrameView UyvyBars(BR::PixelFormat format, const std::vector<Code>& bars, int rows = 2)
{
    const auto bytes = std::make_shared<std::vector<std::byte>>();
    for (int row = 0; row < rows; ++row) {
        for (const Code& bar : bars) {
            for (const int part : {1, 0, 2, 0}) {
                bytes->push_back(static_cast<std::byte>(bar[static_cast<std::size_t>(part)]));
            }
        }
    }
    return {.format = format,
            .width = static_cast<std::int32_t>(2 * bars.size()),
            .height = rows,
            .top = bytes->data(),
            .rowBytes = static_cast<std::ptrdiff_t>(4 * bars.size()),
            .owner = bytes};
}

} // namespace tessel::scopes
