#include "DnxhrHeader.h"

namespace tessel::exporting {
namespace {

enum class ColorVolume : unsigned { Bt709 = 0, Bt2020 = 1, OutOfBand = 3 };

ColorVolume VolumeOf(const ColorTags& tags) noexcept
{
    switch (tags.matrix) {
    case static_cast<int>(Matrix::Bt709):
        return ColorVolume::Bt709;
    case static_cast<int>(Matrix::Bt2020):
        return ColorVolume::Bt2020;
    default:
        return ColorVolume::OutOfBand;
    }
}

} // namespace

void PatchDnxhrColorVolume(std::span<std::byte> picture, const ColorTags& tags) noexcept
{
    constexpr std::size_t kPlace = 0x2C; // of the byte that holds it, in bits 1 and 2
    constexpr std::byte kMask{0x06};
    if (picture.size() <= kPlace) {
        return;
    }
    const auto volume = static_cast<std::byte>(static_cast<unsigned>(VolumeOf(tags)) << 1U);
    picture[kPlace] = (picture[kPlace] & ~kMask) | volume;
}

} // namespace tessel::exporting
