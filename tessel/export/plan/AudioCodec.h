/// How sound is coded: one row per codec.
#pragma once

#include "Container.h"
#include "Keeps.h"

#include <kestrel/importhost/ClipFailure.h>

#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>

namespace tessel::exporting {

/// A row of the table, and a codec's identity: codecs are compared by address.
struct AudioCodec {
    std::string_view name;       ///< as `--audio-codec` takes it
    std::string_view encoder;    ///< FFmpeg's name
    std::string_view containers; ///< names of those that carry it, between blanks
    /// What other programs call it, beside `encoder`: in small letters, between blanks.
    std::string_view otherNames{};
    int bits = 0; ///< of integer samples; 0: it takes floats
    std::int32_t mostChannels = importhost::kMostChannels;
    std::int32_t highestRate = std::numeric_limits<std::int32_t>::max(); ///< samples a second
    std::int64_t bitsPerChannel = 0; ///< a second, of lossy codecs; 0: the codec's own business
    /// Takes no channels but those of a named layout, and calls the surround speakers of 5.1 "back"; the others
    /// take any number, and call them "side", as readers of PCM expect.
    bool needsNamedLayout = false;
    /// Its decoders give some ms before the first sample, which the container must announce.
    bool hasDelay = false;
    Keeps keeps = Keeps::Nothing; ///< what the codec's own stream says

    [[nodiscard]] bool GoesInto(const Container& container) const noexcept;
};

/// All rows, in the order in which help lists them.
[[nodiscard]] std::span<const AudioCodec> AllAudioCodecs() noexcept;

/// In any case of letters; null: there is none.
[[nodiscard]] const AudioCodec* AudioCodecNamed(std::string_view name) noexcept;

/// Names with commas, for messages and help: of all, or of those that a container carries. @{
[[nodiscard]] std::string AudioCodecNames();
[[nodiscard]] std::string AudioCodecNames(const Container& container);
/// @}

} // namespace tessel::exporting
