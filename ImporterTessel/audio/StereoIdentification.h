/// The stereo identification: a tone on both channels, which the left one interrupts.
#pragma once

#include "AudioRequest.h"

namespace ImporterTessel {

/// Writes the channels 0 and 1 and leaves all others as they are.
///
/// The right channel sounds throughout; the left one falls silent for the last 0.25 s of every 3 s, counted
/// from absolute time zero. Both at 0.125, -18.06 dB full scale.
///
/// @param request    Its array holds two buffers; a null one is passed over.
/// @param frequency  Hertz.
/// Threads: [any-thread]. Cost: one sine a sample on each channel: the two tones are not copies, because the
/// left one takes its phase anew after each silence.
void SynthesizeStereoIdentification(const AudioRequest& request, float frequency) noexcept;

} // namespace ImporterTessel
