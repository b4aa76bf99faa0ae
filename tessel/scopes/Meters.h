/// How loud channels are: sample peaks in dBFS, with peak hold.
#pragma once

#include <cstddef>
#include <limits>
#include <span>
#include <vector>

namespace tessel::scopes {

/// Silence: no sample is other than 0.
inline constexpr double kSilenceDb = -std::numeric_limits<double>::infinity();

/// The largest magnitude of the samples in dB relative to full scale, 1.0 (AES17 calls the peak of a full-scale
/// sine 0 dBFS). Above 0 where samples pass full scale; a NaN counts as silence.
[[nodiscard]] double PeakDb(std::span<const float> samples) noexcept;

/// What one channel's meter shows.
struct MeterReading {
    double peakDb = kSilenceDb;
    double heldDb = kSilenceDb; ///< the highest peak of the last `kHoldSeconds`
    bool hasClipped = false;    ///< a sample has been above full scale
};

/// Meters of a clip's channels. Time is the clip's own, so that readings do not depend on the speed of playing.
/// Threads: [any-thread].
class Meters {
public:
    static constexpr double kHoldSeconds = 1.5;

    explicit Meters(std::size_t channels) : mReadings(channels), mHeldSince(channels, 0.0) {}

    /// Takes the samples that sound from `seconds` on. A time before that of the last call starts the hold
    /// anew: the clip was wound back.
    /// @param peaksDb  of each channel, from `PeakDb`
    void Take(double seconds, std::span<const double> peaksDb);

    [[nodiscard]] std::span<const MeterReading> Readings() const noexcept { return mReadings; }

private:
    std::vector<MeterReading> mReadings;
    std::vector<double> mHeldSince; ///< seconds
    double mLastSeconds = 0;
};

} // namespace tessel::scopes
