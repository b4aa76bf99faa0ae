/// Exact times of frames and samples on GStreamer's clock, which counts nanoseconds.
#pragma once

#include <gst/gst.h>

namespace tessel::gstreamer {

/// How many units there are in a second: frames at 30000/1001, samples at 48000/1. Both numbers are 1 to 2^31.
struct UnitRate {
    guint64 numerator = 1;
    guint64 denominator = 1;
};

/// When a unit starts: its number divided by the rate, rounded down to whole nanoseconds. Each time is computed
/// from the number alone, so that nothing adds up.
[[nodiscard]] GstClockTime StartOf(const UnitRate& rate, guint64 unit) noexcept;

/// How many units start before a time.
[[nodiscard]] guint64 UnitsBefore(const UnitRate& rate, GstClockTime time) noexcept;

/// The unit that a time lies in. The start of unit n, rounded down, lies in unit n.
[[nodiscard]] guint64 UnitAt(const UnitRate& rate, GstClockTime time) noexcept;

} // namespace tessel::gstreamer
