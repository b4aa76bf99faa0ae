/// Making float samples fit for integer targets.
#pragma once

#include <cstdint>

namespace tessel::exporting {

/// NaN becomes 0; what is beyond ±10000 becomes that, far outside every code range and small enough that no
/// colour matrix overflows.
void MakeFinite(float* samples, std::int32_t count) noexcept;

/// Linear light to R'G'B' by the transfer function of BT.709 with constants that make its pieces meet;
/// negative values mirrored, nothing clamped. Costs a power per sample.
void ApplyBt709Transfer(float* samples, std::int32_t count) noexcept;

} // namespace tessel::exporting
