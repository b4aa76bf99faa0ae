/// Sound: the generator that a clip's settings choose, written into the host's planar buffers.
#pragma once

#include <ImporterTessel/settings/TesselInfo.h>

#include <cstdint>

namespace ImporterTessel {

/// Whether a request for samples writes any: not for a steady tone on no channels, nor for an identification
/// outside of the known ones. Threads: [any-thread].
[[nodiscard]] bool WritesAnyChannel(const TesselInfo& info) noexcept;

/// Serves selector 25.
///
/// @param position     First sample, from clip start; any 64-bit number.
/// @param sampleCount  Samples per channel; 0 writes nothing.
/// @param channels     Planar buffers of `sampleCount` floats; null writes nothing. The steady tone writes
///                     `info.mNumChannels` of them (none for 0 or less), the stereo patterns two, the 5.1
///                     patterns six.
/// Threads: [any-thread]. Cost: one sine per sample of one sounding channel.
void SynthesizeAudio(const TesselInfo& info, std::int64_t position, std::uint32_t sampleCount,
                     float* const* channels) noexcept;

} // namespace ImporterTessel
