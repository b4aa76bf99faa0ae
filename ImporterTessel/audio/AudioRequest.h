/// One request for sound, as every generator receives it.
#pragma once

#include <kestrel/qelmediatypes/TickTime.h>

#include <cstdint>
#include <span>

namespace ImporterTessel {

/// Everything it points to is the host's, borrowed for the call.
struct AudioRequest {
    qelmediatypes::FrameRate rate;    ///< ticks per sample; any
    qelmediatypes::TickTime start;    ///< time of the first sample; any
    float* const* channels = nullptr; ///< planar buffers of `sampleCount` floats each, or null: not wanted
    std::uint32_t sampleCount = 0;    ///< samples to write to each channel

    /// `length` samples of a channel from the request's sample `offset` on; empty where the host gave no
    /// buffer.
    [[nodiscard]] std::span<float> Samples(std::int32_t channel, std::uint32_t offset,
                                           std::uint32_t length) const noexcept
    {
        float* const buffer = channels[channel];
        return buffer == nullptr ? std::span<float>() : std::span(buffer + offset, length);
    }
    [[nodiscard]] std::span<float> Samples(std::int32_t channel) const noexcept
    {
        return Samples(channel, 0, sampleCount);
    }
};

} // namespace ImporterTessel
