/// A picture as encoders take it.
#pragma once

#include "PixelKind.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace tessel::exporting {

class BufferPool;

/// Sample layouts that encoders take. Names follow FFmpeg's: 16-bit samples are little-endian unless the
/// name ends in `be`.
enum class PictureLayout : std::uint8_t {
    Bgra,
    Argb,
    Bgr0,
    Zrgb,
    Rgba,
    Rgb24,
    Rgba64,
    Rgb48,
    Rgba64be,
    Rgb48be,
    Gbrp10,
    Gbrp16,
    Gbrap16,
    Gbrpf32,
    Gbrapf32,
    Yuv444p,
    Yuva444p,
    Yuv444p10,
    Yuva444p10,
    Yuv444p16,
    Yuva444p16,
    Yuv422p,
    Yuv422p10,
    Yuv420p,
    Yuv420p10,
    Yuv411p,
    Uyvy,
    Yuyv,
    V210,
};

/// Where one component of a layout lies. Units of `offset` and `step` are bytes.
struct ComponentPlace {
    std::int8_t plane = -1; ///< -1: the layout has no such component
    std::uint8_t offset = 0;
    std::uint8_t step = 0;
};

enum class SampleType : std::uint8_t { U8, U16, U16be, F32 };

struct LayoutInfo {
    PictureLayout layout;
    std::string_view name; ///< FFmpeg's; v210 is a codec there
    ColorFamily family;
    SampleType type;
    std::uint8_t bits;         ///< significant bits of an integer sample
    std::uint8_t planes;       ///< memory planes
    std::uint8_t chromaShiftX; ///< log2 of horizontal chroma subsampling
    std::uint8_t chromaShiftY; ///< log2 of vertical chroma subsampling
    /// R, G, B, A or Y', Cb, Cr, A; all empty for v210, which has no addressable samples.
    std::array<ComponentPlace, 4> components;
    ComponentPlace filler; ///< the byte without meaning, in layouts that have one

    [[nodiscard]] bool HasAlpha() const noexcept { return components[3].plane >= 0; }
};

[[nodiscard]] const LayoutInfo& InfoOf(PictureLayout layout) noexcept;

/// Planes of pixels, top row first, and the owner of their memory. Copies share the pixels.
struct Picture {
    PictureLayout layout = PictureLayout::Bgra;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::array<std::byte*, 4> planes{};
    std::array<std::ptrdiff_t, 4> rowBytes{}; ///< negative where memory runs upwards
    std::shared_ptr<const void> owner;
};

/// Pixels of a plane: chroma planes of subsampled layouts are smaller, rounded up.
struct PlaneSize {
    std::int32_t width;
    std::int32_t height;
};
[[nodiscard]] PlaneSize SizeOfPlane(const LayoutInfo& info, int plane, std::int32_t width,
                                    std::int32_t height) noexcept;

/// Bytes of a plane's row: whole groups, and for v210 as files have them.
[[nodiscard]] std::int64_t BytesOfRow(const LayoutInfo& info, int plane, std::int32_t planeWidth) noexcept;

/// A picture with memory of its own: rows start on multiples of 64 bytes (v210: 128, as files have them),
/// contents undefined.
[[nodiscard]] Picture AllocatePicture(PictureLayout layout, std::int32_t width, std::int32_t height);

/// The same in memory of a pool, to which it returns when the picture's last copy is gone.
[[nodiscard]] Picture AllocatePicture(PictureLayout layout, std::int32_t width, std::int32_t height,
                                      BufferPool& pool);

/// Whether two pictures have the same layout, size and samples. Fast for pictures that share their memory, and
/// for those that differ near the top.
[[nodiscard]] bool IsSamePicture(const Picture& left, const Picture& right) noexcept;

/// Bytes of a v210 row in a file: whole groups of 48 pixels in 128 bytes.
[[nodiscard]] constexpr std::int64_t V210RowBytes(std::int32_t width) noexcept
{
    return (static_cast<std::int64_t>(width) + 47) / 48 * 128;
}

} // namespace tessel::exporting
