/// The host's pixel formats, under both of their numberings. Threads: [thread-safe].
#pragma once

#include <kestrel/Export.h>

#include <cstdint>
#include <span>
#include <string_view>

namespace BR {

/// The media framework's own numbering: the order of the host's list. `Unknown` is no format.
enum class PixelFormat : std::int32_t {
    Unknown = -1,
    BGRA_4444_8u = 0,
    VUYA_4444_8u,
    VUYA_4444_8u_709,
    ARGB_4444_8u,
    BGRX_4444_8u,
    VUYX_4444_8u,
    VUYX_4444_8u_709,
    XRGB_4444_8u,
    BGRP_4444_8u,
    VUYP_4444_8u,
    VUYP_4444_8u_709,
    PRGB_4444_8u,
    BGRA_4444_32f,
    VUYA_4444_32f,
    VUYA_4444_32f_709,
    ARGB_4444_32f,
    BGRX_4444_32f,
    VUYX_4444_32f,
    VUYX_4444_32f_709,
    XRGB_4444_32f,
    BGRP_4444_32f,
    VUYP_4444_32f,
    VUYP_4444_32f_709,
    PRGB_4444_32f,
    YUYV_422_8u_601,
    YUYV_422_8u_709,
    UYVY_422_8u_601,
    UYVY_422_8u_709,
    V210_422_10u_601,
    V210_422_10u_709,
    BGRA_4444_32f_Linear,
    BGRP_4444_32f_Linear,
    BGRX_4444_32f_Linear,
    ARGB_4444_32f_Linear,
    PRGB_4444_32f_Linear,
    XRGB_4444_32f_Linear,
    YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_601,
    YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_601,
    YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_709,
    YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709,
    NTSCDV25,
    PALDV25,
    NTSCDV50,
    PALDV50,
    NTSCDV100_720p,
    PALDV100_720p,
    NTSCDV100_1080i,
    PALDV100_1080i
};

/// One row of the host's list of formats.
struct PixelFormatInfo {
    PixelFormat format;
    std::uint32_t sdkCode;     ///< four bytes in memory order, read little-endian ("bgra" is 0x61726762)
    std::string_view constant; ///< the host constant's name, "KsPixelFormat_BGRA_4444_8u"
};

/// The 48 formats in the host's order. Static storage.
[[nodiscard]] KESTREL_API std::span<const PixelFormatInfo> AllPixelFormats() noexcept;

/// Host code to the framework's value; `Unknown` for any other number.
[[nodiscard]] KESTREL_API PixelFormat SDKToBEPixelFormat(std::uint32_t sdkCode) noexcept;

/// The framework's value to the host code; 0 for `Unknown`.
[[nodiscard]] KESTREL_API std::uint32_t BEToSDKPixelFormat(PixelFormat format) noexcept;

} // namespace BR
