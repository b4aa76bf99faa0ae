#include "LegacySuite.h"

#include <kestrel/qelmediatypes/TickTime.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace importhost {
namespace {

constexpr std::int64_t kLargest32 = std::numeric_limits<std::int32_t>::max();

/// a × b + c where that stays within 31 bits, else -1. All arguments are 0 or more.
std::int64_t Step(std::int64_t a, std::int64_t b, std::int64_t c) noexcept
{
    return b != 0 && a > (kLargest32 - c) / b ? -1 : a * b + c;
}

} // namespace

std::int64_t TicksFromTimeScale(TimeScalePair pair) noexcept
{
    if (pair.timeScale <= 0 || pair.sampleSize <= 0) {
        return 0;
    }
    // 254016000000 × 2^31 passes 64 bits. Split by whole seconds, then 254016000000 = 1000000 × 254016:
    // no intermediate exceeds 2^31 × 10^6.
    constexpr std::int64_t kOuter = 254'016;
    constexpr std::int64_t kInner = 1'000'000;
    static_assert(kOuter * kInner == qelmediatypes::kTicksPerSecond);
    const std::int64_t scale = pair.timeScale;
    const std::int64_t seconds = pair.sampleSize / scale;
    if (seconds >= std::numeric_limits<std::int64_t>::max() / qelmediatypes::kTicksPerSecond) {
        return 0;
    }
    const std::int64_t inner = pair.sampleSize % scale * kInner;
    const std::int64_t outer = inner % scale * kOuter;
    const std::int64_t remainder = outer % scale;
    const std::int64_t rounding = remainder >= scale - remainder ? 1 : 0;
    return seconds * qelmediatypes::kTicksPerSecond + inner / scale * kOuter + outer / scale + rounding;
}

TimeScalePair TimeScaleFromTicks(std::int64_t ticksPerFrame) noexcept
{
    if (ticksPerFrame <= 0 || ticksPerFrame == qelmediatypes::FrameRate::kUnusableTicks) {
        return {};
    }
    // Continued fraction of kTicksPerSecond / ticksPerFrame: its convergents are the best fractions of
    // their size, and the last one is the fraction itself, reduced.
    std::int64_t dividend = qelmediatypes::kTicksPerSecond;
    std::int64_t divisor = ticksPerFrame;
    std::int64_t scaleBefore = 0;
    std::int64_t scale = 1;
    std::int64_t sizeBefore = 1;
    std::int64_t size = 0;
    while (divisor != 0) {
        const std::int64_t quotient = dividend / divisor;
        const std::int64_t nextScale = Step(quotient, scale, scaleBefore);
        const std::int64_t nextSize = Step(quotient, size, sizeBefore);
        if (nextScale < 0 || nextSize < 0) {
            // The next convergent is too large. Between it and this one lie fractions with a smaller
            // quotient; the largest that fits is nearer than this convergent when it has more than half.
            std::int64_t fitting = quotient;
            if (scale != 0) {
                fitting = std::min(fitting, (kLargest32 - scaleBefore) / scale);
            }
            if (size != 0) {
                fitting = std::min(fitting, (kLargest32 - sizeBefore) / size);
            }
            if (fitting > quotient / 2) {
                scale = fitting * scale + scaleBefore;
                size = fitting * size + sizeBefore;
            }
            break;
        }
        scaleBefore = std::exchange(scale, nextScale);
        sizeBefore = std::exchange(size, nextSize);
        dividend = std::exchange(divisor, dividend % divisor);
    }
    // The first convergent did not fit (over 2^31 - 1 frames a second): no fraction was found, or one that
    // says something else.
    if (size == 0 || scale == 0 || qelmediatypes::kTicksPerSecond / ticksPerFrame > kLargest32) {
        return {};
    }
    return {static_cast<std::int32_t>(scale), static_cast<std::int32_t>(size)};
}

const ksLegacySuite1& LegacySuite1() noexcept
{
    static constexpr ksLegacySuite1 kSuite = {
        [](std::int32_t timeScale, std::int32_t sampleSize, std::int64_t* ticksPerFrame) -> std::int32_t {
            if (ticksPerFrame == nullptr) {
                return -1;
            }
            *ticksPerFrame = TicksFromTimeScale({timeScale, sampleSize});
            return 0;
        }};
    return kSuite;
}

const ksLegacySuite2& LegacySuite2() noexcept
{
    static constexpr ksLegacySuite2 kSuite = {
        nullptr,
        [](std::int64_t ticksPerFrame, std::int32_t* timeScale, std::int32_t* sampleSize) -> std::int32_t {
            const TimeScalePair pair = TimeScaleFromTicks(ticksPerFrame);
            if (timeScale == nullptr || sampleSize == nullptr || pair == TimeScalePair{}) {
                return -1;
            }
            *timeScale = pair.timeScale;
            *sampleSize = pair.sampleSize;
            return 0;
        }};
    return kSuite;
}

} // namespace importhost
