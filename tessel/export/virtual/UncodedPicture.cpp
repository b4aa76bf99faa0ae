#include "UncodedPicture.h"

#include <tessel/export/ExportError.h>
#include <tessel/export/convert/V210Packing.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace tessel::exporting {
namespace {

/// Raw layouts that QuickTime's readers know, with their types.
struct RawType {
    PictureLayout layout;
    std::string_view type;
    int depth;
};
constexpr std::array<RawType, 7> kRawTypes{{{PictureLayout::Bgra, "BGRA", 32},
                                            {PictureLayout::Rgba64be, "b64a", 64},
                                            {PictureLayout::Uyvy, "2vuy", 16},
                                            {PictureLayout::Yuyv, "yuvs", 16},
                                            {PictureLayout::Yuv422p, "Y42B", 16},
                                            {PictureLayout::Yuv411p, "Y41B", 12},
                                            {PictureLayout::Yuv420p, "I420", 12}}};

const std::byte* RowOf(const Picture& picture, std::size_t plane, std::int32_t row) noexcept
{
    return picture.planes[plane] + row * picture.rowBytes[plane];
}

/// Planes one after the other, rows without gaps.
void WritePlanes(const Picture& picture, std::byte* bytes) noexcept
{
    const LayoutInfo& info = InfoOf(picture.layout);
    for (int plane = 0; plane < info.planes; ++plane) {
        const PlaneSize size = SizeOfPlane(info, plane, picture.width, picture.height);
        const auto rowBytes = static_cast<std::size_t>(BytesOfRow(info, plane, size.width));
        for (std::int32_t row = 0; row < size.height; ++row) {
            std::memcpy(bytes, RowOf(picture, static_cast<std::size_t>(plane), row), rowBytes);
            bytes += rowBytes;
        }
    }
}

/// R'G'B'A to A R'G'B'.
void PutAlphaFirst(std::span<std::byte> bytes) noexcept
{
    constexpr std::size_t kPixelBytes = 8;
    constexpr std::size_t kAlphaByte = 6;
    for (std::size_t pixel = 0; pixel + kPixelBytes <= bytes.size(); pixel += kPixelBytes) {
        const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(pixel);
        std::rotate(begin, begin + kAlphaByte, begin + kPixelBytes);
    }
}

/// Planes Y', Cb, Cr and perhaps A to Cb Y' Cr A (v408), or to Cr Y' Cb (v308).
void Write444(const Picture& picture, std::byte* bytes) noexcept
{
    const bool hasAlpha = InfoOf(picture.layout).HasAlpha();
    const std::array<std::size_t, 4> order =
        hasAlpha ? std::array<std::size_t, 4>{1, 0, 2, 3} : std::array<std::size_t, 4>{2, 0, 1, 0};
    const std::size_t count = hasAlpha ? 4 : 3;
    for (std::int32_t row = 0; row < picture.height; ++row) {
        for (std::size_t place = 0; place < count; ++place) {
            const std::byte* samples = RowOf(picture, order[place], row);
            for (std::int32_t column = 0; column < picture.width; ++column) {
                bytes[static_cast<std::size_t>(column) * count + place] = samples[column];
            }
        }
        bytes += static_cast<std::size_t>(picture.width) * count;
    }
}

} // namespace

UncodedPicture UncodedPictureOf(const VideoPlan& plan)
{
    const LayoutInfo& info = InfoOf(plan.conversion.target);
    const std::int64_t pixels = std::int64_t{plan.geometry.width} * plan.geometry.height;
    if (info.layout == PictureLayout::V210) {
        return {"v210", V210RowBytes(plan.geometry.width) * plan.geometry.height, 24, true};
    }
    if (plan.codec->name == "v408") {
        return info.HasAlpha() ? UncodedPicture{"v408", 4 * pixels, 32, true}
                               : UncodedPicture{"v308", 3 * pixels, 24, true};
    }
    const auto* raw = std::find_if(kRawTypes.begin(), kRawTypes.end(),
                                   [&](const RawType& type) { return type.layout == info.layout; });
    if (plan.codec->rule != LayoutRule::KeepRaw || raw == kRawTypes.end()) {
        throw ExportError(fmt::format("pictures without an encoder are raw, v210 or v408, not {} in {}",
                                      plan.codec->name, info.name));
    }
    UncodedPicture uncoded{raw->type, 0, raw->depth, info.planes == 1 && info.chromaShiftX == 1};
    for (int plane = 0; plane < info.planes; ++plane) {
        const PlaneSize size = SizeOfPlane(info, plane, plan.geometry.width, plan.geometry.height);
        uncoded.bytes += BytesOfRow(info, plane, size.width) * size.height;
    }
    return uncoded;
}

void WriteUncoded(const VideoPlan& plan, const Picture& picture, std::span<std::byte> bytes) noexcept
{
    if (picture.layout == PictureLayout::V210) {
        CopyV210Rows(picture, bytes.data());
    } else if (plan.codec->name == "v408") {
        Write444(picture, bytes.data());
    } else {
        WritePlanes(picture, bytes.data());
        if (picture.layout == PictureLayout::Rgba64be) {
            PutAlphaFirst(bytes);
        }
    }
}

} // namespace tessel::exporting
