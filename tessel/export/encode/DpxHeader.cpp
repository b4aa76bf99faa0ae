#include "DpxHeader.h"

#include <cstdint>

namespace tessel::exporting {
namespace {

// Codes that SMPTE 268M uses for both fields.
enum class DpxColor : std::uint8_t {
    UserDefined = 0,
    Linear = 2,
    Unspecified = 4,
    Bt709 = 6,
    Bt601At625 = 7,
    Bt601At525 = 8
};

DpxColor Colorimetry(const ColorTags& tags) noexcept
{
    switch (tags.primaries) {
    case h273::kBt709:
        return DpxColor::Bt709;
    case h273::kUnspecified:
        return DpxColor::Unspecified;
    case h273::kBt470Bg:
        return DpxColor::Bt601At625;
    case h273::kBt601:
        return DpxColor::Bt601At525;
    default:
        return DpxColor::UserDefined;
    }
}

DpxColor Transfer(const ColorTags& tags) noexcept
{
    switch (tags.transfer) {
    case h273::kBt709:
        return DpxColor::Bt709;
    case h273::kUnspecified:
        return DpxColor::Unspecified;
    case h273::kBt601:
        return tags.primaries == h273::kBt470Bg ? DpxColor::Bt601At625 : DpxColor::Bt601At525;
    case h273::kLinear:
        return DpxColor::Linear;
    default:
        return DpxColor::UserDefined;
    }
}

} // namespace

void PatchDpxColors(std::span<std::byte> file, const ColorTags& tags) noexcept
{
    // Of the first image element, which is the only one.
    constexpr std::size_t kTransferByte = 801;
    constexpr std::size_t kColorimetryByte = 802;
    if (file.size() <= kColorimetryByte) {
        return;
    }
    file[kTransferByte] = static_cast<std::byte>(Transfer(tags));
    file[kColorimetryByte] = static_cast<std::byte>(Colorimetry(tags));
}

} // namespace tessel::exporting
