#include "Components.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>

namespace tessel::exporting {
namespace {

using qelaccelerate::RunWithVectors;

/// A 16-bit sample stored most significant byte first.
struct BigEndian16 {
    std::uint16_t bytes = 0;

    BigEndian16() = default;
    explicit BigEndian16(std::uint16_t value) noexcept
        : bytes(static_cast<std::uint16_t>((value << 8) | (value >> 8)))
    {
    }
};

template <class Sample>
Sample Read(const std::byte* at) noexcept
{
    Sample sample;
    std::memcpy(&sample, at, sizeof sample);
    return sample;
}

template <class Sample>
void Write(std::byte* at, Sample sample) noexcept
{
    std::memcpy(at, &sample, sizeof sample);
}

template <int kSamples>
using Step = std::integral_constant<int, kSamples>;

/// Runs `rows(step)`, with the step from one sample to the next counted in samples: as a compile-time constant
/// where it is a common one (planes, luma in pairs, four components), so that the compiler can turn the loop
/// into vector code.
template <class Sample, class Rows>
void WithStepInSamples(int stepBytes, const Rows& rows)
{
    constexpr int kSize = sizeof(Sample);
    switch (stepBytes) {
    case kSize:
        return rows(Step<1>{});
    case 2 * kSize:
        return rows(Step<2>{});
    case 4 * kSize:
        return rows(Step<4>{});
    default:
        return rows(stepBytes / kSize);
    }
}

template <class From, class To, class SourceStep, class TargetStep, class Convert>
void ForEachSample(const ComponentSource& source, SourceStep sourceStep, const ComponentTarget& target,
                   TargetStep targetStep, const Convert& convert) noexcept
{
    const auto at = [](auto* row, std::int32_t x, auto step, std::size_t size) {
        return row + static_cast<std::ptrdiff_t>(x) * step * static_cast<std::ptrdiff_t>(size);
    };
    // Copies, which the bytes that are written cannot be part of: else no loop becomes vector code.
    const Convert convertHere = convert;
    const std::int32_t width = target.width;
    for (std::int32_t y = 0; y < target.height; ++y) {
        const std::byte* from = source.first + y * source.rowBytes;
        std::byte* to = target.first + y * target.rowBytes;
        for (std::int32_t x = 0; x < width; ++x) {
            Write<To>(at(to, x, targetStep, sizeof(To)),
                      convertHere(Read<From>(at(from, x, sourceStep, sizeof(From)))));
        }
    }
}

/// Converts samples of any steps.
template <class From, class To, class Convert>
void ConvertSamples(const ComponentSource& source, const ComponentTarget& target,
                    const Convert& convert) noexcept
{
    WithStepInSamples<From>(source.step, [&](auto sourceStep) {
        WithStepInSamples<To>(target.step, [&](auto targetStep) {
            ForEachSample<From, To>(source, sourceStep, target, targetStep, convert);
        });
    });
}

template <class From>
void MoveIntegers(const ComponentSource& source, const ComponentTarget& target, int shiftLeft) noexcept
{
    const auto widened = [shiftLeft](From value) { return static_cast<std::uint16_t>(value << shiftLeft); };
    switch (target.type) {
    case SampleType::U8:
        ConvertSamples<From, std::uint8_t>(source, target,
                                           [](From value) { return static_cast<std::uint8_t>(value); });
        break;
    case SampleType::U16:
        ConvertSamples<From, std::uint16_t>(source, target, widened);
        break;
    case SampleType::U16be:
        ConvertSamples<From, BigEndian16>(source, target,
                                          [widened](From value) { return BigEndian16(widened(value)); });
        break;
    case SampleType::F32:
        break;
    }
}

/// A float buffer as a component.
template <class Byte, class Float>
ComponentSamples<Byte> FloatComponent(Float* samples, std::ptrdiff_t samplesPerRow, std::int32_t width,
                                      std::int32_t height) noexcept
{
    return {reinterpret_cast<Byte*>(samples),
            samplesPerRow * static_cast<std::ptrdiff_t>(sizeof(float)),
            sizeof(float),
            width,
            height,
            SampleType::F32};
}

template <class From, class Convert>
void LoadAs(const ComponentSource& source, const ComponentTarget& floats, const Convert& convert) noexcept
{
    WithStepInSamples<From>(
        source.step, [&](auto step) { ForEachSample<From, float>(source, step, floats, Step<1>{}, convert); });
}

template <class To, class Convert>
void StoreAs(const ComponentSource& floats, const ComponentTarget& target, const Convert& convert) noexcept
{
    WithStepInSamples<To>(
        target.step, [&](auto step) { ForEachSample<float, To>(floats, Step<1>{}, target, step, convert); });
}

/// @param fromFloat  what becomes of a sample that is a float already
template <class FromFloat>
void Load(const ComponentSource& source, const ComponentTarget& floats, const FromFloat& fromFloat) noexcept
{
    switch (source.type) {
    case SampleType::U8:
        return LoadAs<std::uint8_t>(source, floats, [](std::uint8_t v) { return static_cast<float>(v); });
    case SampleType::U16:
        return LoadAs<std::uint16_t>(source, floats, [](std::uint16_t v) { return static_cast<float>(v); });
    case SampleType::F32:
        return LoadAs<float>(source, floats, fromFloat);
    case SampleType::U16be:
        break;
    }
}

void Store(const ComponentSource& floats, const ComponentTarget& target, const Rounding& rounding) noexcept
{
    const auto code = [rounding](float value) {
        // Doubles hold the sums exactly (24 bits of value times at most 16 of scale), so there is one rounding:
        // in floats, 0.9 of 65535, which is 58981.498, plus a half is already 58982.
        const double scaled = static_cast<double>(value) * rounding.scale + rounding.offset + 0.5;
        // Every comparison with NaN is false, which makes it the lowest code. Codes are not negative, so
        // truncation rounds down.
        const double above = scaled > rounding.lowest ? scaled : rounding.lowest;
        return static_cast<std::int32_t>(std::min(above, rounding.highest));
    };
    switch (target.type) {
    case SampleType::U8:
        return StoreAs<std::uint8_t>(floats, target,
                                     [code](float v) { return static_cast<std::uint8_t>(code(v)); });
    case SampleType::U16:
        return StoreAs<std::uint16_t>(floats, target,
                                      [code](float v) { return static_cast<std::uint16_t>(code(v)); });
    case SampleType::U16be:
        return StoreAs<BigEndian16>(
            floats, target, [code](float v) { return BigEndian16(static_cast<std::uint16_t>(code(v))); });
    case SampleType::F32:
        return StoreAs<float>(floats, target, [rounding](float v) {
            constexpr double kLargest = std::numeric_limits<float>::max();
            const double value = static_cast<double>(v) * rounding.scale + rounding.offset;
            return static_cast<float>(std::clamp(value, -kLargest, kLargest));
        });
    }
}

} // namespace

ComponentTarget ComponentOf(const Picture& picture, int index) noexcept
{
    const LayoutInfo& info = InfoOf(picture.layout);
    const ComponentPlace place = info.components[static_cast<std::size_t>(index)];
    if (place.plane < 0) {
        return {};
    }
    const auto plane = static_cast<std::size_t>(static_cast<std::uint8_t>(place.plane));
    PlaneSize size = SizeOfPlane(info, place.plane, picture.width, picture.height);
    if (info.planes == 1 && (index == 1 || index == 2)) {
        size.width = (size.width + (1 << info.chromaShiftX) - 1) >> info.chromaShiftX;
    }
    return {picture.planes[plane] + place.offset,
            picture.rowBytes[plane],
            place.step,
            size.width,
            size.height,
            info.type};
}

void MoveSamples(const ComponentSource& source, const ComponentTarget& target, int shiftLeft) noexcept
{
    switch (source.type) {
    case SampleType::U8:
        return MoveIntegers<std::uint8_t>(source, target, shiftLeft);
    case SampleType::U16:
        return MoveIntegers<std::uint16_t>(source, target, shiftLeft);
    case SampleType::F32:
        // As 32-bit integers: a float register may change the bits of a NaN.
        return ConvertSamples<std::uint32_t, std::uint32_t>(source, target,
                                                            [](std::uint32_t bits) { return bits; });
    case SampleType::U16be:
        break; // Frames have no big-endian samples.
    }
}

void LoadFloats(const ComponentSource& source, float* samples, std::ptrdiff_t samplesPerRow,
                VectorWidth width) noexcept
{
    const auto floats = FloatComponent<std::byte>(samples, samplesPerRow, source.width, source.height);
    RunWithVectors(width, [&] { Load(source, floats, [](float v) { return v; }); });
}

void LoadFiniteFloats(const ComponentSource& source, float* samples, std::ptrdiff_t samplesPerRow,
                      const FiniteRange& range, VectorWidth width) noexcept
{
    const auto floats = FloatComponent<std::byte>(samples, samplesPerRow, source.width, source.height);
    const auto finite = [range](float v) {
        const float number = v == v ? v : 0.0F;
        return std::clamp(number, -range.limit, range.limit) * range.scale;
    };
    RunWithVectors(width, [&] { Load(source, floats, finite); });
}

void StoreFloats(const float* samples, std::ptrdiff_t samplesPerRow, const ComponentTarget& target,
                 const Rounding& rounding, VectorWidth width) noexcept
{
    const auto floats = FloatComponent<const std::byte>(samples, samplesPerRow, target.width, target.height);
    RunWithVectors(width, [&] { Store(floats, target, rounding); });
}

void FillSamples(const ComponentTarget& target, std::uint16_t code) noexcept
{
    for (std::int32_t y = 0; y < target.height; ++y) {
        std::byte* at = target.first + y * target.rowBytes;
        for (std::int32_t x = 0; x < target.width; ++x, at += target.step) {
            switch (target.type) {
            case SampleType::U8:
                Write(at, static_cast<std::uint8_t>(code));
                break;
            case SampleType::U16:
                Write(at, code);
                break;
            case SampleType::U16be:
                Write(at, BigEndian16(code));
                break;
            case SampleType::F32:
                Write(at, 1.0F);
                break;
            }
        }
    }
}

} // namespace tessel::exporting
