/// Rows of a component as arrays, for loops over many samples.
#pragma once

#include "Movie.h"

#include <cstdint>

namespace tessel::verify::read {

/// Codes of row `y`. @param row  room for as many samples as the component is wide; components of up to 16 bits
/// that are no floats. Cost: that of a copy where samples lie side by side.
void LoadRow(const ComponentView& view, int y, std::uint16_t* row) noexcept;

/// Codes, or the values of floats.
void LoadRow(const ComponentView& view, int y, float* row) noexcept;

} // namespace tessel::verify::read
