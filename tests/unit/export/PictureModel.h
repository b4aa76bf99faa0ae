/// Frames and pictures as a test sees them: samples by the letters of a format's name, without the converter's
/// own tables.
#pragma once

#include <tessel/export/convert/FrameConverter.h>
#include <tessel/export/convert/Picture.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace tessel::exporting {

/// A plane of numbers.
struct Grid {
    int width = 0;
    int height = 0;
    std::vector<double> values;

    [[nodiscard]] double At(int x, int y) const
    {
        return values[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }
};

/// A paintable format by its name: "VUYP_4444_32f_709".
class FormatModel {
public:
    explicit FormatModel(std::string_view name) : mName(name), mOrder(name.substr(0, 4)) {}

    [[nodiscard]] bool IsFloat() const { return mName.find("32f") != std::string::npos; }
    [[nodiscard]] bool IsLinear() const { return mName.find("Linear") != std::string::npos; }
    [[nodiscard]] bool IsV210() const { return mOrder == "V210"; }
    [[nodiscard]] bool Is422() const { return mName.find("_422_") != std::string::npos; }
    [[nodiscard]] bool IsRgb() const { return mOrder.find('R') != std::string::npos; }
    [[nodiscard]] bool HasAlpha() const { return !Is422() && mOrder.find('X') == std::string::npos; }
    [[nodiscard]] int Matrix() const
    {
        return IsRgb() ? 0 : mName.find("709") != std::string::npos ? 709 : 601;
    }
    [[nodiscard]] int Bits() const { return IsV210() ? 10 : 8; }
    [[nodiscard]] std::size_t RowBytes(int width) const
    {
        const auto pixels = static_cast<std::size_t>(width);
        if (IsV210()) {
            return (pixels + 5) / 6 * 16;
        }
        return Is422() ? (pixels + 1) / 2 * 4 : pixels * (IsFloat() ? 16 : 4);
    }

    /// The sample that the row at `row` stores for pixel x (for chroma of 4:2:2: of pair x). The letter is one
    /// of R, G, B, Y, U, V, A.
    [[nodiscard]] double Sample(const std::byte* row, char letter, int x) const
    {
        if (IsV210()) {
            // The twelve samples of six pixels: U Y V Y, three times.
            const int inGroup = letter == 'Y' ? 2 * (x % 6) + 1 : 4 * (x % 3) + (letter == 'U' ? 0 : 2);
            const int group = letter == 'Y' ? x / 6 : x / 3;
            std::uint32_t word = 0;
            std::memcpy(&word, row + 16 * group + 4 * (inGroup / 3), 4);
            return word >> (10 * (inGroup % 3)) & 0x3FFU;
        }
        if (Is422()) {
            const std::size_t at = letter == 'Y' ? static_cast<std::size_t>(x / 2 * 4) + Luma(x % 2)
                                                 : static_cast<std::size_t>(x * 4) + mOrder.find(letter);
            return std::to_integer<int>(row[at]);
        }
        std::size_t place = mOrder.find(letter);
        if (place == std::string::npos) {
            place = mOrder.find('P'); // premultiplied: alpha stands where the P does
        }
        place += static_cast<std::size_t>(x) * 4;
        if (IsFloat()) {
            float value = 0.0F;
            std::memcpy(&value, row + place * 4, 4);
            return static_cast<double>(value);
        }
        return std::to_integer<int>(row[place]);
    }

private:
    /// Byte of the first or second luma sample of a pair.
    [[nodiscard]] std::size_t Luma(int which) const
    {
        return static_cast<std::size_t>(mOrder[0] == 'Y' ? which * 2 : which * 2 + 1);
    }

    std::string mName;
    std::string mOrder;
};

/// A frame full of random samples, with padding between rows and memory in either direction.
class RandomFrame {
public:
    RandomFrame(BR::PixelFormat format, const FormatModel& model, int width, int height, unsigned seed)
        : mRowBytes(model.RowBytes(width) + 20), mBytes(mRowBytes * static_cast<std::size_t>(height))
    {
        std::mt19937 random(seed);
        if (model.IsFloat()) {
            std::uniform_real_distribution<float> value(-0.2F, 1.2F);
            for (std::size_t at = 0; at + 4 <= mBytes.size(); at += 4) {
                const float sample = value(random);
                std::memcpy(mBytes.data() + at, &sample, 4);
            }
        } else {
            for (std::byte& byte : mBytes) {
                byte = static_cast<std::byte>(random());
            }
        }
        view.format = format;
        view.width = width;
        view.height = height;
        view.top = mBytes.data();
        view.rowBytes = static_cast<std::ptrdiff_t>(mRowBytes);
        if (seed % 2 == 1) {
            view.top += mRowBytes * static_cast<std::size_t>(height - 1);
            view.rowBytes = -view.rowBytes;
        }
    }

    [[nodiscard]] const std::byte* Row(int y) const { return view.top + y * view.rowBytes; }

