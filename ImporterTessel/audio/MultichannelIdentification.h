/// The two identifications of six channels.
#pragma once

#include "AudioRequest.h"

namespace ImporterTessel {

/// EBU multichannel 5.1, after EBU Tech 3304: a 12 s cycle, counted from absolute time zero, in which 1000 Hz
/// sounds on the channels 0 to 4 together and then on 0, 4, 1, 3, 2 in turn, while 80 Hz sounds on channel 5
/// throughout. All at 0.125, -18.06 dB full scale.
///
/// Intended: a tone on a single channel starts with the phase of the request's first sample, so its waveform
/// depends on where requests are cut; to get the same samples again, cut them the same way.
///
/// @param request  Its array holds six buffers; a null one is passed over.
/// Threads: [any-thread].
void SynthesizeEBUMultichannel(const AudioRequest& request) noexcept;

/// BLITS 5.1, after EBU Tech 3304: a 13.4 s cycle, counted from absolute time zero, in which each channel
/// sounds with a tone of its own, then 1000 Hz tells left from right, then 2000 Hz sounds on all six. At 0.125,
/// -18.06 dB full scale, but the last at 0.0625, -24.08 dB.
///
/// @param request  Its array holds six buffers; a null one is passed over.
/// Threads: [any-thread].
void SynthesizeBLITS(const AudioRequest& request) noexcept;

} // namespace ImporterTessel
