/// Which codec and which sample layout a clip's pictures are written in.
#pragma once

#include "ColorTags.h"
#include "Containers.h"
#include "DvProfiles.h"

#include <kestrel/importhost/Clip.h>
#include <tessel/export/convert/Conversion.h>

#include <optional>

namespace tessel::exporting {

/// Size, rate and the rest that every picture stream announces.
struct PictureGeometry {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t rateNumerator = 0; ///< frames per second, exact, in lowest terms
    std::int32_t rateDenominator = 1;
    std::int32_t aspectNumerator = 0; ///< of a pixel; 0: not known
    std::int32_t aspectDenominator = 1;
    importhost::FieldOrder order = importhost::FieldOrder::Progressive;
};

struct VideoPlan {
    VideoCodec codec = VideoCodec::Ffv1;
    Conversion conversion;
    PictureGeometry geometry;
    ColorTags tags;
};

/// @throws ExportError  for a clip whose frames last no time that can be told
void RequireRate(const importhost::ClipDescription& clip);

/// @param chosen  the codec that a person asked for
///                one that the container carries
/// @throws ExportError  for a clip without a size or rate, and where the codec cannot have the clip's size or
///                      rate; says what could.
[[nodiscard]] VideoPlan PlanVideo(const importhost::ClipDescription& clip, Container container,
                                  std::optional<VideoCodec> chosen);

} // namespace tessel::exporting
