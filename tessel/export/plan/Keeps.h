/// What files announce beside their pictures and samples.
#pragma once

#include <cstdint>

namespace tessel::exporting {

/// Facts that a container's own header or a codec's stream can hold; a file keeps what either does.
enum class Keeps : std::uint16_t {
    Nothing = 0,
    PixelAspect = 1U << 0U,
    FieldOrder = 1U << 1U,
    Shape = PixelAspect | FieldOrder,
    Colors = 1U << 2U, ///< primaries, transfer, matrix
    Range = 1U << 3U,  ///< of the codes: readers heed it
    ChannelLayout = 1U << 4U,
    Timecode = 1U << 5U,
    CoderDelay =
        1U << 6U, ///< how many samples a coder of sound puts before the first one: readers leave them out
    Everything = 0xFFFF,
};

[[nodiscard]] constexpr Keeps operator|(Keeps left, Keeps right) noexcept
{
    return static_cast<Keeps>(static_cast<std::uint16_t>(left) | static_cast<std::uint16_t>(right));
}

[[nodiscard]] constexpr Keeps Without(Keeps facts, Keeps others) noexcept
{
    return static_cast<Keeps>(static_cast<std::uint16_t>(facts) & ~static_cast<std::uint16_t>(others));
}

/// Whether `facts` holds `fact`.
[[nodiscard]] constexpr bool Holds(Keeps facts, Keeps fact) noexcept
{
    return (static_cast<std::uint16_t>(facts) & static_cast<std::uint16_t>(fact)) != 0;
}

} // namespace tessel::exporting
