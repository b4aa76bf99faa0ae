/// What a colour becomes in a paintable format, worked out apart from the code that paints: the standards'
/// decimal coefficients as integers, in arithmetic wide enough to be exact, by the format's name.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace testsupport {

/// Holds weights (23 bits) times colour (24) times alpha (24) with 40 bits to spare between components.
#if defined(__x86_64__)
using Wide = __float128;
#else
using Wide = long double;
static_assert(std::numeric_limits<long double>::digits >= 113);
#endif

struct ReferenceColor {
    float blue, green, red, alpha;
};

/// A format as its name describes it: "VUYP_4444_32f_709", "V210_422_10u_601".
class ReferenceFormat {
public:
    explicit ReferenceFormat(std::string_view name)
        : mOrder(name.substr(0, 4)), mIsFloat(name.find("_32f") != name.npos),
          mIs709(name.find("_709") != name.npos), mIsLinear(name.find("_Linear") != name.npos)
    {
    }

    [[nodiscard]] bool IsYCbCr() const { return mOrder.find('Y') != mOrder.npos || IsV210(); }
    [[nodiscard]] bool IsFloat() const { return mIsFloat; }
    [[nodiscard]] bool Is709() const { return mIs709; }
    [[nodiscard]] bool IsLinear() const { return mIsLinear; }
    [[nodiscard]] bool IsV210() const { return mOrder == "V210"; }
    [[nodiscard]] bool Is422() const { return mOrder == "UYVY" || mOrder == "YUYV"; }
    [[nodiscard]] bool IsPremultiplied() const { return mOrder.find('P') != mOrder.npos; }
    [[nodiscard]] bool HasAlpha() const { return mOrder.find('X') == mOrder.npos; }
    [[nodiscard]] bool IsPlainFloat() const
    {
        return mIsFloat && !IsYCbCr() && !IsPremultiplied() && !mIsLinear;
    }

    /// The integer that the format stores for the component named by a letter of R, G, B, Y, U, V, A.
    [[nodiscard]] std::uint32_t Code(char component, const ReferenceColor& color) const
    {
        const int scale = IsV210() ? 4 : 1; // 2^(n-8)
        const Sum value = Component(component, color);
        switch (component) {
        case 'Y':
            return Rounded(219 * scale * value.numerator, value.denominator, 16 * scale, scale,
                           255 * scale - 1);
        case 'U':
        case 'V':
            return Rounded(224 * scale * value.numerator, value.denominator, 128 * scale, scale,
                           255 * scale - 1);
        default:
            return Rounded(255 * value.numerator, value.denominator, 0, 0, 255);
        }
    }

    /// The float that the format stores.
    [[nodiscard]] float Float(char component, const ReferenceColor& color) const
    {
        if (IsPlainFloat()) {
            switch (component) {
            case 'R':
                return color.red;
            case 'G':
                return color.green;
            case 'B':
                return color.blue;
            default:
                return HasAlpha() ? color.alpha : 1.0F;
            }
        }
        const Sum value = Component(component, color);
        return Nearest(value.numerator / value.denominator);
    }

    /// The bytes of a row of one colour; samples of pixels beyond `width` are 0.
    [[nodiscard]] std::vector<std::byte> Row(std::uint32_t width, const ReferenceColor& color) const
    {
        if (IsV210()) {
            return V210Row(width, color);
        }
        std::vector<std::byte> bytes;
        if (Is422()) {
            std::array<std::byte, 4> pair{};
            for (std::size_t i = 0; i < 4; ++i) {
                pair[i] = static_cast<std::byte>(Code(mOrder[i], color));
            }
            for (std::uint32_t x = 0; x < width; x += 2) {
                Append(bytes, pair);
            }
            if (width % 2 != 0) {
                bytes[bytes.size() - 4 + mOrder.rfind('Y')] = std::byte{0};
            }
            return bytes;
        }
        std::vector<std::byte> pixel;
        for (const char letter : mOrder) {
            const char component = letter == 'X' || letter == 'P' ? 'A' : letter;
            if (mIsFloat) {
                std::array<std::byte, 4> sample{};
                const float value = Float(component, color);
                std::memcpy(sample.data(), &value, 4);
                Append(pixel, sample);
            } else {
                pixel.push_back(static_cast<std::byte>(Code(component, color)));
            }
        }
        for (std::uint32_t x = 0; x < width; ++x) {
            Append(bytes, pixel);
        }
        return bytes;
    }

private:
    struct Sum {
        Wide numerator, denominator;
    };

