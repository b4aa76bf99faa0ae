#include "Timing.h"

namespace tessel::gstreamer {

GstClockTime StartOf(const UnitRate& rate, guint64 unit) noexcept
{
    return gst_util_uint64_scale(unit, rate.denominator * GST_SECOND, rate.numerator);
}

guint64 UnitsBefore(const UnitRate& rate, GstClockTime time) noexcept
{
    // floor(n × period) < time is n × period < time, as time is whole; so n < time / period.
    return gst_util_uint64_scale_ceil(time, rate.numerator, rate.denominator * GST_SECOND);
}

guint64 UnitAt(const UnitRate& rate, GstClockTime time) noexcept
{
    return UnitsBefore(rate, time + 1) - 1;
}

} // namespace tessel::gstreamer
