/// From frames as the plug-in paints them to pictures as encoders take them: upright and exact.
#pragma once

#include "Conversion.h"
#include "FrameView.h"
#include "Picture.h"

#include <memory>

namespace tessel::exporting {

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

    /// Whether frames are pictures of the target as they are: same samples, same arrangement.
    /// @throws ExportError  for a source that frames never have
    [[nodiscard]] static bool KeepsBytes(const Conversion& conversion);

    /// @throws ExportError  for a frame of another format or size than was given at construction.
    [[nodiscard]] Picture Convert(const FrameView& frame);

private:
    class Way;
    class ShareWay;
    class ReorderWay;
    class UnpackWay;
    class MoveWay;
    class ComputeWay;
    BR::PixelFormat mSource;
    std::int32_t mWidth;
    std::int32_t mHeight;
    std::unique_ptr<Way> mWay;
};

} // namespace tessel::exporting
