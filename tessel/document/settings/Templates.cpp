#include "Templates.h"

#include <algorithm>
#include <array>

namespace tessel::document {
namespace {

constexpr std::array<Template, 10> kTemplates{{
    {"hd", "1920x1080, 25 frames a second, 8-bit R'G'B', gradient, 1 kHz tone",
     "size=1920x1080 rate=25 duration=10s color-space=rec709 pixel-format=bgra tone=1000:-18"},
    {"hd-v210", "1920x1080, 29.97, 10-bit 4:2:2 in v210",
     "size=1920x1080 rate=29.97 duration=10s color-space=rec709 pixel-format=v210 tone=1000:-18"},
    {"hd-1080i", "1920x1080, 25, upper field first, each field in its own colour",
     "size=1920x1080 rate=25 fields=upper duration=10s color-space=rec709 pixel-format=uyvy picture=fields "
     "tone=1000:-18"},
    {"hd-bars", "colour bars at 75 and 100 per cent over grey steps, 1920x1080 in float",
     "size=1920x1080 rate=25 duration=10s color-space=rec709 pixel-format=bgra-float swatches=bars number=off "
     "tone=1000:-18"},
    {"uhd-pq", "3840x2160, 59.94, Rec. 2100 PQ, float",
     "size=3840x2160 rate=59.94 duration=10s color-space=rec2100-pq pixel-format=bgra-float tone=1000:-18"},
    {"pal-sd", "720x576, 25, upper field first, Rec. 601, pixels of 4:3 television",
     "size=720x576 pixel-aspect=dvpal rate=25 fields=upper duration=10s color-space=rec601-pal "
     "pixel-format=uyvy "
     "picture=fields tone=1000:-18"},
    {"ntsc-sd", "720x486, 29.97, lower field first, Rec. 601, pixels of 4:3 television",
     "size=720x486 pixel-aspect=dvntsc rate=29.97 fields=lower duration=10s color-space=rec601-ntsc "
     "pixel-format=uyvy picture=fields tone=1000:-20"},
    {"cinema", "2048x1080, 24, P3 with PQ, float",
     "size=2048x1080 rate=24 duration=10s color-space=p3-d65-pq pixel-format=bgra-float tone=1000:-20"},
    {"blits", "5.1 channel identification BLITS over a small picture, 25",
     "size=640x360 rate=25 duration=60s color-space=rec709 pixel-format=bgra ident=blits"},
    {"ebu-stereo", "EBU stereo identification with 1 kHz over a small picture, 25",
     "size=640x360 rate=25 duration=30s color-space=rec709 pixel-format=bgra ident=ebu-stereo-1000"},
}};

} // namespace

std::span<const Template> AllTemplates() noexcept
{
    return kTemplates;
}

const Template* TemplateNamed(std::string_view name) noexcept
{
    const auto* found = std::find_if(kTemplates.begin(), kTemplates.end(),
                                     [name](const Template& known) { return known.name == name; });
    return found != kTemplates.end() ? found : nullptr;
}

} // namespace tessel::document
