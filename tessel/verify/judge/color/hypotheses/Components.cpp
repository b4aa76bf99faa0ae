#include "HypothesisList.h"

#include <fmt/format.h>

#include <array>

namespace tessel::verify::judge {
namespace {

struct Order {
    std::array<std::size_t, 3> from;
    std::string_view name;
};
constexpr Order kOrders[] = {{{2, 1, 0}, "B'G'R'"},
                             {{0, 2, 1}, "R'B'G'"},
                             {{1, 0, 2}, "G'R'B'"},
                             {{1, 2, 0}, "G'B'R'"},
                             {{2, 0, 1}, "B'R'G'"}};

/// Codes of `coding` with Cb and Cr in each other's place.
Triple WithChromaSwapped(const Coding& coding, const Triple& rgb) noexcept
{
    const Triple codes = Encode(coding, rgb);
    return {codes[0], codes[2], codes[1]};
}

} // namespace

void AddComponents(HypothesisList& list)
{
    for (const Order& order : kOrders) {
        list.AddColors({id::kColorChannels}, fmt::format("red, green and blue are exchanged: {}", order.name),
                       {std::string(order.name)}, {"R'G'B'"}, [from = order.from](const ColorPair& pair) {
                           return Triple{pair.rgb[from[0]], pair.rgb[from[1]], pair.rgb[from[2]]};
                       });
    }
    if (!list.Expected().isRgb) {
        list.AddCodes(
            {id::kColorChromaSwapped}, "Cb and Cr are exchanged", {"Cr, Cb"}, {"Cb, Cr"},
            [coding = list.Expected()](const ColorPair& pair) { return WithChromaSwapped(coding, pair.rgb); });
        return;
    }
    // R'G'B' that was Y'CbCr on its way: by either of the two matrices that chains use for it.
    for (const auto& [matrix, name] : {std::pair{1, "BT.709"}, std::pair{6, "BT.601"}}) {
        list.AddColors({id::kColorChromaSwapped},
                       fmt::format("Cb and Cr were exchanged while colours were Y'CbCr ({})", name), {"Cr, Cb"},
                       {"Cb, Cr"}, [coding = Coding{false, matrix, true}](const ColorPair& pair) {
                           return Decode(coding, WithChromaSwapped(coding, pair.rgb));
                       });
    }
}

} // namespace tessel::verify::judge
