/// Pictures whose packets are their memory, without a codec of FFmpeg's.
#pragma once

#include "VideoEncoder.h"

namespace tessel::exporting {

/// v210 is written as it stands in memory: FFmpeg's own encoder would unpack it, clip it and pack it again.
/// @param plan  its layout is v210
[[nodiscard]] std::unique_ptr<VideoEncoder> MakeV210Writer(const VideoPlan& plan);

/// YUV4MPEG2 files, header and all, for a muxer that adds nothing. FFmpeg's own muxer writes chroma rows one
/// byte short where a width is odd and samples have two bytes, and calls all 4:2:0 centred.
/// @param plan  its layout has planes of Y'CbCr without alpha
[[nodiscard]] std::unique_ptr<VideoEncoder> MakeY4mWriter(const VideoPlan& plan);

} // namespace tessel::exporting
