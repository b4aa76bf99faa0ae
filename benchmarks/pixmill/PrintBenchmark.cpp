// Frames as the plug-in makes them: one colour and the number on it, in every format.
#include <kestrel/pixmill/Fill.h>
#include <kestrel/pixmill/PixelFormatCodes.h>
#include <kestrel/pixmill/PrintNumber.h>

#include <support/BesideMemory.h>
#include <support/EveryFormat.h>

#include <array>

namespace {

using benchsupport::Size;

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
    return benchsupport::RunInEveryFormat(argc, argv, MeasurePrint, [](const auto& add) { add("number"); });
}
