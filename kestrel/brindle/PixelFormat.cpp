#include "PixelFormat.h"

#include <algorithm>
#include <array>

namespace BR {
namespace {

/// A code from its four bytes in memory order.
consteval std::uint32_t Code(const char (&bytes)[5])
{
    std::uint32_t code = 0;
    for (int i = 3; i >= 0; --i) {
        code = code << 8 | static_cast<unsigned char>(bytes[i]);
    }
    return code;
}
static_assert(Code("bgra") == 0x61726762);

constexpr std::array kPixelFormats = {
    PixelFormatInfo{PixelFormat::BGRA_4444_8u, Code("bgra"), "KsPixelFormat_BGRA_4444_8u"},
    PixelFormatInfo{PixelFormat::VUYA_4444_8u, Code("vuya"), "KsPixelFormat_VUYA_4444_8u"},
    PixelFormatInfo{PixelFormat::VUYA_4444_8u_709, Code("VUYA"), "KsPixelFormat_VUYA_4444_8u_709"},
    PixelFormatInfo{PixelFormat::ARGB_4444_8u, Code("argb"), "KsPixelFormat_ARGB_4444_8u"},
    PixelFormatInfo{PixelFormat::BGRX_4444_8u, Code("bgrx"), "KsPixelFormat_BGRX_4444_8u"},
    PixelFormatInfo{PixelFormat::VUYX_4444_8u, Code("vuyx"), "KsPixelFormat_VUYX_4444_8u"},
    PixelFormatInfo{PixelFormat::VUYX_4444_8u_709, Code("vux7"), "KsPixelFormat_VUYX_4444_8u_709"},
    PixelFormatInfo{PixelFormat::XRGB_4444_8u, Code("xrgb"), "KsPixelFormat_XRGB_4444_8u"},
    PixelFormatInfo{PixelFormat::BGRP_4444_8u, Code("bgrp"), "KsPixelFormat_BGRP_4444_8u"},
    PixelFormatInfo{PixelFormat::VUYP_4444_8u, Code("vuyp"), "KsPixelFormat_VUYP_4444_8u"},
    PixelFormatInfo{PixelFormat::VUYP_4444_8u_709, Code("vup7"), "KsPixelFormat_VUYP_4444_8u_709"},
    PixelFormatInfo{PixelFormat::PRGB_4444_8u, Code("prgb"), "KsPixelFormat_PRGB_4444_8u"},
    PixelFormatInfo{PixelFormat::BGRA_4444_32f, Code("BGra"), "KsPixelFormat_BGRA_4444_32f"},
    PixelFormatInfo{PixelFormat::VUYA_4444_32f, Code("VUya"), "KsPixelFormat_VUYA_4444_32f"},
    PixelFormatInfo{PixelFormat::VUYA_4444_32f_709, Code("vUYa"), "KsPixelFormat_VUYA_4444_32f_709"},
    PixelFormatInfo{PixelFormat::ARGB_4444_32f, Code("ARgb"), "KsPixelFormat_ARGB_4444_32f"},
    PixelFormatInfo{PixelFormat::BGRX_4444_32f, Code("BGrx"), "KsPixelFormat_BGRX_4444_32f"},
    PixelFormatInfo{PixelFormat::VUYX_4444_32f, Code("VUyx"), "KsPixelFormat_VUYX_4444_32f"},
    PixelFormatInfo{PixelFormat::VUYX_4444_32f_709, Code("VUx7"), "KsPixelFormat_VUYX_4444_32f_709"},
    PixelFormatInfo{PixelFormat::XRGB_4444_32f, Code("XRgb"), "KsPixelFormat_XRGB_4444_32f"},
    PixelFormatInfo{PixelFormat::BGRP_4444_32f, Code("BGrp"), "KsPixelFormat_BGRP_4444_32f"},
    PixelFormatInfo{PixelFormat::VUYP_4444_32f, Code("VUyp"), "KsPixelFormat_VUYP_4444_32f"},
    PixelFormatInfo{PixelFormat::VUYP_4444_32f_709, Code("VUp7"), "KsPixelFormat_VUYP_4444_32f_709"},
    PixelFormatInfo{PixelFormat::PRGB_4444_32f, Code("PRgb"), "KsPixelFormat_PRGB_4444_32f"},
    PixelFormatInfo{PixelFormat::YUYV_422_8u_601, Code("yuy2"), "KsPixelFormat_YUYV_422_8u_601"},
    PixelFormatInfo{PixelFormat::YUYV_422_8u_709, Code("yuy3"), "KsPixelFormat_YUYV_422_8u_709"},
    PixelFormatInfo{PixelFormat::UYVY_422_8u_601, Code("uyvy"), "KsPixelFormat_UYVY_422_8u_601"},
    PixelFormatInfo{PixelFormat::UYVY_422_8u_709, Code("uyv7"), "KsPixelFormat_UYVY_422_8u_709"},
    PixelFormatInfo{PixelFormat::V210_422_10u_601, Code("v210"), "KsPixelFormat_V210_422_10u_601"},
    PixelFormatInfo{PixelFormat::V210_422_10u_709, Code("v211"), "KsPixelFormat_V210_422_10u_709"},
    PixelFormatInfo{PixelFormat::BGRA_4444_32f_Linear, Code("BGaL"), "KsPixelFormat_BGRA_4444_32f_Linear"},
    PixelFormatInfo{PixelFormat::BGRP_4444_32f_Linear, Code("BGpL"), "KsPixelFormat_BGRP_4444_32f_Linear"},
    PixelFormatInfo{PixelFormat::BGRX_4444_32f_Linear, Code("BGxL"), "KsPixelFormat_BGRX_4444_32f_Linear"},
    PixelFormatInfo{PixelFormat::ARGB_4444_32f_Linear, Code("ARgL"), "KsPixelFormat_ARGB_4444_32f_Linear"},
    PixelFormatInfo{PixelFormat::PRGB_4444_32f_Linear, Code("PRgL"), "KsPixelFormat_PRGB_4444_32f_Linear"},
    PixelFormatInfo{PixelFormat::XRGB_4444_32f_Linear, Code("XRgL"), "KsPixelFormat_XRGB_4444_32f_Linear"},
    PixelFormatInfo{PixelFormat::YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_601, Code("yv12"),
                    "KsPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_601"},
    PixelFormatInfo{PixelFormat::YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_601, Code("yvi2"),
                    "KsPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_601"},
    PixelFormatInfo{PixelFormat::YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_709, Code("yv17"),
                    "KsPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_709"},
    PixelFormatInfo{PixelFormat::YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709, Code("yvi7"),
                    "KsPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709"},
    PixelFormatInfo{PixelFormat::NTSCDV25, Code("dvn2"), "KsPixelFormat_NTSCDV25"},
    PixelFormatInfo{PixelFormat::PALDV25, Code("dvp2"), "KsPixelFormat_PALDV25"},
    PixelFormatInfo{PixelFormat::NTSCDV50, Code("dvn5"), "KsPixelFormat_NTSCDV50"},
    PixelFormatInfo{PixelFormat::PALDV50, Code("dvp5"), "KsPixelFormat_PALDV50"},
    PixelFormatInfo{PixelFormat::NTSCDV100_720p, Code("dvn7"), "KsPixelFormat_NTSCDV100_720p"},
    PixelFormatInfo{PixelFormat::PALDV100_720p, Code("dvp7"), "KsPixelFormat_PALDV100_720p"},
    PixelFormatInfo{PixelFormat::NTSCDV100_1080i, Code("dvn1"), "KsPixelFormat_NTSCDV100_1080i"},
    PixelFormatInfo{PixelFormat::PALDV100_1080i, Code("dvp1"), "KsPixelFormat_PALDV100_1080i"},
};
static_assert(kPixelFormats.size() == 48);

/// Rows stand at the index that is their format's number.
consteval bool RowsAreInOrder()
{
    for (std::size_t row = 0; row < kPixelFormats.size(); ++row) {
        if (static_cast<std::size_t>(kPixelFormats[row].format) != row) {
            return false;
        }
    }
    return true;
}
static_assert(RowsAreInOrder());

} // namespace

std::span<const PixelFormatInfo> AllPixelFormats() noexcept
{
    return kPixelFormats;
}

PixelFormat SDKToBEPixelFormat(std::uint32_t sdkCode) noexcept
{
    const auto* const row = std::find_if(kPixelFormats.begin(), kPixelFormats.end(),
                                         [&](const PixelFormatInfo& info) { return info.sdkCode == sdkCode; });
    return row == kPixelFormats.end() ? PixelFormat::Unknown : row->format;
}

std::uint32_t BEToSDKPixelFormat(PixelFormat format) noexcept
{
    const auto row = static_cast<std::size_t>(format);
    return row < kPixelFormats.size() ? kPixelFormats[row].sdkCode : 0;
}

} // namespace BR
