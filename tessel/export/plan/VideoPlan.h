/// Which codec and which sample layout a clip's pictures are written in, and what the encoder is told.
#pragma once

#include "ColorTags.h"
#include "Container.h"
#include "PictureGeometry.h"
#include "VideoCodec.h"

#include <tessel/document/OpenClip.h>
#include <tessel/export/convert/Conversion.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace tessel::exporting {

/// Where the chroma samples of subsampled pictures lie: on a luma column, and on a row or between two of their
/// picture or field.
enum class ChromaPlace : std::uint8_t { Unspecified, OnRow, BetweenRows };

/// Everything that is decided of the pictures. Whoever converts, encodes and writes them only reads it.
struct VideoPlan {
    const VideoCodec* codec = nullptr;
    Conversion conversion;
    PictureGeometry geometry;
    ColorTags tags;
    ChromaPlace chromaPlace = ChromaPlace::Unspecified;
    std::string_view encoder;   ///< FFmpeg's name; empty: pictures become packets as they are
    std::optional<int> quality; ///< on the codec's scale; none where it has no scale
    EncoderOptions options;
    bool headersOutOfBand = false;
    std::string_view tag; ///< four characters by which the container knows the codec; empty: the muxer's own
    RawWriter rawWriter = RawWriter::Libav;
    std::int64_t startIndex = 0; ///< of the first picture in the movie that the file is a part of
};

/// @throws ExportError  for a clip whose frames last no time that can be told
void RequireRate(const document::ClipFacts& clip);

/// @throws ExportError  for a clip whose frames have no size or rate
void RequirePicture(const document::ClipFacts& clip);

/// @param clip    with the format of its frames
/// @param chosen  a codec that goes into the container; null: the one that keeps the clip's format best
/// @param quality  on the codec's own scale; none: the usual one
/// @throws ExportError  for a clip without a size or rate, and where the codec cannot have the clip's size or
///                      rate, or that quality; says what could.
[[nodiscard]] VideoPlan PlanVideo(const document::ClipFacts& clip, const Container& container,
                                  const VideoCodec* chosen, std::optional<int> quality = std::nullopt);

/// The encoder's options as codec, geometry and quality of the plan ask for them; `PlanVideo` has set them.
/// Whoever changes the field order of a plan sets them again.
[[nodiscard]] EncoderOptions OptionsOf(const VideoPlan& plan);

/// @throws RequestError  where the codec does not know the quality; says what it knows
void CheckQuality(const VideoCodec& codec, int quality);

} // namespace tessel::exporting
