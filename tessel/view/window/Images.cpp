#include "Images.h"

#include <cstddef>
#include <cstdint>

namespace tessel::view {

QImage ImageOf(const exporting::Picture& picture)
{
    return QImage(reinterpret_cast<const uchar*>(picture.planes[0]), picture.width, picture.height,
                  picture.rowBytes[0], QImage::Format_RGB32);
}

QImage OverlayOf(const scopes::CodeFaults& faults)
{
    QImage image(faults.width, faults.height, QImage::Format_ARGB32_Premultiplied);
    constexpr QRgb kReserved = qRgba(255, 0, 255, 255);
    constexpr QRgb kRange = qRgba(255, 64, 0, 255);
    constexpr QRgb kGamut = qRgba(255, 220, 0, 255);
    for (int y = 0; y < faults.height; ++y) {
        auto* const line = reinterpret_cast<QRgb*>(image.scanLine(y));
        const std::uint8_t* const flags = faults.flags.data() + static_cast<std::ptrdiff_t>(y) * faults.width;
        for (int x = 0; x < faults.width; ++x) {
            const std::uint8_t found = flags[x];
            line[x] = (found & scopes::kReservedCode) != 0   ? kReserved
                      : (found & scopes::kOutsideRange) != 0 ? kRange
                      : (found & scopes::kOutsideGamut) != 0 ? kGamut
                                                             : 0;
        }
    }
    return image;
}

} // namespace tessel::view
