/// Measuring a painter beside the machine's own memory writes, in the same run and on as much memory.
#pragma once

#include <kestrel/importhost/FrameMemory.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <functional>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace benchsupport {

inline void WriteWithMemset(std::byte* memory, std::size_t byteCount)
{
    std::memset(memory, 0x5A, byteCount);
    benchmark::DoNotOptimize(memory);
    benchmark::ClobberMemory();
}

/// Stores that bypass the caches; memset where the processor has none.
inline void WriteWithStreamingStores(std::byte* memory, std::size_t byteCount)
{
#if defined(__SSE2__)
    const __m128i value = _mm_set1_epi8(0x5A);
    for (std::size_t at = 0; at + sizeof(value) <= byteCount; at += sizeof(value)) {
        _mm_stream_si128(reinterpret_cast<__m128i*>(memory + at), value);
    }
    _mm_sfence();
#else
    WriteWithMemset(memory, byteCount);
#endif
}

/// Streaming stores throw the memory out of the caches; it takes this many passes to settle there again.
inline constexpr int kWarmings = 3;

/// Runs `paint`, memset and streaming stores in turn, each to warm the caches and then once for the clock, and
/// reports medians: counters `relativeToMemset` and `relativeToStreaming` (1 is level, more is faster).
///
/// @param memory  What memset and streaming stores write to; `paint` may write to it or to memory of its own
///                as large.
inline void MeasureBesideMemory(benchmark::State& state, importhost::FrameMemory& memory, std::size_t byteCount,
                                const std::function<void()>& paint)
{
    using Clock = std::chrono::steady_clock;
    const std::array<std::function<void()>, 3> ways = {
        paint, [&] { WriteWithMemset(memory.Data(), byteCount); },
        [&] { WriteWithStreamingStores(memory.Data(), byteCount); }};
    std::array<std::vector<double>, 3> seconds;
    for ([[maybe_unused]] const auto& iteration : state) {
        for (std::size_t way = 0; way < ways.size(); ++way) {
            for (int warming = 0; warming < kWarmings; ++warming) {
                ways[way]();
            }
            const auto start = Clock::now();
            ways[way]();
            seconds[way].push_back(std::chrono::duration<double>(Clock::now() - start).count());
        }
        state.SetIterationTime(seconds[0].back());
    }
    const auto median = [](std::vector<double>& values) {
        const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
        std::nth_element(values.begin(), middle, values.end());
        return *middle;
    };
    const double painting = median(seconds[0]);
    const double memset = median(seconds[1]);
    state.counters["relativeToMemset"] = memset / painting;
    state.counters["relativeToStreaming"] = median(seconds[2]) / painting;
    state.counters["GBs"] = static_cast<double>(byteCount) / painting / 1e9;
    state.counters["memsetGBs"] = static_cast<double>(byteCount) / memset / 1e9;
}

/// Rounds of every measurement: enough for a median that a busy moment does not move.
inline constexpr int kRounds = 31;

} // namespace benchsupport
