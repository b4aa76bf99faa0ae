/// Which layout a codec's pictures have.
#pragma once

#include "VideoCodec.h"

#include <tessel/document/OpenClip.h>
#include <tessel/export/convert/Picture.h>
#include <tessel/export/convert/PixelKind.h>

namespace tessel::exporting {

/// @param codec  one that goes into `container`
/// @throws ExportError  where the codec has no pictures of the clip's size, order or rate; says what it has
[[nodiscard]] PictureLayout ChooseLayout(const VideoCodec& codec, const Container& container,
                                         const document::ClipFacts& clip, const PixelKind& kind);

} // namespace tessel::exporting
