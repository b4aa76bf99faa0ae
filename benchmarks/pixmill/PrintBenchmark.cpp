// Frames as the plug-in makes them: one colour and the number on it, in every format.
#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/pixmill/Fill.h>
#include <kestrel/pixmill/PixelFormatCodes.h>
#include <kestrel/pixmill/PrintNumber.h>

#include <support/BesideMemory.h>

#include <array>
#include <string>

namespace {

struct Size {
    std::uint32_t width, height;
};
constexpr Size kSizes[] = {{1920, 1080}, {3840, 2160}};

void MeasurePrint(benchmark::State& state, std::uint32_t code, const Size& size)
{
    constexpr std::array<float, 4> kColor = {.25F, .5F, .75F, 1};
    constexpr std::array<float, 2> kPosition = {.05F, .05F};
    const auto rowBytes = static_cast<std::int32_t>(pixmill::BytesPerRow(code, size.width));
    const std::size_t byteCount = static_cast<std::size_t>(rowBytes) * size.height;
    importhost::FrameMemory memory(byteCount);
    std::int32_t number = 0;
    benchsupport::MeasureBesideMemory(state, memory, byteCount, [&] {
        PM_FillWithColor(memory.Data(), rowBytes, size.width, size.height, code, kColor.data(),
                         pixmill::kBGRAFloat);
        PM_PrintNum(memory.Data(), rowBytes, code, size.width, size.height, number++, .12F, kPosition.data(),
                    /*opaque=*/true);
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
            const std::string name = std::string(info.constant.substr(info.constant.find('_') + 1)) + "/" +
                                     std::to_string(size.width) + "x" + std::to_string(size.height) + "/number";
            benchmark::RegisterBenchmark(name.c_str(), MeasurePrint, code, size)
                ->UseManualTime()
                ->Unit(benchmark::kMicrosecond)
                ->Iterations(benchsupport::kRounds);
        }
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
