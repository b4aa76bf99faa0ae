#include "PixelKind.h"

#include <kestrel/pixmill/PixelFormatCodes.h>
#include <tessel/export/ExportError.h>

namespace tessel::exporting {
namespace {

Storage StorageOf(std::uint32_t code) noexcept
{
    constexpr std::uint32_t kFirstDvKind = 9;
    if (const std::uint32_t kind = code >> 24; kind != 0) {
        return kind >= kFirstDvKind ? Storage::Dv : Storage::Planar420;
    }
    if ((code & pixmill::kBitV210) != 0) {
        return Storage::V210;
    }
    if ((code & pixmill::kBit422) != 0) {
        return Storage::Pairs422;
    }
    return (code & pixmill::kBitFloat) != 0 ? Storage::InterleavedF : Storage::Interleaved8;
}

AlphaKind AlphaOf(std::uint32_t code) noexcept
{
    if ((code & pixmill::kBitInterleaved4) == 0 || (code & pixmill::kBitNoAlpha) != 0) {
        return AlphaKind::None;
    }
    return (code & pixmill::kBitPremultiplied) != 0 ? AlphaKind::Premultiplied : AlphaKind::Straight;
}

} // namespace

PixelKind KindOf(BR::PixelFormat format)
{
    const std::uint32_t code = PM_QELPixelFormatToPMPixelFormat(format);
    if (code == 0) {
        throw ExportError("the frames come in a pixel format that is not one of the host's 48");
    }
    PixelKind kind;
    kind.storage = StorageOf(code);
    kind.alpha = AlphaOf(code);
    kind.swapped = (code & pixmill::kBitSwapped) != 0;
    kind.linear = (code & pixmill::kBitLinear) != 0;
    kind.fieldPicture = format == BR::PixelFormat::YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_601 ||
                        format == BR::PixelFormat::YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709;
    if ((code & pixmill::kBitYCbCr) != 0) {
        kind.family = ColorFamily::YCbCr;
        kind.matrix = (code & pixmill::kBit709) != 0 ? Matrix::Bt709 : Matrix::Smpte170M;
    }
    return kind;
}

} // namespace tessel::exporting
