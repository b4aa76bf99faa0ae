#include "LumaWeights.h"

namespace tessel::exporting {

LumaWeights WeightsOf(Matrix matrix) noexcept
{
    switch (matrix) {
    case Matrix::Bt470Bg:
    case Matrix::Smpte170M:
        return {0.299, 0.114};
    case Matrix::Smpte240M:
        return {0.212, 0.087};
    case Matrix::Bt2020:
        return {0.2627, 0.0593};
    case Matrix::Bt709:
    case Matrix::Rgb:
    case Matrix::Unspecified:
        break;
    }
    return {0.2126, 0.0722};
}

} // namespace tessel::exporting
