#include "Pictures.h"

#include <kestrel/pixmill/PixelFormatCodes.h>

#include <support/Process.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

namespace golden {

namespace {

using Components = std::array<double, 3>;

std::uint32_t V210Sample(const std::byte* row, std::size_t index)
{
    std::uint32_t word = 0;
    std::memcpy(&word, row + index / 3 * 4, 4);
    return word >> (10 * (index % 3)) & 1023U;
}

/// Y' 0..1, Cb and Cr -0.5..0.5.
Components YCbCrAt(const std::byte* row, std::uint32_t code, std::size_t x)
{
    const auto byteAt = [&](std::size_t at) { return std::to_integer<int>(row[at]); };
    if ((code & pixmill::kBitV210) != 0) {
        const std::size_t pair = x / 2 * 4; // samples of a pair: Cb Y Cr Y
        return {(V210Sample(row, x * 2 + 1) - 64.0) / 876, (V210Sample(row, pair) - 512.0) / 896,
                (V210Sample(row, pair + 2) - 512.0) / 896};
    }
    if ((code & pixmill::kBit422) != 0) {
        const std::size_t luma = (code & pixmill::kBitSwapped) != 0 ? 0 : 1;
        const std::size_t chroma = x / 2 * 4 + 1 - luma;
        return {(byteAt(x * 2 + luma) - 16) / 219.0, (byteAt(chroma) - 128) / 224.0,
                (byteAt(chroma + 2) - 128) / 224.0};
    }
    if ((code & pixmill::kBitFloat) != 0) {
        std::array<float, 3> vuy{};
        std::memcpy(vuy.data(), row + x * 16, sizeof vuy);
        return {vuy[2], vuy[1], vuy[0]};
    }
    return {(byteAt(x * 4 + 2) - 16) / 219.0, (byteAt(x * 4 + 1) - 128) / 224.0, (byteAt(x * 4) - 128) / 224.0};
}

Components RGBAt(const std::byte* row, std::uint32_t code, std::size_t x)
{
    if ((code & pixmill::kBitYCbCr) != 0) {
        const double kr = (code & pixmill::kBit709) != 0 ? 0.2126 : 0.299;
        const double kb = (code & pixmill::kBit709) != 0 ? 0.0722 : 0.114;
        const auto [y, cb, cr] = YCbCrAt(row, code, x);
        const double red = y + 2 * (1 - kr) * cr, blue = y + 2 * (1 - kb) * cb;
        return {red, (y - kr * red - kb * blue) / (1 - kr - kb), blue};
    }
    const bool alphaFirst = (code & pixmill::kBitSwapped) != 0;
    const std::array<std::size_t, 3> order =
        alphaFirst ? std::array<std::size_t, 3>{1, 2, 3} : std::array<std::size_t, 3>{2, 1, 0};
    Components rgb{};
    for (std::size_t i = 0; i < 3; ++i) {
        if ((code & pixmill::kBitFloat) != 0) {
            float value = 0;
            std::memcpy(&value, row + x * 16 + order[i] * 4, 4);
            rgb[i] = value;
        } else {
            rgb[i] = std::to_integer<int>(row[x * 4 + order[i]]) / 255.0;
        }
    }
    return rgb;
}

} // namespace

Picture PictureOf(const importhost::Frame& frame)
{
    const std::uint32_t code = PM_QELPixelFormatToPMPixelFormat(frame.Format());
    Picture picture{.width = frame.Width(), .height = frame.Height(), .rgb = {}};
    for (std::int32_t y = 0; y < picture.height; ++y) {
        for (std::int32_t x = 0; x < picture.width; ++x) {
            for (const double value : RGBAt(frame.Row(y), code, static_cast<std::size_t>(x))) {
                const double clamped = value > 0 ? std::min(value, 1.0) : 0; // NaN shows as black
                picture.rgb.push_back(static_cast<std::uint8_t>(clamped * 255 + 0.5));
            }
        }
    }
    return picture;
}

Picture Difference(const Picture& a, const Picture& b)
{
    Picture difference = a;
    for (std::size_t i = 0; i < a.rgb.size(); ++i) {
        difference.rgb[i] = static_cast<std::uint8_t>(std::min(255, 8 * std::abs(a.rgb[i] - b.rgb[i])));
    }
    return difference;
}

bool WritePng(const std::filesystem::path& file, const Picture& picture)
{
    const std::string raw = file.string() + ".raw";
    std::ofstream(raw, std::ios::binary)
        .write(reinterpret_cast<const char*>(picture.rgb.data()),
               static_cast<std::streamsize>(picture.rgb.size()));
    const std::string command =
        "ffmpeg -nostdin -v error -y -f rawvideo -pix_fmt rgb24 -s " + std::to_string(picture.width) + "x" +
        std::to_string(picture.height) + " -i " + testsupport::Quoted(raw) +
        " -frames:v 1 -update 1 -pred mixed -compression_level 9 " + testsupport::Quoted(file.string());
    const bool written = testsupport::RunCommand(command).succeeded;
    std::filesystem::remove(raw);
    return written;
}

std::optional<Picture> ReadPng(const std::filesystem::path& file, std::int32_t width, std::int32_t height)
{
    const auto read = testsupport::RunCommand(
        "ffmpeg -nostdin -v error -i " + testsupport::Quoted(file.string()) + " -f rawvideo -pix_fmt rgb24 -");
    Picture picture{.width = width, .height = height, .rgb = {read.output.begin(), read.output.end()}};
    const std::size_t expected = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3;
    if (!read.succeeded || picture.rgb.size() != expected) {
        return std::nullopt;
    }
    return picture;
}

} // namespace golden
