#include "Layouts.h"

#include "Results.h"

#include <array>
#include <string>

namespace tessel::api {
namespace {

using exporting::PictureLayout;

struct Row {
    tessel_layout layout;
    PictureLayout picture;
};

constexpr std::array<Row, 20> kLayouts{{
    {TESSEL_LAYOUT_BGRA, PictureLayout::Bgra},           {TESSEL_LAYOUT_ARGB, PictureLayout::Argb},
    {TESSEL_LAYOUT_BGRX, PictureLayout::Bgr0},           {TESSEL_LAYOUT_XRGB, PictureLayout::Zrgb},
    {TESSEL_LAYOUT_RGBA, PictureLayout::Rgba},           {TESSEL_LAYOUT_RGB, PictureLayout::Rgb24},
    {TESSEL_LAYOUT_RGBA64, PictureLayout::Rgba64},       {TESSEL_LAYOUT_RGB48, PictureLayout::Rgb48},
    {TESSEL_LAYOUT_GBRP_F32, PictureLayout::Gbrpf32},    {TESSEL_LAYOUT_GBRAP_F32, PictureLayout::Gbrapf32},
    {TESSEL_LAYOUT_UYVY, PictureLayout::Uyvy},           {TESSEL_LAYOUT_YUYV, PictureLayout::Yuyv},
    {TESSEL_LAYOUT_V210, PictureLayout::V210},           {TESSEL_LAYOUT_YUV420P, PictureLayout::Yuv420p},
    {TESSEL_LAYOUT_YUV422P, PictureLayout::Yuv422p},     {TESSEL_LAYOUT_YUV444P, PictureLayout::Yuv444p},
    {TESSEL_LAYOUT_YUV420P10, PictureLayout::Yuv420p10}, {TESSEL_LAYOUT_YUV422P10, PictureLayout::Yuv422p10},
    {TESSEL_LAYOUT_YUV444P10, PictureLayout::Yuv444p10}, {TESSEL_LAYOUT_YUVA444P10, PictureLayout::Yuva444p10},
}};

} // namespace

PictureLayout PictureLayoutOf(tessel_layout layout)
{
    for (const Row& row : kLayouts) {
        if (row.layout == layout) {
            return row.picture;
        }
    }
    throw CallError(TESSEL_BAD_ARGUMENT, "there is no layout " + std::to_string(static_cast<int>(layout)));
}

} // namespace tessel::api
