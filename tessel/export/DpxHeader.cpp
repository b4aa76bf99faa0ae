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

// Codes of ITU-T H.273.
constexpr int kBt709 = 1;
constexpr int kUnspecified = 2;
constexpr int kBt470Bg = 5;
constexpr int kBt601 = 6;
constexpr int kLinear = 8;

DpxColor Colorimetry(const ColorTags& tags) noexcept
{
    switch (tags.primaries) {
    case kBt709:
        return DpxColor::Bt709;
    case kUnspecified:
        return DpxColor::Unspecified;
    case kBt470Bg:
        return DpxColor::Bt601At625;
    case kBt601:
        return DpxColor::Bt601At525;
    default:
        return DpxColor::UserDefined;
    }
}

DpxColor Transfer(const ColorTags& tags) noexcept
{
    switch (tags.transfer) {
    case kBt709:
        return DpxColor::Bt709;
    case kUnspecified:
        return DpxColor::Unspecified;
    case kBt601:
        return tags.primaries == kBt470Bg ? DpxColor::Bt601At625 : DpxColor::Bt601At525;
    case kLinear:
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
