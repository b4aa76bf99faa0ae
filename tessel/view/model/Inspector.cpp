#include "Inspector.h"

#include <tessel/export/convert/SourceFrame.h>

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace tessel::view {
namespace {

using exporting::ColorFamily;
using exporting::FrameView;
using exporting::SampleType;
using exporting::SourceInfo;
using exporting::Storage;

const char* NameOf(const exporting::PixelKind& kind, int component) noexcept
{
    constexpr std::array<const char*, 4> kSignal{"R'", "G'", "B'", "A"};
    constexpr std::array<const char*, 4> kLinear{"R", "G", "B", "A"};
    constexpr std::array<const char*, 4> kYCbCr{"Y'", "Cb", "Cr", "A"};
    const auto index = static_cast<std::size_t>(component);
    return kind.family == ColorFamily::YCbCr ? kYCbCr[index] : kind.linear ? kLinear[index] : kSignal[index];
}

double ValueOf(const SourceInfo& source, int component, std::int64_t code) noexcept
{
    const double unit = std::exp2(source.bits - 8);
    const auto plain = static_cast<double>(code);
    if (source.kind.family == ColorFamily::Rgb || component == 3) {
        return plain / 255.0;
    }
    return component == 0 ? (plain - 16 * unit) / (219 * unit) : (plain - 128 * unit) / (224 * unit);
}

/// Bytes and pixels that belong together.
struct Group {
    int bytes;
    int pixels;
};

Group GroupOf(Storage storage) noexcept
{
    switch (storage) {
    case Storage::V210:
        return {16, 6};
    case Storage::InterleavedF:
        return {16, 1};
    case Storage::Pairs422:
        return {4, 2};
    case Storage::Interleaved8:
    case Storage::Planar420:
    case Storage::Dv:
        break;
    }
    return {4, 1};
}

/// Where the parts of pixel `pixel` of a v210 group are: samples in the order Cb Y Cr Y Cb Y ..., three to a
/// word.
int V210Sample(int component, int pixel) noexcept
{
    const int pair = pixel / 2;
    return component == 0 ? 2 * pixel + 1 : 4 * pair + (component == 1 ? 0 : 2);
}

} // namespace

PixelReading ReadPixel(const FrameView& frame, int x, int y)
{
    const SourceInfo source = exporting::SourceInfoOf(frame.format);
    const Group group = GroupOf(source.kind.storage);
    PixelReading reading;
    reading.x = x;
    reading.y = y;
    reading.isBottomUp = frame.rowBytes < 0;
    reading.groupPixels = group.pixels;
    const std::ptrdiff_t rowsBefore = reading.isBottomUp ? frame.height - 1 - y : y;
    const std::ptrdiff_t rowBytes = std::abs(frame.rowBytes);
    reading.offset = static_cast<std::size_t>(rowsBefore * rowBytes + x / group.pixels * group.bytes);
    const std::byte* const first = frame.top + y * frame.rowBytes + x / group.pixels * group.bytes;
    for (int i = 0; i < group.bytes; ++i) {
        reading.bytes.push_back(std::to_integer<std::uint8_t>(first[i]));
    }
    const int inGroup = x % group.pixels;
    for (int component = 0; component < (source.kind.HasAlpha() ? 4 : 3); ++component) {
        ComponentReading part;
        part.name = NameOf(source.kind, component);
        if (source.kind.storage == Storage::V210) {
            const int sample = V210Sample(component, inGroup);
            std::uint32_t word = 0;
            std::memcpy(&word, first + sample / 3 * 4, sizeof word);
            part.bitOffset = sample % 3 * 10;
            part.code = (word >> part.bitOffset) & 0x3FFU;
            part.offset = reading.offset + static_cast<std::size_t>(sample / 3 * 4);
        } else {
            const exporting::ComponentPlace place = source.components[static_cast<std::size_t>(component)];
            // In a pair, each pixel has a Y' of its own.
            const int within = place.offset + (component == 0 && group.pixels == 2 ? inGroup * place.step : 0);
            part.offset = reading.offset + static_cast<std::size_t>(within);
            if (source.type == SampleType::F32) {
                float value = 0;
                std::memcpy(&value, first + within, sizeof value);
                part.isFloat = true;
                part.value = static_cast<double>(value);
            } else {
                part.code = std::to_integer<std::int64_t>(first[within]);
            }
        }
        if (!part.isFloat) {
            part.value = ValueOf(source, component, part.code);
        }
        reading.components.push_back(std::move(part));
    }
    return reading;
}

std::string TextOf(const PixelReading& pixel)
{
    std::string text = fmt::format("{}, {}  ", pixel.x, pixel.y);
    for (const ComponentReading& part : pixel.components) {
        text += part.isFloat ? fmt::format(" {} {:.6g} ", part.name, part.value)
                             : fmt::format(" {} {} ({:.4f}) ", part.name, part.code, part.value);
    }
    text += fmt::format("  byte {}:", pixel.offset);
    for (const std::uint8_t byte : pixel.bytes) {
        text += fmt::format(" {:02x}", byte);
    }
    if (pixel.groupPixels > 1) {
        text += fmt::format(" ({} pixels)", pixel.groupPixels);
    }
    return text + (pixel.isBottomUp ? ", bottom row first" : "");
}

} // namespace tessel::view
