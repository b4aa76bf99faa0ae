#include "Names.h"

#include <kestrel/qelcore/text/LetterCase.h>

#include <algorithm>

namespace tessel::typed {

std::string_view PixelFormatName(BR::PixelFormat format) noexcept
{
    const auto formats = BR::AllPixelFormats();
    const auto found = std::find_if(formats.begin(), formats.end(), [format](const BR::PixelFormatInfo& info) {
        return info.format == format;
    });
    return found != formats.end() ? found->constant : "unknown";
}

std::string_view PixelAspectName(qelmediatypes::PixelAspectRatio ratio) noexcept
{
    const auto& ratios = qelmediatypes::kNamedPixelAspectRatios;
    const auto found =
        std::find_if(ratios.begin(), ratios.end(), [ratio](const qelmediatypes::NamedPixelAspectRatio& named) {
            return named.ratio == ratio;
        });
    constexpr std::string_view kPrefix = "kPixelAspectRatio_"; // of every constant
    return found != ratios.end() ? found->constant.substr(kPrefix.size()) : std::string_view();
}

std::vector<std::string> PixelAspectChoices()
{
    std::vector<std::string> names;
    names.reserve(qelmediatypes::kNamedPixelAspectRatios.size());
    for (const auto& named : qelmediatypes::kNamedPixelAspectRatios) {
        names.push_back(qelcore::text::LowerCase(PixelAspectName(named.ratio)));
    }
    return names;
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

} // namespace tessel::typed
