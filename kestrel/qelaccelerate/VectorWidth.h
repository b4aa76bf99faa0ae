/// Loops that are compiled for several vector widths. The program chooses one while it runs.
#pragma once

#include <kestrel/Export.h>

#include <cstdint>

#if (defined(__x86_64__) || defined(__i386__)) && defined(__GNUC__)
#define QELACCELERATE_HAS_X86_VECTORS 1
#else
#define QELACCELERATE_HAS_X86_VECTORS 0
#endif

namespace qelaccelerate {

enum class VectorWidth : std::uint8_t {
    Baseline, ///< what every processor of the target has
    Avx2,     ///< 256 bits
    Avx512    ///< 512 bits
};

/// Whether this processor and its operating system have them. Threads: [any-thread].
[[nodiscard]] KESTREL_API bool HasVectorWidth(VectorWidth width) noexcept;
/// The widest one that this machine has. Threads: [any-thread].
[[nodiscard]] KESTREL_API VectorWidth WidestVectors() noexcept;

#if QELACCELERATE_HAS_X86_VECTORS
namespace detail {

template <class Work>
[[gnu::target("avx2"), gnu::flatten]] void RunWithAvx2(const Work& work) noexcept
{
    work();
}

template <class Work>
[[gnu::target("avx512f,avx512bw,avx512dq,avx512vl"), gnu::flatten]] void
RunWithAvx512(const Work& work) noexcept
{
    work();
}

} // namespace detail
#endif

/// Calls `work()`, a loop over many values, compiled with everything that it calls for vectors of this width.
/// With the project's compiler settings every width gives the same bits: the operations are those of IEEE 754,
/// in the same order, never fused.
///
/// @param width  One that this machine has.
/// @param work   Does not throw. What it calls must be visible to the compiler: calls into other files keep the
///               baseline's code. Pointers and sizes belong into local variables, because stores through a
///               pointer may change what a lambda captured, and then the loop cannot become vector code.
template <class Work>
void RunWithVectors(VectorWidth width, const Work& work) noexcept
{
#if QELACCELERATE_HAS_X86_VECTORS
    if (width == VectorWidth::Avx512) {
        return detail::RunWithAvx512(work);
    }
    if (width == VectorWidth::Avx2) {
        return detail::RunWithAvx2(work);
    }
#else
    static_cast<void>(width);
#endif
    work();
}

} // namespace qelaccelerate
