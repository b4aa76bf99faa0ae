#include "CodeCheck.h"

#include <tessel/export/convert/SourceFrame.h>

#include <cmath>
#include <utility>

namespace tessel::scopes {
namespace {

/// Values that a component's codes stand for.
struct Limits {
    float lowest, highest;            ///< of the legal range
    float lastReserved, nextReserved; ///< reserved at or beyond; only where `hasReserved`
};

/// Half a code of slack on each side: float values of codes are not exact.
Limits LimitsOf(int bits, bool isChroma)
{
    const double unit = std::exp2(bits - 8);
    const double zero = (isChroma ? 128.0 : 16.0) * unit;
    const double steps = (isChroma ? 224.0 : 219.0) * unit;
    const auto value = [&](double code) { return static_cast<float>((code - zero) / steps); };
    // 8 bits: 0 and 255; 10 bits: the four codes that have these as their upper bits.
    return {value(16.0 * unit - 0.5), value((isChroma ? 240.0 : 235.0) * unit + 0.5), value(unit - 0.5),
            value(255.0 * unit - 0.5)};
}

std::uint8_t FaultsOf(float value, const Limits& limits, bool hasReserved) noexcept
{
    // Written so that a NaN is outside.
    if (value >= limits.lowest && value <= limits.highest) {
        return 0;
    }
    const bool isReserved = hasReserved && (value <= limits.lastReserved || value >= limits.nextReserved);
    return static_cast<std::uint8_t>(kOutsideRange | (isReserved ? kReservedCode : 0));
}

bool IsOutsideGamut(float value) noexcept
{
    return !(value >= -0.05F && value <= 1.05F);
}

} // namespace

void CheckCodes(const Signal& signal, BR::PixelFormat format, CodeFaults& faults)
{
    const exporting::SourceInfo source = exporting::SourceInfoOf(format);
    const bool isYCbCr = source.kind.family == exporting::ColorFamily::YCbCr;
    const bool hasCodes = isYCbCr && source.type != exporting::SampleType::F32;
    // Floats have no codes; a 16-bit code's half is slack enough for them.
    const int bits = hasCodes ? source.bits : 16;
    const Limits luma = LimitsOf(bits, /*isChroma=*/false);
    const Limits chroma = LimitsOf(bits, /*isChroma=*/true);
    const int shift = signal.cb.width < signal.luma.width ? 1 : 0;
    faults = {signal.luma.width, signal.luma.height, std::move(faults.flags)};
    faults.flags.assign(signal.luma.samples.size(), 0);
    for (int y = 0; y < faults.height; ++y) {
        std::uint8_t* const flags =
            faults.flags.data() + static_cast<std::ptrdiff_t>(y) * static_cast<std::ptrdiff_t>(faults.width);
        for (int x = 0; x < faults.width; ++x) {
            std::uint8_t found = 0;
            if (isYCbCr) {
                found = static_cast<std::uint8_t>(FaultsOf(signal.luma.Row(y)[x], luma, hasCodes) |
                                                  FaultsOf(signal.cb.Row(y)[x >> shift], chroma, hasCodes) |
                                                  FaultsOf(signal.cr.Row(y)[x >> shift], chroma, hasCodes));
            }
            if (IsOutsideGamut(signal.red.Row(y)[x]) || IsOutsideGamut(signal.green.Row(y)[x]) ||
                IsOutsideGamut(signal.blue.Row(y)[x])) {
                found |= kOutsideGamut;
            }
            flags[x] = found;
            faults.reserved += (found & kReservedCode) != 0;
            faults.outsideRange += (found & kOutsideRange) != 0;
            faults.outsideGamut += (found & kOutsideGamut) != 0;
        }
    }
}

} // namespace tessel::scopes
