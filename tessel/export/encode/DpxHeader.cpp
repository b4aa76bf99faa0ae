#include "DpxHeader.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

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

/// Primaries of H.273 and their colorimetry.
constexpr std::array<std::pair<int, DpxColor>, 4> kColorimetries{{{h273::kBt709, DpxColor::Bt709},
                                                                  {h273::kUnspecified, DpxColor::Unspecified},
                                                                  {h273::kBt470Bg, DpxColor::Bt601At625},
                                                                  {h273::kBt601, DpxColor::Bt601At525}}};

/// Transfers of H.273 and their characteristic. BT.601 has one transfer for both its line counts: which of
/// them, the primaries tell.
constexpr std::array<std::pair<int, DpxColor>, 4> kTransfers{{{h273::kBt709, DpxColor::Bt709},
                                                              {h273::kUnspecified, DpxColor::Unspecified},
                                                              {h273::kBt601, DpxColor::Bt601At525},
                                                              {h273::kLinear, DpxColor::Linear}}};

template <class Table>
DpxColor Look(const Table& table, int code) noexcept
{
    const auto found =
        std::find_if(table.begin(), table.end(), [code](const auto& row) { return row.first == code; });
    return found != table.end() ? found->second : DpxColor::UserDefined;
}

DpxColor Transfer(const ColorTags& tags) noexcept
{
    const DpxColor transfer = Look(kTransfers, tags.transfer);
    const bool is625 = transfer == DpxColor::Bt601At525 && tags.primaries == h273::kBt470Bg;
    return is625 ? DpxColor::Bt601At625 : transfer;
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
    file[kColorimetryByte] = static_cast<std::byte>(Look(kColorimetries, tags.primaries));
}

} // namespace tessel::exporting
