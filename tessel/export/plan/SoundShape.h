/// A clip's channels and sample rate as files and programs take them.
#pragma once

#include <tessel/document/OpenClip.h>

#include <cstdint>
#include <vector>

namespace tessel::exporting {

/// Where channels stand in the room.
enum class SpeakerLayout : std::uint8_t { None, Mono, Stereo, Surround51 };

struct SoundShape {
    std::int32_t sampleRate = 0;            ///< samples per second; 0 where that is no whole number from 1 on
    std::vector<std::int32_t> hostChannels; ///< the clip's channel that becomes channel 0, 1, ... of a file
    SpeakerLayout layout = SpeakerLayout::None;
};

/// More channels than are played give none.
[[nodiscard]] SoundShape SoundShapeOf(const document::ClipFacts& clip);

} // namespace tessel::exporting
