/// What contexts, frames and streams announce of a clip, in FFmpeg's terms.
#pragma once

#include "LibavHandles.h"

#include <tessel/export/plan/VideoPlan.h>

namespace tessel::exporting {

/// Matroska and QuickTime hold "both fields in one picture, this one first and on top of the coded order".
[[nodiscard]] AVFieldOrder LibavOrder(importhost::FieldOrder order) noexcept;

/// Of a pixel; 0/1 where it is not known.
[[nodiscard]] AVRational PixelAspect(const PictureGeometry& geometry) noexcept;

[[nodiscard]] AVChromaLocation ChromaLocation(ChromaPlace place) noexcept;

/// Sets colours and chroma location. @{
void SetTags(AVCodecContext& context, const VideoPlan& plan) noexcept;
void SetTags(AVFrame& frame, const VideoPlan& plan) noexcept;
void SetTags(AVCodecParameters& parameters, const VideoPlan& plan) noexcept;
/// @}

/// Sets frame rate, time unit (one frame), pixel aspect and field order.
void DescribeRate(AVStream& stream, const PictureGeometry& geometry) noexcept;

} // namespace tessel::exporting
