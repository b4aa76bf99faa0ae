#include "Meters.h"

#include <algorithm>
#include <cmath>

namespace tessel::scopes {

double PeakDb(std::span<const float> samples) noexcept
{
    float peak = 0.0F;
    for (const float sample : samples) {
        const float magnitude = std::abs(sample);
        peak = magnitude > peak ? magnitude : peak; // false for a NaN
    }
    return peak > 0.0F ? 20.0 * std::log10(static_cast<double>(peak)) : kSilenceDb;
}

void Meters::Take(double seconds, std::span<const double> peaksDb)
{
    const bool isWoundBack = seconds < mLastSeconds;
    mLastSeconds = seconds;
    for (std::size_t i = 0; i < std::min(mReadings.size(), peaksDb.size()); ++i) {
        MeterReading& reading = mReadings[i];
        reading.peakDb = peaksDb[i];
        reading.hasClipped = reading.hasClipped || peaksDb[i] > 0.0;
        if (isWoundBack || peaksDb[i] >= reading.heldDb || seconds - mHeldSince[i] > kHoldSeconds) {
            reading.heldDb = peaksDb[i];
            mHeldSince[i] = seconds;
        }
    }
}

} // namespace tessel::scopes
