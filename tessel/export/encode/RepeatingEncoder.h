/// Pictures that stand still are encoded once.
#pragma once

#include "VideoEncoder.h"

#include <memory>

namespace tessel::exporting {

/// Hands a picture that equals the one before not to `encoder` but gives the former one's packet again, with a
/// time of its own. What comes out is the same, byte for byte, as long as the codec codes every picture for
/// itself and its packets do not count.
[[nodiscard]] std::unique_ptr<VideoEncoder> EncodeRepeatsOnce(std::unique_ptr<VideoEncoder> encoder);

} // namespace tessel::exporting
