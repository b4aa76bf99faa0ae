#include "Picture.h"

#include "AlignedBuffer.h"
#include "BufferPool.h"

#include <cstring>

namespace tessel::exporting {
namespace {

using enum ColorFamily;
using enum SampleType;
using Places = std::array<ComponentPlace, 4>;

constexpr ComponentPlace kNone{};

/// Four interleaved components; the letters' byte positions are R, G, B, A.
constexpr Places Interleaved(std::uint8_t r, std::uint8_t g, std::uint8_t b, std::uint8_t a,
                             std::uint8_t sampleBytes)
{
    const auto place = [&](std::uint8_t index) {
        return ComponentPlace{0, static_cast<std::uint8_t>(index * sampleBytes),
                              static_cast<std::uint8_t>(4 * sampleBytes)};
    };
    return {place(r), place(g), place(b), place(a)};
}

constexpr Places WithoutAlpha(Places places)
{
    places[3] = kNone;
    return places;
}

constexpr Places Rgb3(std::uint8_t sampleBytes)
{
    const auto step = static_cast<std::uint8_t>(3 * sampleBytes);
    return {ComponentPlace{0, 0, step}, ComponentPlace{0, sampleBytes, step},
            ComponentPlace{0, static_cast<std::uint8_t>(2 * sampleBytes), step}, kNone};
}

/// One component a plane; the arguments say in which plane R, G, B or Y', Cb, Cr lie.
constexpr Places Planar(std::int8_t first, std::int8_t second, std::int8_t third, bool alpha,
                        std::uint8_t sampleBytes)
{
    return {ComponentPlace{first, 0, sampleBytes}, ComponentPlace{second, 0, sampleBytes},
            ComponentPlace{third, 0, sampleBytes}, alpha ? ComponentPlace{3, 0, sampleBytes} : kNone};
}

constexpr Places kYuv8 = Planar(0, 1, 2, false, 1);
constexpr Places kYuva8 = Planar(0, 1, 2, true, 1);
constexpr Places kYuv16 = Planar(0, 1, 2, false, 2);
constexpr Places kYuva16 = Planar(0, 1, 2, true, 2);

constexpr std::array<LayoutInfo, 29> kLayouts{{
    {PictureLayout::Bgra, "bgra", Rgb, U8, 8, 1, 0, 0, Interleaved(2, 1, 0, 3, 1), kNone},
    {PictureLayout::Argb, "argb", Rgb, U8, 8, 1, 0, 0, Interleaved(1, 2, 3, 0, 1), kNone},
    {PictureLayout::Bgr0, "bgr0", Rgb, U8, 8, 1, 0, 0, WithoutAlpha(Interleaved(2, 1, 0, 3, 1)), {0, 3, 4}},
    {PictureLayout::Zrgb, "0rgb", Rgb, U8, 8, 1, 0, 0, WithoutAlpha(Interleaved(1, 2, 3, 0, 1)), {0, 0, 4}},
    {PictureLayout::Rgba, "rgba", Rgb, U8, 8, 1, 0, 0, Interleaved(0, 1, 2, 3, 1), kNone},
    {PictureLayout::Rgb24, "rgb24", Rgb, U8, 8, 1, 0, 0, Rgb3(1), kNone},
    {PictureLayout::Rgba64, "rgba64le", Rgb, U16, 16, 1, 0, 0, Interleaved(0, 1, 2, 3, 2), kNone},
    {PictureLayout::Rgb48, "rgb48le", Rgb, U16, 16, 1, 0, 0, Rgb3(2), kNone},
    {PictureLayout::Rgba64be, "rgba64be", Rgb, U16be, 16, 1, 0, 0, Interleaved(0, 1, 2, 3, 2), kNone},
    {PictureLayout::Rgb48be, "rgb48be", Rgb, U16be, 16, 1, 0, 0, Rgb3(2), kNone},
    {PictureLayout::Gbrp10, "gbrp10le", Rgb, U16, 10, 3, 0, 0, Planar(2, 0, 1, false, 2), kNone},
    {PictureLayout::Gbrp16, "gbrp16le", Rgb, U16, 16, 3, 0, 0, Planar(2, 0, 1, false, 2), kNone},
    {PictureLayout::Gbrap16, "gbrap16le", Rgb, U16, 16, 4, 0, 0, Planar(2, 0, 1, true, 2), kNone},
    {PictureLayout::Gbrpf32, "gbrpf32le", Rgb, F32, 32, 3, 0, 0, Planar(2, 0, 1, false, 4), kNone},
    {PictureLayout::Gbrapf32, "gbrapf32le", Rgb, F32, 32, 4, 0, 0, Planar(2, 0, 1, true, 4), kNone},
    {PictureLayout::Yuv444p, "yuv444p", YCbCr, U8, 8, 3, 0, 0, kYuv8, kNone},
    {PictureLayout::Yuva444p, "yuva444p", YCbCr, U8, 8, 4, 0, 0, kYuva8, kNone},
    {PictureLayout::Yuv444p10, "yuv444p10le", YCbCr, U16, 10, 3, 0, 0, kYuv16, kNone},
    {PictureLayout::Yuva444p10, "yuva444p10le", YCbCr, U16, 10, 4, 0, 0, kYuva16, kNone},
    {PictureLayout::Yuv444p16, "yuv444p16le", YCbCr, U16, 16, 3, 0, 0, kYuv16, kNone},
    {PictureLayout::Yuva444p16, "yuva444p16le", YCbCr, U16, 16, 4, 0, 0, kYuva16, kNone},
    {PictureLayout::Yuv422p, "yuv422p", YCbCr, U8, 8, 3, 1, 0, kYuv8, kNone},
    {PictureLayout::Yuv422p10, "yuv422p10le", YCbCr, U16, 10, 3, 1, 0, kYuv16, kNone},
    {PictureLayout::Yuv420p, "yuv420p", YCbCr, U8, 8, 3, 1, 1, kYuv8, kNone},
    {PictureLayout::Yuv420p10, "yuv420p10le", YCbCr, U16, 10, 3, 1, 1, kYuv16, kNone},
    {PictureLayout::Yuv411p, "yuv411p", YCbCr, U8, 8, 3, 2, 0, kYuv8, kNone},
    {PictureLayout::Uyvy, "uyvy422", YCbCr, U8, 8, 1, 1, 0, {{{0, 1, 2}, {0, 0, 4}, {0, 2, 4}, kNone}}, kNone},
    {PictureLayout::Yuyv, "yuyv422", YCbCr, U8, 8, 1, 1, 0, {{{0, 0, 2}, {0, 1, 4}, {0, 3, 4}, kNone}}, kNone},
    {PictureLayout::V210, "v210", YCbCr, U16, 10, 1, 1, 0, {{kNone, kNone, kNone, kNone}}, kNone},
}};

constexpr bool TableFollowsTheEnumeration()
{
    for (std::size_t i = 0; i < kLayouts.size(); ++i) {
        if (static_cast<std::size_t>(kLayouts[i].layout) != i) {
            return false;
        }
    }
    return true;
}
static_assert(TableFollowsTheEnumeration());

constexpr std::int32_t ShiftUp(std::int32_t size, int shift) noexcept
{
    return (size + (1 << shift) - 1) >> shift;
}

} // namespace

const LayoutInfo& InfoOf(PictureLayout layout) noexcept
{
    return kLayouts[static_cast<std::size_t>(layout)];
}

PlaneSize SizeOfPlane(const LayoutInfo& info, int plane, std::int32_t width, std::int32_t height) noexcept
{
    const bool isChroma = info.planes > 1 && info.family == ColorFamily::YCbCr && (plane == 1 || plane == 2);
    if (!isChroma) {
        return {width, height};
    }
    return {ShiftUp(width, info.chromaShiftX), ShiftUp(height, info.chromaShiftY)};
}

std::int64_t BytesOfRow(const LayoutInfo& info, int plane, std::int32_t planeWidth) noexcept
{
    if (info.layout == PictureLayout::V210) {
        return V210RowBytes(planeWidth);
    }
    if (info.layout == PictureLayout::Uyvy || info.layout == PictureLayout::Yuyv) {
        return 4 * ((static_cast<std::int64_t>(planeWidth) + 1) / 2);
    }
    for (const ComponentPlace& place : info.components) {
        if (place.plane == plane) {
            return static_cast<std::int64_t>(planeWidth) * place.step;
        }
    }
    return 0;
}

namespace {

/// @param allocate  gives a shared `AlignedBuffer` of so many bytes
template <class Allocate>
Picture PictureIn(PictureLayout layout, std::int32_t width, std::int32_t height, const Allocate& allocate)
{
    constexpr std::int64_t kRowAlignment = 64;
    const LayoutInfo& info = InfoOf(layout);
    Picture picture;
    picture.layout = layout;
    picture.width = width;
    picture.height = height;

    std::array<std::int64_t, 4> starts{};
    std::int64_t total = 0;
    for (int plane = 0; plane < info.planes; ++plane) {
        const PlaneSize size = SizeOfPlane(info, plane, width, height);
        const std::int64_t row =
            (BytesOfRow(info, plane, size.width) + kRowAlignment - 1) / kRowAlignment * kRowAlignment;
        const auto index = static_cast<std::size_t>(plane);
        picture.rowBytes[index] = static_cast<std::ptrdiff_t>(row);
        starts[index] = total;
        total += row * size.height;
    }
    std::shared_ptr<AlignedBuffer> buffer = allocate(static_cast<std::size_t>(total));
    for (std::size_t plane = 0; plane < info.planes; ++plane) {
        picture.planes[plane] = buffer->Bytes() + starts[plane];
    }
    picture.owner = std::move(buffer);
    return picture;
}

} // namespace

Picture AllocatePicture(PictureLayout layout, std::int32_t width, std::int32_t height)
{
    return PictureIn(layout, width, height,
                     [](std::size_t size) { return std::make_shared<AlignedBuffer>(size); });
}

Picture AllocatePicture(PictureLayout layout, std::int32_t width, std::int32_t height, BufferPool& pool)
{
    return PictureIn(layout, width, height, [&pool](std::size_t size) { return pool.Take(size); });
}

bool IsSamePicture(const Picture& left, const Picture& right) noexcept
{
    if (left.layout != right.layout || left.width != right.width || left.height != right.height) {
        return false;
    }
    const LayoutInfo& info = InfoOf(left.layout);
    for (int plane = 0; plane < info.planes; ++plane) {
        const auto index = static_cast<std::size_t>(plane);
        if (left.planes[index] == right.planes[index] && left.rowBytes[index] == right.rowBytes[index]) {
            continue;
        }
        const PlaneSize size = SizeOfPlane(info, plane, left.width, left.height);
        const auto bytes = static_cast<std::size_t>(BytesOfRow(info, plane, size.width));
        for (std::int32_t y = 0; y < size.height; ++y) {
            if (std::memcmp(left.planes[index] + y * left.rowBytes[index],
                            right.planes[index] + y * right.rowBytes[index], bytes) != 0) {
                return false;
            }
        }
    }
    return true;
}

} // namespace tessel::exporting
