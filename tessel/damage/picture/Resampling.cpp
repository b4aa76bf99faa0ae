#include "Resampling.h"

#include <algorithm>
#include <cmath>

namespace tessel::damage {
namespace {

float Between(float from, float to, double part) noexcept
{
    return static_cast<float>(from + (static_cast<double>(to) - from) * part);
}

/// The mean of `count` samples, `step` floats apart, over the stretch `begin`..`end` in samples; a sample
/// covers the stretch from its index to the next.
double MeanOver(const float* samples, std::int32_t count, std::ptrdiff_t step, double begin,
                double end) noexcept
{
    double sum = 0;
    const auto first = static_cast<std::int32_t>(std::floor(begin));
    for (std::int32_t i = first; i < end; ++i) {
        const double share = std::min<double>(i + 1, end) - std::max<double>(i, begin);
        sum += share * static_cast<double>(samples[std::clamp(i, 0, count - 1) * step]);
    }
    return sum / (end - begin);
}

/// Stretches lines of samples: `lines` of them, `lineStep` apart, samples `step` apart.
void StretchLines(const float* from, std::int32_t fromCount, float* to, std::int32_t toCount,
                  std::int32_t lines, std::ptrdiff_t step, std::ptrdiff_t fromLineStep,
                  std::ptrdiff_t toLineStep)
{
    const double ratio = static_cast<double>(fromCount) / toCount;
    for (std::int32_t line = 0; line < lines; ++line) {
        const float* const source = from + line * fromLineStep;
        float* const target = to + line * toLineStep;
        for (std::int32_t i = 0; i < toCount; ++i) {
            const double center = (i + 0.5) * ratio;
            // A stretch of at least one sample: enlarging is linear between the two neighbours.
            const double half = std::max(ratio, 1.0) / 2;
            target[i * step] =
                static_cast<float>(MeanOver(source, fromCount, step, center - half, center + half));
        }
    }
}

} // namespace

float ValueAt(const Plane& plane, double x, double y) noexcept
{
    const double left = std::floor(x);
    const double top = std::floor(y);
    const auto column = [&](int i) {
        return std::clamp(static_cast<std::int32_t>(left) + i, 0, plane.width - 1);
    };
    const auto row = [&](int i) {
        return plane.Row(std::clamp(static_cast<std::int32_t>(top) + i, 0, plane.height - 1));
    };
    const double partX = x - left;
    return Between(Between(row(0)[column(0)], row(0)[column(1)], partX),
                   Between(row(1)[column(0)], row(1)[column(1)], partX), y - top);
}

Plane Moved(const Plane& plane, double right, double down)
{
    Plane moved(plane.width, plane.height);
    for (std::int32_t y = 0; y < plane.height; ++y) {
        for (std::int32_t x = 0; x < plane.width; ++x) {
            moved.Row(y)[x] = ValueAt(plane, x - right, y - down);
        }
    }
    return moved;
}

Plane Stretched(const Plane& plane, std::int32_t width, std::int32_t height)
{
    Plane wide(width, plane.height);
    StretchLines(plane.samples.data(), plane.width, wide.samples.data(), width, plane.height, 1, plane.width,
                 width);
    Plane stretched(width, height);
    StretchLines(wide.samples.data(), plane.height, stretched.samples.data(), height, width, width, 1, 1);
    return stretched;
}

Plane WithoutSubsampling(const Plane& chroma, int shiftX, int shiftY, std::int32_t width, std::int32_t height)
{
    Plane full(width, height);
    const double step = 1 << shiftX;
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x) {
            full.Row(y)[x] = ValueAt(chroma, x / step, y >> shiftY);
        }
    }
    return full;
}

Plane WithSubsampling(const Plane& full, int shiftX, int shiftY)
{
    Plane chroma((full.width + (1 << shiftX) - 1) >> shiftX, (full.height + (1 << shiftY) - 1) >> shiftY);
    for (std::int32_t y = 0; y < chroma.height; ++y) {
        const std::int32_t first = y << shiftY;
        const std::int32_t last = std::min(first + (1 << shiftY), full.height);
        for (std::int32_t x = 0; x < chroma.width; ++x) {
            double sum = 0;
            for (std::int32_t row = first; row < last; ++row) {
                sum += static_cast<double>(full.Row(row)[x << shiftX]);
            }
            chroma.Row(y)[x] = static_cast<float>(sum / (last - first));
        }
    }
    return chroma;
}

} // namespace tessel::damage