    static void Append(std::vector<std::byte>& bytes, std::span<const std::byte> more)
    {
        for (const std::byte byte : more) {
            bytes.push_back(byte);
        }
    }

    static Wide Finite(float value)
    {
        if (std::isnan(value)) {
            return 0;
        }
        return std::isinf(value) ? std::copysign(std::numeric_limits<float>::max(), value) : value;
    }

    [[nodiscard]] Wide Prepared(float value) const
    {
        if (!mIsLinear) {
            return Finite(value);
        }
        const auto v = static_cast<long double>(Finite(value));
        const long double alpha = 1.09929682680944L;
        const long double beta = 0.018053968510807L;
        const long double light = std::fabs(v) < 4.5L * beta
                                      ? std::fabs(v) / 4.5L
                                      : std::pow((std::fabs(v) + (alpha - 1)) / alpha, 1 / 0.45L);
        return std::copysign(light, v);
    }

    [[nodiscard]] Sum Component(char component, const ReferenceColor& color) const
    {
        const Wide alpha = HasAlpha() ? Finite(color.alpha) : Wide{1};
        const Wide factor = IsPremultiplied() ? alpha : Wide{1};
        const Wide red = Prepared(color.red);
        const Wide green = Prepared(color.green);
        const Wide blue = Prepared(color.blue);
        const int one = mIs709 ? 10000 : 1000;
        const int kr = mIs709 ? 2126 : 299;
        const int kb = mIs709 ? 722 : 114;
        const Wide luma = kr * red + (one - kr - kb) * green + kb * blue;
        switch (component) {
        case 'R':
            return {red * factor, 1};
        case 'G':
            return {green * factor, 1};
        case 'B':
            return {blue * factor, 1};
        case 'A':
            return {alpha, 1};
        case 'Y':
            return {luma * factor, Wide(one)};
        case 'U':
            return {(one * blue - luma) * factor, Wide(2 * (one - kb))};
        default:
            return {(one * red - luma) * factor, Wide(2 * (one - kr))};
        }
    }

    /// floor(numerator / denominator + offset + 1/2) in lowest..highest, by comparing products: no division.
    static std::uint32_t Rounded(Wide numerator, Wide denominator, int offset, int lowest, int highest)
    {
        while (lowest < highest) {
            const int code = (lowest + highest + 1) / 2;
            if (2 * numerator >= denominator * (2 * (code - offset) - 1)) {
                lowest = code;
            } else {
                highest = code - 1;
            }
        }
        return static_cast<std::uint32_t>(lowest);
    }

    static float Nearest(Wide value)
    {
        constexpr float kLargest = std::numeric_limits<float>::max();
        if (value > kLargest) {
            return kLargest;
        }
        return value < -kLargest ? -kLargest : static_cast<float>(value);
    }

    /// Sample by sample: number s of a group is bits 10·(s mod 3) of word s / 3.
    [[nodiscard]] std::vector<std::byte> V210Row(std::uint32_t width, const ReferenceColor& color) const
    {
        constexpr std::string_view kSamples = "UYVYUYVYUYVY";
        const std::array<std::uint32_t, 3> codes = {Code('U', color), Code('Y', color), Code('V', color)};
        std::vector<std::byte> bytes((std::size_t{width} + 5) / 6 * 16);
        for (std::uint32_t x = 0; x < width; ++x) {
            const std::uint32_t first = x % 2 == 0 ? x % 6 * 2 : x % 6 * 2 + 1;
            const std::uint32_t count = x % 2 == 0 ? 3 : 1;
            for (std::uint32_t s = first; s < first + count; ++s) {
                const std::uint32_t code = codes[std::string_view("UYV").find(kSamples[s])];
                for (std::uint32_t bit = 0; bit < 10; ++bit) {
                    const std::uint32_t position = s / 3 * 32 + s % 3 * 10 + bit;
                    if ((code >> bit & 1U) != 0) {
                        bytes[std::size_t{x / 6} * 16 + position / 8] |= std::byte{1} << (position % 8);
                    }
                }
            }
        }
        return bytes;
    }

    std::string mOrder;
    bool mIsFloat;
    bool mIs709;
    bool mIsLinear;
};

} // namespace testsupport
