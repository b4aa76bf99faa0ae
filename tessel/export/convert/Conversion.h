/// What a conversion from frames to pictures is to make. Plans name one; the converter carries it out.
#pragma once

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

/// Which rows share a chroma row in 4:2:0.
enum class ChromaRows : std::uint8_t {
    Frame, ///< rows 2k and 2k+1, halves
    Field, ///< top field's from rows 4k and 4k+2 as 3:1, bottom field's from 4k+1 and 4k+3 as 1:3
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
