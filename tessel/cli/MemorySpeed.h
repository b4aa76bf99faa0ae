/// How fast this machine writes memory: what frame synthesis is measured against.
#pragma once

#include <cstddef>
#include <span>

namespace tessel::cli {

/// Writes all of `memory` with the C library's memset.
void WriteWithMemset(std::span<std::byte> memory) noexcept;

/// Whether this processor has stores that bypass its caches.
[[nodiscard]] bool HasStreamingStores() noexcept;

/// Writes all of `memory` with such stores; with memset on processors without them. `memory` begins at a
/// multiple of 16 bytes.
void WriteWithStreamingStores(std::span<std::byte> memory) noexcept;

} // namespace tessel::cli
