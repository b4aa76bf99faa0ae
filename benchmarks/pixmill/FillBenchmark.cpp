// PM_FillWithColor in every format: a frame in one call, and row by row in changing colours.
#include <kestrel/pixmill/Fill.h>
#include <kestrel/pixmill/PixelFormatCodes.h>

#include <support/BesideMemory.h>
#include <support/EveryFormat.h>

#include <array>

namespace {

constexpr std::uint32_t kBGRAFloatCode = pixmill::kBGRAFloat;

using benchsupport::Size;

enum class Painting { Fields, Gradient };

void PaintFields(std::byte* pixels, std::int32_t rowBytes, const Size& size, std::uint32_t code)
{
    constexpr std::array<float, 4> kUpper = {.25F, .5F, .75F, 1};
    constexpr std::array<float, 4> kLower = {.7F, .2F, .1F, 1};
    for (std::int32_t field = 0; field < 2; ++field) {
        PM_FillWithColor(pixels + static_cast<std::ptrdiff_t>(field) * rowBytes, 2 * rowBytes, size.width,
                         size.height / 2, code, field == 0 ? kUpper.data() : kLower.data(), kBGRAFloatCode);
    }
}

void PaintGradient(std::byte* pixels, std::int32_t rowBytes, const Size& size, std::uint32_t code)
{
    for (std::uint32_t row = 0; row < size.height; ++row) {
        const float s = static_cast<float>(row) / static_cast<float>(size.height);
        const std::array<float, 4> color = {.1F + .3F * s, .5F - .2F * s, s, 1};
        PM_FillWithColor(pixels + static_cast<std::ptrdiff_t>(row) * rowBytes, rowBytes, size.width, 1, code,
                         color.data(), kBGRAFloatCode);
    }
}

void MeasureFill(benchmark::State& state, std::uint32_t code, const Size& size, Painting painting)
{
    const auto rowBytes = static_cast<std::int32_t>(pixmill::BytesPerRow(code, size.width));
    const std::size_t byteCount = static_cast<std::size_t>(rowBytes) * size.height;
    importhost::FrameMemory memory(byteCount);
    benchsupport::MeasureBesideMemory(state, memory, byteCount, [&] {
        const auto paint = painting == Painting::Fields ? PaintFields : PaintGradient;
        paint(memory.Data(), rowBytes, size, code);
    });
}

} // namespace

int main(int argc, char** argv)
{
    return benchsupport::RunInEveryFormat(argc, argv, MeasureFill, [](const auto& add) {
        add("fields", Painting::Fields);
        add("gradient", Painting::Gradient);
    });
}
