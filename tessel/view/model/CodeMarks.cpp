#include "CodeMarks.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tessel::view {
namespace {

constexpr std::uint32_t kReserved = 0xFFFF00FF; // alpha, red, green, blue
constexpr std::uint32_t kRange = 0xFFFF4000;
constexpr std::uint32_t kGamut = 0xFFFFDC00;

/// The mark of each sum of faults; the gravest fault decides.
constexpr std::array<std::uint32_t, 8> Marks()
{
    std::array<std::uint32_t, 8> marks{};
    for (unsigned found = 1; found < marks.size(); ++found) {
        marks[found] = (found & scopes::kReservedCode) != 0   ? kReserved
                       : (found & scopes::kOutsideRange) != 0 ? kRange
                                                              : kGamut;
    }
    return marks;
}

} // namespace

exporting::Picture MarksOf(const scopes::CodeFaults& faults)
{
    static_assert(scopes::kReservedCode + scopes::kOutsideRange + scopes::kOutsideGamut == 7);
    static constexpr std::array<std::uint32_t, 8> kMarks = Marks();
    exporting::Picture picture =
        exporting::AllocatePicture(exporting::PictureLayout::Bgra, faults.width, faults.height);
    for (int y = 0; y < faults.height; ++y) {
        std::byte* const line = picture.planes[0] + y * picture.rowBytes[0];
        const std::uint8_t* const flags = faults.flags.data() + static_cast<std::ptrdiff_t>(y) * faults.width;
        for (int x = 0; x < faults.width; ++x) {
            std::memcpy(line + 4 * x, &kMarks[flags[x]], sizeof(std::uint32_t));
        }
    }
    return picture;
}

} // namespace tessel::view
