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
    // Intended: the parenthesis stays open, and two rows on the denominator is misprinted, while the rates
    // are the true ones. People know these labels from screenshots and test plans.
    {{kTicksPerSecond * 1001 / 30000}, "NTSC - 29.97 fps - (30000.0 / 1001.0"},
    Whole(30, "30 fps"),
    Whole(50, "PAL HD - 50 fps"),
    {{kTicksPerSecond * 1001 / 60000}, "NTSC HD - 59.94 fps - (60000.0 / 10001.0)"},
    Whole(60, "60 fps"),
    Whole(100, "100 fps"),
    Whole(1000, "1000 fps"),
}};

constexpr std::uint32_t Code(const char (&bytes)[5])
{
    std::uint32_t code = 0;
    for (int index = 3; index >= 0; --index) {
        code = code << 8U | static_cast<unsigned char>(bytes[index]);
    }
    return code;
}

constexpr std::array<PixelFormatChoice, 48> kPixelFormats{{
    {Code("bgra"), "KsPixelFormat_BGRA_4444_8u"},
    {Code("vuya"), "KsPixelFormat_VUYA_4444_8u"},
    {Code("VUYA"), "KsPixelFormat_VUYA_4444_8u_709"},
    {Code("argb"), "KsPixelFormat_ARGB_4444_8u"},
    {Code("bgrx"), "KsPixelFormat_BGRX_4444_8u"},
    {Code("vuyx"), "KsPixelFormat_VUYX_4444_8u"},
    {Code("vux7"), "KsPixelFormat_VUYX_4444_8u_709"},
    {Code("xrgb"), "KsPixelFormat_XRGB_4444_8u"},
    {Code("bgrp"), "KsPixelFormat_BGRP_4444_8u"},
    {Code("vuyp"), "KsPixelFormat_VUYP_4444_8u"},
    {Code("vup7"), "KsPixelFormat_VUYP_4444_8u_709"},
    {Code("prgb"), "KsPixelFormat_PRGB_4444_8u"},
    {Code("BGra"), "KsPixelFormat_BGRA_4444_32f"},
    {Code("VUya"), "KsPixelFormat_VUYA_4444_32f"},
    {Code("vUYa"), "KsPixelFormat_VUYA_4444_32f_709"},
    {Code("ARgb"), "KsPixelFormat_ARGB_4444_32f"},
    {Code("BGrx"), "KsPixelFormat_BGRX_4444_32f"},
    {Code("VUyx"), "KsPixelFormat_VUYX_4444_32f"},
    {Code("VUx7"), "KsPixelFormat_VUYX_4444_32f_709"},
    {Code("XRgb"), "KsPixelFormat_XRGB_4444_32f"},
    {Code("BGrp"), "KsPixelFormat_BGRP_4444_32f"},
    {Code("VUyp"), "KsPixelFormat_VUYP_4444_32f"},
    {Code("VUp7"), "KsPixelFormat_VUYP_4444_32f_709"},
    {Code("PRgb"), "KsPixelFormat_PRGB_4444_32f"},
    {Code("yuy2"), "KsPixelFormat_YUYV_422_8u_601"},
    {Code("yuy3"), "KsPixelFormat_YUYV_422_8u_709"},
    {Code("uyvy"), "KsPixelFormat_UYVY_422_8u_601"},
    {Code("uyv7"), "KsPixelFormat_UYVY_422_8u_709"},
    {Code("v210"), "KsPixelFormat_V210_422_10u_601"},
    {Code("v211"), "KsPixelFormat_V210_422_10u_709"},
    {Code("BGaL"), "KsPixelFormat_BGRA_4444_32f_Linear"},
    {Code("BGpL"), "KsPixelFormat_BGRP_4444_32f_Linear"},
    {Code("BGxL"), "KsPixelFormat_BGRX_4444_32f_Linear"},
    {Code("ARgL"), "KsPixelFormat_ARGB_4444_32f_Linear"},
    {Code("PRgL"), "KsPixelFormat_PRGB_4444_32f_Linear"},
    {Code("XRgL"), "KsPixelFormat_XRGB_4444_32f_Linear"},
    {Code("yv12"), "KsPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_601"},
    {Code("yvi2"), "KsPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_601"},
    {Code("yv17"), "KsPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_709"},
    {Code("yvi7"), "KsPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709"},
    {Code("dvn2"), "KsPixelFormat_NTSCDV25"},
    {Code("dvp2"), "KsPixelFormat_PALDV25"},
    {Code("dvn5"), "KsPixelFormat_NTSCDV50"},
    {Code("dvp5"), "KsPixelFormat_PALDV50"},
    {Code("dvn7"), "KsPixelFormat_NTSCDV100_720p"},
    {Code("dvp7"), "KsPixelFormat_PALDV100_720p"},
    {Code("dvn1"), "KsPixelFormat_NTSCDV100_1080i"},
    {Code("dvp1"), "KsPixelFormat_PALDV100_1080i"},
}};

constexpr std::array<PixelAspectChoice, 13> kPixelAspects{{
    {qelmediatypes::kPixelAspectRatio_Square, "kPixelAspectRatio_Square"},
    {qelmediatypes::kPixelAspectRatio_DVNTSC, "kPixelAspectRatio_DVNTSC"},
    {qelmediatypes::kPixelAspectRatio_DVNTSCWide, "kPixelAspectRatio_DVNTSCWide"},
    {qelmediatypes::kPixelAspectRatio_DVPAL, "kPixelAspectRatio_DVPAL"},
    {qelmediatypes::kPixelAspectRatio_DVPALWide, "kPixelAspectRatio_DVPALWide"},
    {qelmediatypes::kPixelAspectRatio_Anamorphic, "kPixelAspectRatio_Anamorphic"},
    {qelmediatypes::kPixelAspectRatio_HDAnamorphic1080, "kPixelAspectRatio_HDAnamorphic1080"},
    {qelmediatypes::kPixelAspectRatio_DVCProHD, "kPixelAspectRatio_DVCProHD"},
    {qelmediatypes::kPixelAspectRatio_DVNTSC_Incorrect, "kPixelAspectRatio_DVNTSC_Incorrect"},
    {qelmediatypes::kPixelAspectRatio_DVNTSCWide_Incorrect, "kPixelAspectRatio_DVNTSCWide_Incorrect"},
    {qelmediatypes::kPixelAspectRatio_DVPAL_Incorrect, "kPixelAspectRatio_DVPAL_Incorrect"},
    {qelmediatypes::kPixelAspectRatio_DVPAL_TooPrecise, "kPixelAspectRatio_DVPAL_TooPrecise"},
    {qelmediatypes::kPixelAspectRatio_DVPALWide_Incorrect, "kPixelAspectRatio_DVPALWide_Incorrect"},
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
    return kPixelFormats;
}

std::span<const PixelAspectChoice> PixelAspectChoices() noexcept
{
    return kPixelAspects;
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
