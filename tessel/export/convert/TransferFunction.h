/// Making float samples fit for sums and for integer targets.
#pragma once

#include <cstdint>

namespace tessel::exporting {

/// For integer targets: NaN becomes 0; what is beyond ±10000 becomes that, far outside every code range and
/// small enough that no colour matrix overflows.
void MakeFinite(float* samples, std::int32_t count) noexcept;

/// The sums of a colour matrix are up to 2.9 times as large as what goes in.
inline constexpr float kMatrixHeadroom = 8.0F;

/// For float targets: NaN becomes 0 and infinity the largest float of its sign, and everything is divided by
/// `kMatrixHeadroom`, which as a power of two changes no digit, so that no colour matrix overflows. Who stores
/// the sums multiplies them back.
void MakeFiniteWithHeadroom(float* samples, std::int32_t count) noexcept;

/// Linear light to R'G'B' by the transfer function of BT.709 with constants that make its pieces meet;
/// negative values mirrored, nothing clamped. Costs a power per sample.
void ApplyBt709Transfer(float* samples, std::int32_t count) noexcept;

} // namespace tessel::exporting
