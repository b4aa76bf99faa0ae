/// What a clip becomes: decided before anything is opened, so that what cannot be is said at once.
#pragma once

#include "AudioPlan.h"
#include "Container.h"
#include "Timecode.h"
#include "VideoPlan.h"

#include <tessel/document/OpenClip.h>

#include <cstdint>
#include <optional>
#include <string>

namespace tessel::exporting {

enum class Streams : std::uint8_t { All, AudioOnly, VideoOnly };

/// What a person asked for.
struct OutputRequest {
    const Container* container = nullptr;
    Streams streams = Streams::All;
    const VideoCodec* videoCodec = nullptr; ///< null: the one that keeps the clip's format best
    const AudioCodec* audioCodec = nullptr; ///< null: the container's usual one
    std::optional<int> quality{};           ///< of the pictures, on their codec's scale
    Dither dither = Dither::None;
    std::string timecode{}; ///< of the file's first picture, as `Timecode::Parse` takes it; empty: none
};

/// @throws ExportError  where container, streams and codecs do not go together whatever the clip is; says what
///                      would
void CheckRequest(const OutputRequest& request);

/// Whether a picture is to be written.
[[nodiscard]] bool WantsPicture(const OutputRequest& request);

struct OutputPlan {
    const Container* container = nullptr;
    std::optional<VideoPlan> video;
    std::optional<AudioPlan> audio;
    std::int32_t channelsLeftOut = 0; ///< of the clip's sound, where the container is a stream of pictures
    std::optional<Timecode> timecode; ///< of the file's first picture
    std::string comment;              ///< a text that goes into the file where its container has a place
};

/// @param clip  with the format of its frames, where it becomes a picture
/// @throws ExportError  where clip, container and codecs do not go together; says what would.
[[nodiscard]] OutputPlan PlanOutput(const document::ClipFacts& clip, const OutputRequest& request);

} // namespace tessel::exporting
