/// Timecodes of SMPTE ST 12-1.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tessel::exporting {

/// Counts frames as hours, minutes, seconds and frames. At 30000/1001 frames a second and its multiples,
/// drop-frame counting leaves out the first two numbers (four at 60000/1001, ...) of every minute but each
/// tenth, to keep pace with the clock.
class Timecode {
public:
    /// @param text  "10:00:00:00", or with ';' before the frames for drop-frame counting
    /// @throws RequestError  for other texts, for a timecode that the rate does not have, and for a rate
    ///                      without timecodes; says what would be right
    [[nodiscard]] static Timecode Parse(std::string_view text, std::int32_t rateNumerator,
                                        std::int32_t rateDenominator);

    /// @throws RequestError  for a text that is a timecode at no rate; says what would be right
    static void RequireForm(std::string_view text);

    /// The timecode of a frame that comes `frames` after this one; behind 23:59:59 it begins again.
    [[nodiscard]] std::string After(std::int64_t frames) const;

    /// Frames from 00:00:00:00 to this one.
    [[nodiscard]] std::int64_t FrameNumber() const noexcept { return mFirstFrame; }

    /// Whether a rate has timecodes at all.
    [[nodiscard]] static bool Counts(std::int32_t rateNumerator, std::int32_t rateDenominator) noexcept;

    /// Whether a rate has drop-frame timecodes.
    [[nodiscard]] static bool HasDropFrames(std::int32_t rateNumerator, std::int32_t rateDenominator) noexcept;

    /// The rate's timecodes from 0 on.
    Timecode(std::int32_t rateNumerator, std::int32_t rateDenominator, bool drop) noexcept;

private:
    std::int64_t mNominalRate;    ///< frames counted in a second
    std::int64_t mDropped = 0;    ///< numbers left out in a minute; 0: all are used
    std::int64_t mFirstFrame = 0; ///< since 00:00:00:00
};

} // namespace tessel::exporting
