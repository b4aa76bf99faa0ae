#include "MemorySpeed.h"

#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tessel::cli {

void WriteWithMemset(std::span<std::byte> memory) noexcept
{
    // Called through a pointer that the compiler cannot see through, or it would drop writes that are
    // never read.
    static void* (*const volatile kMemset)(void*, int, std::size_t) = &std::memset;
    kMemset(memory.data(), 0x5A, memory.size());
}

bool HasStreamingStores() noexcept
{
#if defined(__SSE2__)
    return true;
#else
    return false;
#endif
}

void WriteWithStreamingStores(std::span<std::byte> memory) noexcept
{
#if defined(__SSE2__)
    constexpr std::size_t kStep = 4 * sizeof(__m128i);
    const __m128i value = _mm_set1_epi8(0x5A);
    std::size_t offset = 0;
    for (; offset + kStep <= memory.size(); offset += kStep) {
        auto* target = reinterpret_cast<__m128i*>(memory.data() + offset);
        _mm_stream_si128(target, value);
        _mm_stream_si128(target + 1, value);
        _mm_stream_si128(target + 2, value);
        _mm_stream_si128(target + 3, value);
    }
    std::memset(memory.data() + offset, 0x5A, memory.size() - offset);
    _mm_sfence();
#else
    WriteWithMemset(memory);
#endif
}

} // namespace tessel::cli
