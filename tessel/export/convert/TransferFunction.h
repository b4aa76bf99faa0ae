/// The transfer function from linear light to R'G'B'.
#pragma once

#include <cstdint>

namespace tessel::exporting {

/// Linear light to R'G'B' by the transfer function of BT.709 with constants that make its pieces meet;
/// negative values mirrored, nothing clamped. Costs a power per sample.
void ApplyBt709Transfer(float* samples, std::int32_t count) noexcept;

} // namespace tessel::exporting
