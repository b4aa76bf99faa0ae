/// One colour component of a picture at a time: moving samples, loading them as floats, rounding them back.
#pragma once

#include "Picture.h"

#include <kestrel/qelaccelerate/VectorWidth.h>

#include <cstddef>
#include <cstdint>

namespace tessel::exporting {

using qelaccelerate::VectorWidth;
using qelaccelerate::WidestVectors;

/// Where one component's samples lie. `Byte` is const or not.
template <class Byte>
struct ComponentSamples {
    Byte* first = nullptr; ///< null: there is no such component
    std::ptrdiff_t rowBytes = 0;
    int step = 0; ///< bytes from one sample to the next
    std::int32_t width = 0;
    std::int32_t height = 0;
    SampleType type = SampleType::U8;
};
using ComponentSource = ComponentSamples<const std::byte>;
using ComponentTarget = ComponentSamples<std::byte>;

/// Component `index` of a picture: R, G, B, A or Y', Cb, Cr, A.
[[nodiscard]] ComponentTarget ComponentOf(const Picture& picture, int index) noexcept;

/// Copies samples of one type, or widens integers by `shiftLeft` bits. F32 goes only to F32.
void MoveSamples(const ComponentSource& source, const ComponentTarget& target, int shiftLeft) noexcept;

// Loading and storing floats is compiled for several kinds of vector registers. All give the same bits; `width`
// is one that this machine has.

/// Integers as their value, floats as they are.
void LoadFloats(const ComponentSource& source, float* samples, std::ptrdiff_t samplesPerRow,
                VectorWidth width = WidestVectors()) noexcept;

/// Makes floats finite: NaN becomes 0, values are clamped to ±`limit` and then multiplied by `scale`.
struct FiniteRange {
    float limit = 0.0F;
    float scale = 1.0F;
};

/// Integers as their value, floats within `range`.
void LoadFiniteFloats(const ComponentSource& source, float* samples, std::ptrdiff_t samplesPerRow,
                      const FiniteRange& range, VectorWidth width = WidestVectors()) noexcept;

/// A float value to a code: clamp(floor(value × scale + offset + 0.5), lowest, highest), NaN as `lowest`. For
/// float targets value × scale + offset, or the largest float of its sign where that is beyond.
struct Rounding {
    double scale = 1.0;
    double offset = 0.0;
    double lowest = 0.0;
    double highest = 0.0;
};
void StoreFloats(const float* samples, std::ptrdiff_t samplesPerRow, const ComponentTarget& target,
                 const Rounding& rounding, VectorWidth width = WidestVectors()) noexcept;

/// Sets every sample: integers to `code`, floats to 1.
void FillSamples(const ComponentTarget& target, std::uint16_t code) noexcept;

} // namespace tessel::exporting
