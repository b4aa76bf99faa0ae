#include "VectorWidth.h"

namespace qelaccelerate {
namespace {

VectorWidth DetectWidestVectors() noexcept
{
    if (HasVectorWidth(VectorWidth::Avx512)) {
        return VectorWidth::Avx512;
    }
    return HasVectorWidth(VectorWidth::Avx2) ? VectorWidth::Avx2 : VectorWidth::Baseline;
}

} // namespace

bool HasVectorWidth(VectorWidth width) noexcept
{
#if QELACCELERATE_HAS_X86_VECTORS
    if (width == VectorWidth::Avx2) {
        return __builtin_cpu_supports("avx2") != 0;
    }
    if (width == VectorWidth::Avx512) {
        return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512bw") != 0 &&
               __builtin_cpu_supports("avx512dq") != 0 && __builtin_cpu_supports("avx512vl") != 0;
    }
#endif
    return width == VectorWidth::Baseline;
}

VectorWidth WidestVectors() noexcept
{
    static const VectorWidth sWidest = DetectWidestVectors();
    return sWidest;
}

} // namespace qelaccelerate
