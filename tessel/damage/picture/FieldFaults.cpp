#include "FieldFaults.h"

#include <algorithm>
#include <cstddef>

namespace tessel::damage {
namespace {

/// Calls `line(source plane, y, target row)` for every line of every component.
template <class Line>
WorkPicture EachLine(const WorkPicture& picture, const Line& line)
{
    WorkPicture made = picture;
    for (std::size_t i = 0; i < made.planes.size(); ++i) {
        for (std::int32_t y = 0; y < made.planes[i].height; ++y) {
            line(picture.planes[i], y, made.planes[i].Row(y));
        }
    }
    return made;
}

/// The other line of a pair; the last line of an odd height is its own.
std::int32_t PartnerOf(std::int32_t y, std::int32_t height)
{
    const std::int32_t partner = y % 2 == 0 ? y + 1 : y - 1;
    return partner < height ? partner : y;
}

bool Is(Parity parity, std::int32_t y) noexcept
{
    return (y % 2 == 0) == (parity == Parity::Upper);
}

} // namespace

WorkPicture WithFieldsSwapped(const WorkPicture& picture)
{
    return EachLine(picture, [](const Plane& from, std::int32_t y, float* to) {
        std::copy_n(from.Row(PartnerOf(y, from.height)), from.width, to);
    });
}

WorkPicture Woven(const WorkPicture& upper, const WorkPicture& lower)
{
    WorkPicture woven = upper;
    for (std::size_t i = 0; i < woven.planes.size(); ++i) {
        for (std::int32_t y = 1; y < woven.planes[i].height; y += 2) {
            std::copy_n(lower.planes[i].Row(y), woven.planes[i].width, woven.planes[i].Row(y));
        }
    }
    return woven;
}

WorkPicture WithFieldsBlended(const WorkPicture& picture)
{
    return EachLine(picture, [](const Plane& from, std::int32_t y, float* to) {
        const float* const partner = from.Row(PartnerOf(y, from.height));
        std::transform(from.Row(y), from.Row(y) + from.width, partner, to,
                       [](float a, float b) { return (a + b) / 2; });
    });
}

WorkPicture LineDoubled(const WorkPicture& picture, Parity kept)
{
    return EachLine(picture, [kept](const Plane& from, std::int32_t y, float* to) {
        std::copy_n(from.Row(Is(kept, y) ? y : PartnerOf(y, from.height)), from.width, to);
    });
}

WorkPicture Deinterlaced(const WorkPicture& picture, Parity kept)
{
    return EachLine(picture, [kept](const Plane& from, std::int32_t y, float* to) {
        if (Is(kept, y) || from.height < 2) {
            return; // already a copy
        }
        const float* const above = from.Row(y > 0 ? y - 1 : y + 1);
        const float* const below = from.Row(y + 1 < from.height ? y + 1 : y - 1);
        std::transform(above, above + from.width, below, to, [](float a, float b) { return (a + b) / 2; });
    });
}

} // namespace tessel::damage
