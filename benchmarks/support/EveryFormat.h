/// Benchmarks of painters in every paintable format.
#pragma once

#include "BesideMemory.h"

#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/pixmill/PixelFormatCodes.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

namespace benchsupport {

struct Size {
    std::uint32_t width, height;
};
inline constexpr Size kSizes[] = {{1920, 1080}, {3840, 2160}};

/// The main function of a program that measures `measure(state, code, size, arguments...)` beside memory
/// writes.
///
/// @param addAll  Called as addAll(add) for each format and size; calls add(suffix, arguments...) for each
///                benchmark, whose name is the format, the size and the suffix.
template <class Measure, class AddAll>
int RunInEveryFormat(int argc, char** argv, Measure* measure, const AddAll& addAll)
{
    benchmark::Initialize(&argc, argv);
    for (const BR::PixelFormatInfo& info : BR::AllPixelFormats()) {
        const std::uint32_t code = PM_QELPixelFormatToPMPixelFormat(info.format);
        if (!pixmill::IsPaintable(code)) {
            continue;
        }
        for (const Size& size : kSizes) {
            const std::string name = std::string(info.constant.substr(info.constant.find('_') + 1)) + "/" +
                                     std::to_string(size.width) + "x" + std::to_string(size.height) + "/";
            addAll([&](const char* suffix, auto... arguments) {
                benchmark::RegisterBenchmark((name + suffix).c_str(), measure, code, size, arguments...)
                    ->UseManualTime()
                    ->Unit(benchmark::kMicrosecond)
                    ->Iterations(kRounds);
            });
        }
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

} // namespace benchsupport
