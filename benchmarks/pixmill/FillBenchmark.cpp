// PM_FillWithColor in every format: a frame in one call, and row by row in changing colours.
#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/pixmill/Fill.h>
#include <kestrel/pixmill/PixelFormatCodes.h>

#include <support/BesideMemory.h>

#include <array>
#include <string>

namespace {

constexpr std::uint32_t kBGRAFloatCode = pixmill::kBGRAFloat;

struct Size {
    std::uint32_t width, height;
};
constexpr Size kSizes[] = {{1920, 1080}, {3840, 2160}};

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
    benchmark::Initialize(&argc, argv);
    for (const BR::PixelFormatInfo& info : BR::AllPixelFormats()) {
        const std::uint32_t code = PM_QELPixelFormatToPMPixelFormat(info.format);
        if (!pixmill::IsPaintable(code)) {
            continue;
        }
        for (const Size& size : kSizes) {
            for (const Painting painting : {Painting::Fields, Painting::Gradient}) {
                const std::string name = std::string(info.constant.substr(info.constant.find('_') + 1)) + "/" +
                                         std::to_string(size.width) + "x" + std::to_string(size.height) +
                                         (painting == Painting::Fields ? "/fields" : "/gradient");
                benchmark::RegisterBenchmark(name.c_str(), MeasureFill, code, size, painting)
                    ->UseManualTime()
                    ->Unit(benchmark::kMicrosecond)
                    ->Iterations(benchsupport::kRounds);
            }
        }
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
