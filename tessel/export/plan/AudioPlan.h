/// Which codec a clip's sound is written in, and which of its channels go where.
#pragma once

#include "AudioCodec.h"
#include "Container.h"
#include "SoundShape.h"

#include <tessel/document/OpenClip.h>
#include <tessel/export/convert/Dither.h>

#include <cstdint>
#include <vector>

namespace tessel::exporting {

/// Everything that is decided of the sound. Whoever reads, encodes and writes it only reads it.
struct AudioPlan {
    const AudioCodec* codec = nullptr;
    std::int32_t sampleRate = 0;
    std::vector<std::int32_t> hostChannels; ///< the clip's channel that becomes file channel 0, 1, ...
    SpeakerLayout layout = SpeakerLayout::None;
    Dither dither = Dither::None;
    bool headersOutOfBand = false;
    std::int64_t startSample = 0; ///< time of the file's first sample, in samples
};

/// @param chosen  a codec that goes into the container; null: the container's usual one
/// @throws ExportError  where the codec cannot have the clip's channels or rate; says what could
[[nodiscard]] AudioPlan PlanAudio(const document::ClipFacts& clip, const Container& container,
                                  const AudioCodec* chosen, Dither dither);

} // namespace tessel::exporting
