#include "ChoiceTables.h"

#include <ImporterTessel/settings/TesselInfo.h>
#include <kestrel/brindle/ColorSpaces.h>

#include <array>

namespace ImporterTessel {

namespace {

using qelmediatypes::kTicksPerSecond;

constexpr FrameRateChoice Whole(std::int64_t framesPerSecond, std::string_view label)
{
    return {{kTicksPerSecond / framesPerSecond}, label};
}

constexpr std::array<FrameRateChoice, 14> kFrameRates{{
    Whole(10, "10 fps"),
    Whole(12, "12 fps"),
    {{kTicksPerSecond * 2 / 25}, "12.5 fps"},
    Whole(15, "15 fps"),
    {{kTicksPerSecond * 1001 / 24000}, "23.976 fps - (24000.0 / 1001.0)"},
    Whole(24, "24 fps"),
    Whole(25, "PAL - 25 fps"),
    // Intended: the parenthesis stays open, and the denominator three rows below is misprinted. The rates are
    // right. People know these labels from screenshots and test plans.
    {{kTicksPerSecond * 1001 / 30000}, "NTSC - 29.97 fps - (30000.0 / 1001.0"},
    Whole(30, "30 fps"),
    Whole(50, "PAL HD - 50 fps"),
    {{kTicksPerSecond * 1001 / 60000}, "NTSC HD - 59.94 fps - (60000.0 / 10001.0)"},
    Whole(60, "60 fps"),
    Whole(100, "100 fps"),
    Whole(1000, "1000 fps"),
}};

constexpr std::array<std::string_view, 3> kFieldTypes{"Progressive", "Upper Field First", "Lower Field First"};
constexpr std::array<std::string_view, 3> kRenderTypes{"Render Field Colors", "Render Horizontal Gradient",
                                                       "Render Color Swatches"};
constexpr std::array<std::string_view, 3> kColorSlots{"Field Colors", "Gradient Colors - Start",
                                                      "Gradient Colors - End"};

constexpr std::array<IdentifierFormatChoice, 2> kStereoIdentifiers{{
    {kIdentifierEBUStereo1000, "EBU Stereo (1000 Hz)"},
    {kIdentifierEBUStereo400, "EBU Stereo (400 Hz)"},
}};
constexpr std::array<IdentifierFormatChoice, 2> kMultichannelIdentifiers{{
    {kIdentifierEBUMultichannel, "EBU Multichannel (5.1)"},
    {kIdentifierBLITS, "BLITS (5.1)"},
}};

} // namespace

std::span<const FrameRateChoice> FrameRateChoices() noexcept
{
    return kFrameRates;
}

std::span<const PixelFormatChoice> PixelFormatChoices() noexcept
{
    return BR::AllPixelFormats();
}

std::span<const PixelAspectChoice> PixelAspectChoices() noexcept
{
    return qelmediatypes::kNamedPixelAspectRatios;
}

std::span<const std::string_view> FieldTypeLabels() noexcept
{
    return kFieldTypes;
}

std::span<const std::string_view> RenderTypeLabels() noexcept
{
    return kRenderTypes;
}

std::span<const std::string_view> ColorSlotLabels() noexcept
{
    return kColorSlots;
}

std::span<const IdentifierFormatChoice> IdentifierFormatChoices(std::int32_t channelType) noexcept
{
    switch (channelType) {
    case kKsAudioChannelType51:
        return kMultichannelIdentifiers;
    case kKsAudioChannelTypeStereo:
        return kStereoIdentifiers;
    default:
        return {};
    }
}

std::vector<qelmediatypes::color::ColorSpace> ColorSpaceChoices()
{
    return BR::ColorSpaces::GetSupportedOverridableMediaColorSpaces();
}

} // namespace ImporterTessel
