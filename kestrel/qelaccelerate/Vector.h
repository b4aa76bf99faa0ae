/// Plain operations on float vectors.
#pragma once

#include <kestrel/Export.h>

#include <cstddef>

namespace qelaccelerate::utility {

/// Writes `count` zeros. Threads: [any-thread].
KESTREL_API void Zero(std::size_t count, float* destination) noexcept;

/// Copies `count` floats; the two do not overlap unless they are the same. Threads: [any-thread].
KESTREL_API void Copy(std::size_t count, const float* source, float* destination) noexcept;

} // namespace qelaccelerate::utility
