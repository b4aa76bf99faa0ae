#include "ColorTags.h"

namespace tessel::exporting {
namespace {

bool IsYCbCrMatrix(std::int32_t code) noexcept
{
    switch (static_cast<Matrix>(code)) {
    case Matrix::Bt709:
    case Matrix::Bt470Bg:
    case Matrix::Smpte170M:
    case Matrix::Smpte240M:
    case Matrix::Bt2020:
        return true;
    case Matrix::Rgb:
    case Matrix::Unspecified:
        break;
    }
    return false;
}

} // namespace

YCbCrCoding CodingFor(const ksSEIColorCodesRec& codes, CodeRanges ranges) noexcept
{
    const std::int32_t matrix = codes.matrix;
    if (matrix < 0 || matrix > 255 || !IsYCbCrMatrix(matrix)) {
        return {};
    }
    return {static_cast<Matrix>(matrix), codes.fullRange != 0 && ranges == CodeRanges::LimitedAndFull};
}

ColorTags TagsFor(const PixelKind& kind, const ksSEIColorCodesRec& codes, const LayoutInfo& layout,
                  const YCbCrCoding& coding) noexcept
{
    ColorTags tags{codes.primaries, codes.transfer, codes.matrix, codes.fullRange != 0};
    if (kind.linear && layout.type != SampleType::F32 && codes.transfer == h273::kLinear) {
        tags.transfer = h273::kBt709;
    }
    if (layout.family == ColorFamily::Rgb) {
        tags.matrix = static_cast<int>(Matrix::Rgb);
        tags.fullRange = true;
    } else if (kind.family == ColorFamily::Rgb) {
        tags.matrix = static_cast<int>(coding.matrix);
        tags.fullRange = coding.fullRange;
    } else if (codes.matrix == static_cast<int>(Matrix::Rgb)) {
        tags.matrix = static_cast<int>(kind.matrix);
        tags.fullRange = false;
    }
    return tags;
}

} // namespace tessel::exporting
