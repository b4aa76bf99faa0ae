/// What a conversion from frames to pictures is to make. Plans name one; the converter carries it out.
#pragma once

#include "ChromaFilter.h"
#include "Picture.h"
#include "PixelKind.h"

#include <kestrel/brindle/PixelFormat.h>

#include <cstdint>

namespace tessel::exporting {

/// How Y'CbCr values are made from R'G'B' ones.
struct YCbCrCoding {
    Matrix matrix = Matrix::Bt709;
    bool fullRange = false;

    bool operator==(const YCbCrCoding&) const = default;
};

struct Conversion {
    BR::PixelFormat source = BR::PixelFormat::Unknown; ///< of the frames: a paintable one
    PictureLayout target = PictureLayout::Bgra;
    std::int32_t width = 0;
    std::int32_t height = 0;
    /// Of a Y'CbCr target. Where the source is Y'CbCr with the same matrix, its codes are kept.
    YCbCrCoding coding;
    ChromaRows chromaRows = ChromaRows::Frame; ///< for 4:2:0 targets
};

} // namespace tessel::exporting
