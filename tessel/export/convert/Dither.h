/// Whether samples are dithered before they are rounded to integers.
#pragma once

#include <cstdint>

namespace tessel::exporting {

enum class Dither : std::uint8_t { None, Triangular };

} // namespace tessel::exporting
