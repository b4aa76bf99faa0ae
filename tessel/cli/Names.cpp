#include "Names.h"

#include <algorithm>

namespace tessel::cli {
namespace {

struct NamedRatio {
    qelmediatypes::PixelAspectRatio ratio;
    std::string_view name;
};

constexpr NamedRatio kRatios[] = {
    {qelmediatypes::kPixelAspectRatio_Square, "Square"},
    {qelmediatypes::kPixelAspectRatio_DVNTSC, "DVNTSC"},
    {qelmediatypes::kPixelAspectRatio_DVNTSCWide, "DVNTSCWide"},
    {qelmediatypes::kPixelAspectRatio_DVPAL, "DVPAL"},
    {qelmediatypes::kPixelAspectRatio_DVPALWide, "DVPALWide"},
    {qelmediatypes::kPixelAspectRatio_Anamorphic, "Anamorphic"},
    {qelmediatypes::kPixelAspectRatio_HDAnamorphic1080, "HDAnamorphic1080"},
    {qelmediatypes::kPixelAspectRatio_DVCProHD, "DVCProHD"},
    {qelmediatypes::kPixelAspectRatio_DVNTSC_Incorrect, "DVNTSC_Incorrect"},
    {qelmediatypes::kPixelAspectRatio_DVNTSCWide_Incorrect, "DVNTSCWide_Incorrect"},
    {qelmediatypes::kPixelAspectRatio_DVPAL_Incorrect, "DVPAL_Incorrect"},
    {qelmediatypes::kPixelAspectRatio_DVPAL_TooPrecise, "DVPAL_TooPrecise"},
    {qelmediatypes::kPixelAspectRatio_DVPALWide_Incorrect, "DVPALWide_Incorrect"},
};

} // namespace

std::string_view PixelFormatName(BR::PixelFormat format) noexcept
{
    const auto formats = BR::AllPixelFormats();
    const auto found = std::find_if(formats.begin(), formats.end(), [format](const BR::PixelFormatInfo& info) {
        return info.format == format;
    });
    return found != formats.end() ? found->constant : "unknown";
}

std::string FourCharacterText(std::uint32_t code)
{
    std::string text;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        const auto character = static_cast<char>(code >> shift & 0xFFU);
        text += character >= ' ' && character <= '~' ? character : '?';
    }
    return text;
}

std::string_view PixelAspectName(qelmediatypes::PixelAspectRatio ratio) noexcept
{
    const auto* found = std::find_if(std::begin(kRatios), std::end(kRatios),
                                     [ratio](const NamedRatio& named) { return named.ratio == ratio; });
    return found != std::end(kRatios) ? found->name : std::string_view();
}

std::string_view FieldOrderName(importhost::FieldOrder order) noexcept
{
    switch (order) {
    case importhost::FieldOrder::UpperFirst:
        return "upper field first";
    case importhost::FieldOrder::LowerFirst:
        return "lower field first";
    case importhost::FieldOrder::Progressive:
        break;
    }
    return "progressive";
}

std::string_view ChannelTypeName(std::int32_t channelType) noexcept
{
    switch (channelType) {
    case 2:
        return "stereo";
    case 3:
        return "5.1";
    default:
        return {};
    }
}

} // namespace tessel::cli
