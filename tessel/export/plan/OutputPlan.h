/// What a clip becomes: decided before anything is opened, so that what cannot be is said at once.
#pragma once

#include "Containers.h"
#include "VideoPlan.h"

#include <kestrel/importhost/Clip.h>
#include <tessel/export/convert/SampleQuantizer.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace tessel::exporting {

/// Where the channels of a file stand in the room.
enum class SpeakerLayout : std::uint8_t { None, Mono, Stereo, Surround51 };

struct AudioPlan {
    AudioCodec codec = AudioCodec::Pcm24;
    std::int32_t sampleRate = 0;
    std::vector<std::int32_t> hostChannels; ///< the clip's channel that becomes file channel 0, 1, ...
    SpeakerLayout layout = SpeakerLayout::None;
    Dither dither = Dither::None;
};

enum class Streams : std::uint8_t { All, AudioOnly, VideoOnly };

/// What a person asked for.
struct OutputRequest {
    Container container = Container::Mkv;
    Streams streams = Streams::All;
    std::optional<VideoCodec> videoCodec{};
    std::optional<AudioCodec> audioCodec{};
    Dither dither = Dither::None;
};

/// @throws ExportError  where container, streams and codecs do not go together whatever the clip is; says what
///                      would
void CheckRequest(const OutputRequest& request);

struct OutputPlan {
    Container container = Container::Mkv;
    std::optional<VideoPlan> video;
    std::optional<AudioPlan> audio;
};

/// @throws ExportError  where clip, container and codecs do not go together; says what would.
[[nodiscard]] OutputPlan PlanOutput(const importhost::ClipDescription& clip, const OutputRequest& request);

} // namespace tessel::exporting
