#include "PixelFormat.h"

#include <kestrel/qelcore/FourCharacterCode.h>

#include <algorithm>
#include <array>

namespace BR {
namespace {

using qelcore::FourBytesCode;

constexpr std::array kPixelFormats = {
    PixelFormatInfo{PixelFormat::BGRA_4444_8u, FourBytesCode("bgra"), "KsPixelFormat_BGRA_4444_8u"},
    PixelFormatInfo{PixelFormat::VUYA_4444_8u, FourBytesCode("vuya"), "KsPixelFormat_VUYA_4444_8u"},
    PixelFormatInfo{PixelFormat::VUYA_4444_8u_709, FourBytesCode("VUYA"), "KsPixelFormat_VUYA_4444_8u_709"},
    PixelFormatInfo{PixelFormat::ARGB_4444_8u, FourBytesCode("argb"), "KsPixelFormat_ARGB_4444_8u"},
    PixelFormatInfo{PixelFormat::BGRX_4444_8u, FourBytesCode("bgrx"), "KsPixelFormat_BGRX_4444_8u"},
    PixelFormatInfo{PixelFormat::VUYX_4444_8u, FourBytesCode("vuyx"), "KsPixelFormat_VUYX_4444_8u"},
    PixelFormatInfo{PixelFormat::VUYX_4444_8u_709, FourBytesCode("vux7"), "KsPixelFormat_VUYX_4444_8u_709"},
    PixelFormatInfo{PixelFormat::XRGB_4444_8u, FourBytesCode("xrgb"), "KsPixelFormat_XRGB_4444_8u"},
    PixelFormatInfo{PixelFormat::BGRP_4444_8u, FourBytesCode("bgrp"), "KsPixelFormat_BGRP_4444_8u"},
    PixelFormatInfo{PixelFormat::VUYP_4444_8u, FourBytesCode("vuyp"), "KsPixelFormat_VUYP_4444_8u"},
    PixelFormatInfo{PixelFormat::VUYP_4444_8u_709, FourBytesCode("vup7"), "KsPixelFormat_VUYP_4444_8u_709"},
    PixelFormatInfo{PixelFormat::PRGB_4444_8u, FourBytesCode("prgb"), "KsPixelFormat_PRGB_4444_8u"},
    PixelFormatInfo{PixelFormat::BGRA_4444_32f, FourBytesCode("BGra"), "KsPixelFormat_BGRA_4444_32f"},
    PixelFormatInfo{PixelFormat::VUYA_4444_32f, FourBytesCode("VUya"), "KsPixelFormat_VUYA_4444_32f"},
    PixelFormatInfo{PixelFormat::VUYA_4444_32f_709, FourBytesCode("vUYa"), "KsPixelFormat_VUYA_4444_32f_709"},
    PixelFormatInfo{PixelFormat::ARGB_4444_32f, FourBytesCode("ARgb"), "KsPixelFormat_ARGB_4444_32f"},
    PixelFormatInfo{PixelFormat::BGRX_4444_32f, FourBytesCode("BGrx"), "KsPixelFormat_BGRX_4444_32f"},
    PixelFormatInfo{PixelFormat::VUYX_4444_32f, FourBytesCode("VUyx"), "KsPixelFormat_VUYX_4444_32f"},
    PixelFormatInfo{PixelFormat::VUYX_4444_32f_709, FourBytesCode("VUx7"), "KsPixelFormat_VUYX_4444_32f_709"},
    PixelFormatInfo{PixelFormat::XRGB_4444_32f, FourBytesCode("XRgb"), "KsPixelFormat_XRGB_4444_32f"},
    PixelFormatInfo{PixelFormat::BGRP_4444_32f, FourBytesCode("BGrp"), "KsPixelFormat_BGRP_4444_32f"},
    PixelFormatInfo{PixelFormat::VUYP_4444_32f, FourBytesCode("VUyp"), "KsPixelFormat_VUYP_4444_32f"},
    PixelFormatInfo{PixelFormat::VUYP_4444_32f_709, FourBytesCode("VUp7"), "KsPixelFormat_VUYP_4444_32f_709"},
    PixelFormatInfo{PixelFormat::PRGB_4444_32f, FourBytesCode("PRgb"), "KsPixelFormat_PRGB_4444_32f"},
    PixelFormatInfo{PixelFormat::YUYV_422_8u_601, FourBytesCode("yuy2"), "KsPixelFormat_YUYV_422_8u_601"},
    PixelFormatInfo{PixelFormat::YUYV_422_8u_709, FourBytesCode("yuy3"), "KsPixelFormat_YUYV_422_8u_709"},
    PixelFormatInfo{PixelFormat::UYVY_422_8u_601, FourBytesCode("uyvy"), "KsPixelFormat_UYVY_422_8u_601"},
    PixelFormatInfo{PixelFormat::UYVY_422_8u_709, FourBytesCode("uyv7"), "KsPixelFormat_UYVY_422_8u_709"},
    PixelFormatInfo{PixelFormat::V210_422_10u_601, FourBytesCode("v210"), "KsPixelFormat_V210_422_10u_601"},
    PixelFormatInfo{PixelFormat::V210_422_10u_709, FourBytesCode("v211"), "KsPixelFormat_V210_422_10u_709"},
    PixelFormatInfo{PixelFormat::BGRA_4444_32f_Linear, FourBytesCode("BGaL"),
                    "KsPixelFormat_BGRA_4444_32f_Linear"},
    PixelFormatInfo{PixelFormat::BGRP_4444_32f_Linear, FourBytesCode("BGpL"),
                    "KsPixelFormat_BGRP_4444_32f_Linear"},
    PixelFormatInfo{PixelFormat::BGRX_4444_32f_Linear, FourBytesCode("BGxL"),
                    "KsPixelFormat_BGRX_4444_32f_Linear"},
    PixelFormatInfo{PixelFormat::ARGB_4444_32f_Linear, FourBytesCode("ARgL"),
                    "KsPixelFormat_ARGB_4444_32f_Linear"},
    PixelFormatInfo{PixelFormat::PRGB_4444_32f_Linear, FourBytesCode("PRgL"),
                    "KsPixelFormat_PRGB_4444_32f_Linear"},
    PixelFormatInfo{PixelFormat::XRGB_4444_32f_Linear, FourBytesCode("XRgL"),
                    "KsPixelFormat_XRGB_4444_32f_Linear"},
    PixelFormatInfo{PixelFormat::YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_601, FourBytesCode("yv12"),
                    "KsPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_601"},
    PixelFormatInfo{PixelFormat::YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_601, FourBytesCode("yvi2"),
                    "KsPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_601"},
    PixelFormatInfo{PixelFormat::YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_709, FourBytesCode("yv17"),
                    "KsPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_709"},
    PixelFormatInfo{PixelFormat::YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709, FourBytesCode("yvi7"),
                    "KsPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709"},
    PixelFormatInfo{PixelFormat::NTSCDV25, FourBytesCode("dvn2"), "KsPixelFormat_NTSCDV25"},
    PixelFormatInfo{PixelFormat::PALDV25, FourBytesCode("dvp2"), "KsPixelFormat_PALDV25"},
    PixelFormatInfo{PixelFormat::NTSCDV50, FourBytesCode("dvn5"), "KsPixelFormat_NTSCDV50"},
    PixelFormatInfo{PixelFormat::PALDV50, FourBytesCode("dvp5"), "KsPixelFormat_PALDV50"},
    PixelFormatInfo{PixelFormat::NTSCDV100_720p, FourBytesCode("dvn7"), "KsPixelFormat_NTSCDV100_720p"},
    PixelFormatInfo{PixelFormat::PALDV100_720p, FourBytesCode("dvp7"), "KsPixelFormat_PALDV100_720p"},
    PixelFormatInfo{PixelFormat::NTSCDV100_1080i, FourBytesCode("dvn1"), "KsPixelFormat_NTSCDV100_1080i"},
    PixelFormatInfo{PixelFormat::PALDV100_1080i, FourBytesCode("dvp1"), "KsPixelFormat_PALDV100_1080i"},
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