    FrameView view;

private:
    std::size_t mRowBytes;
    std::vector<std::byte> mBytes;
};

/// A target layout as FFmpeg documents it: letters in memory order, or one plane per letter.
struct LayoutModel {
    PictureLayout layout;
    std::string_view name;
    std::string_view order; ///< "0" is an unused byte
    bool isPlanar;
    int bits;
    bool isBigEndian;
    int chromaShiftX;
    int chromaShiftY;

    [[nodiscard]] bool IsRgb() const { return order.find('R') != std::string_view::npos; }
    [[nodiscard]] bool HasAlpha() const { return order.find('A') != std::string_view::npos; }
};

inline constexpr LayoutModel kLayoutModels[] = {
    {PictureLayout::Bgra, "bgra", "BGRA", false, 8, false, 0, 0},
    {PictureLayout::Argb, "argb", "ARGB", false, 8, false, 0, 0},
    {PictureLayout::Bgr0, "bgr0", "BGR0", false, 8, false, 0, 0},
    {PictureLayout::Zrgb, "0rgb", "0RGB", false, 8, false, 0, 0},
    {PictureLayout::Rgba, "rgba", "RGBA", false, 8, false, 0, 0},
    {PictureLayout::Rgb24, "rgb24", "RGB", false, 8, false, 0, 0},
    {PictureLayout::Rgba64, "rgba64le", "RGBA", false, 16, false, 0, 0},
    {PictureLayout::Rgb48, "rgb48le", "RGB", false, 16, false, 0, 0},
    {PictureLayout::Rgba64be, "rgba64be", "RGBA", false, 16, true, 0, 0},
    {PictureLayout::Rgb48be, "rgb48be", "RGB", false, 16, true, 0, 0},
    {PictureLayout::Gbrp10, "gbrp10le", "GBR", true, 10, false, 0, 0},
    {PictureLayout::Gbrp16, "gbrp16le", "GBR", true, 16, false, 0, 0},
    {PictureLayout::Gbrap16, "gbrap16le", "GBRA", true, 16, false, 0, 0},
    {PictureLayout::Gbrpf32, "gbrpf32le", "GBR", true, 32, false, 0, 0},
    {PictureLayout::Gbrapf32, "gbrapf32le", "GBRA", true, 32, false, 0, 0},
    {PictureLayout::Yuv444p, "yuv444p", "YUV", true, 8, false, 0, 0},
    {PictureLayout::Yuva444p, "yuva444p", "YUVA", true, 8, false, 0, 0},
    {PictureLayout::Yuv444p10, "yuv444p10le", "YUV", true, 10, false, 0, 0},
    {PictureLayout::Yuva444p10, "yuva444p10le", "YUVA", true, 10, false, 0, 0},
    {PictureLayout::Yuv444p16, "yuv444p16le", "YUV", true, 16, false, 0, 0},
    {PictureLayout::Yuva444p16, "yuva444p16le", "YUVA", true, 16, false, 0, 0},
    {PictureLayout::Yuv422p, "yuv422p", "YUV", true, 8, false, 1, 0},
    {PictureLayout::Yuv422p10, "yuv422p10le", "YUV", true, 10, false, 1, 0},
    {PictureLayout::Yuv420p, "yuv420p", "YUV", true, 8, false, 1, 1},
    {PictureLayout::Yuv420p10, "yuv420p10le", "YUV", true, 10, false, 1, 1},
    {PictureLayout::Yuv411p, "yuv411p", "YUV", true, 8, false, 2, 0},
    {PictureLayout::Uyvy, "uyvy422", "UYVY", false, 8, false, 1, 0},
    {PictureLayout::Yuyv, "yuyv422", "YUYV", false, 8, false, 1, 0},
    {PictureLayout::V210, "v210", "V210YU", false, 10, false, 1, 0},
};

/// The sample of a picture for column x, row y of the letter's own plane or pair.
[[nodiscard]] inline double SampleOf(const Picture& picture, const LayoutModel& model, char letter, int x,
                                     int y)
{
    const auto row = [&](std::size_t plane) { return picture.planes[plane] + y * picture.rowBytes[plane]; };
    if (model.layout == PictureLayout::V210) {
        return FormatModel("V210_422_10u_601").Sample(row(0), letter, x);
    }
    if (model.layout == PictureLayout::Uyvy || model.layout == PictureLayout::Yuyv) {
        return FormatModel(model.layout == PictureLayout::Uyvy ? "UYVY_422_8u_601" : "YUYV_422_8u_601")
            .Sample(row(0), letter, x);
    }
    const std::size_t place = model.order.find(letter);
    const std::size_t bytes = model.bits == 32 ? 4 : model.bits > 8 ? 2 : 1;
    const std::byte* at = model.isPlanar
                              ? row(place) + static_cast<std::size_t>(x) * bytes
                              : row(0) + (static_cast<std::size_t>(x) * model.order.size() + place) * bytes;
    if (bytes == 4) {
        float value = 0.0F;
        std::memcpy(&value, at, 4);
        return static_cast<double>(value);
    }
    if (bytes == 2) {
        const int first = std::to_integer<int>(at[0]);
        const int second = std::to_integer<int>(at[1]);
        return model.isBigEndian ? first * 256 + second : second * 256 + first;
    }
    return std::to_integer<int>(at[0]);
}

} // namespace tessel::exporting
