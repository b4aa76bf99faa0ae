/// How a clip's frames become pictures, whatever file or program takes them.
#pragma once

#include "ColorTags.h"

#include <tessel/document/OpenClip.h>
#include <tessel/export/convert/Conversion.h>
#include <tessel/export/convert/PixelKind.h>

namespace tessel::exporting {

/// The format that pictures are to keep: that of the frames, except that frames which stand for a planar or DV
/// file say so only in their document.
/// @param clip  with the format of its frames
[[nodiscard]] PixelKind KindToKeep(const document::ClipFacts& clip);

/// The conversion of the clip's frames to a layout, with the clip's own matrix where the target is Y'CbCr.
/// @param clip    with the format of its frames
/// @param kind    of the format to keep
/// @param ranges  what readers of R'G'B' that became Y'CbCr can tell apart
[[nodiscard]] Conversion ConversionOf(const document::ClipFacts& clip, const PixelKind& kind,
                                      PictureLayout target, CodeRanges ranges) noexcept;

} // namespace tessel::exporting
