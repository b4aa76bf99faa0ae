/// From frames as the plug-in paints them to pictures as encoders take them: upright and exact.
#pragma once

#include "ChromaFilter.h"
#include "FrameView.h"
#include "Picture.h"
#include "PixelKind.h"

#include <brindle/PixelFormat.h>

#include <cstdint>
#include <memory>

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

/// Converts frames of one geometry and format.
///
/// - Where the target has the source's samples, they are moved, never computed: same values bit for bit.
///   Wider integer Y'CbCr targets get the codes times a power of two. Where even the arrangement is the
///   same, the picture shares the frame's memory.
/// - Else, float arithmetic with one rounding at the end: codes are floor(x + 0.5). Y'CbCr codes stay
///   inside 1..254 (8 bit; wider: times a power of two), the rest being timing codes on serial links.
/// - Colour is never multiplied by or divided by alpha: a file holds straight or premultiplied values as
///   the format says. Alpha that the source lacks is opaque; alpha that the target lacks is dropped.
/// - Linear-light sources stay linear in float targets; for others they pass the BT.709 transfer function.
///
/// Threads: one object, one thread at a time.
class FrameConverter {
public:
    /// @throws ExportError  for a source that frames never have, or where zimg refuses.
    explicit FrameConverter(const Conversion& conversion);
    ~FrameConverter();
    FrameConverter(const FrameConverter&) = delete;
    FrameConverter& operator=(const FrameConverter&) = delete;
    FrameConverter(FrameConverter&&) noexcept;
    FrameConverter& operator=(FrameConverter&&) noexcept;

    /// @param frame  of the geometry and format given at construction.
    [[nodiscard]] Picture Convert(const FrameView& frame);

private:
    class Way;
    class ShareWay;
    class MoveWay;
    class ComputeWay;
    std::unique_ptr<Way> mWay;
};

} // namespace tessel::exporting
