/// The plain tone.
#pragma once

#include "AudioRequest.h"
#include "SineSpan.h"

#include <cstdint>

namespace ImporterTessel {

/// Writes `tone` to the channels 0 to `channelCount` - 1, all alike; to none for a count of 0 or less.
///
/// @param request  Its array holds `channelCount` buffers; a null one is passed over.
/// Threads: [any-thread]. Cost: one sine a sample on one channel, copies for the others.
void SynthesizeSteadyTone(const AudioRequest& request, Tone tone, std::int32_t channelCount) noexcept;

} // namespace ImporterTessel
