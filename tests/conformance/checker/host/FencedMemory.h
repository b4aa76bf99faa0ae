/// Memory whose neighbours nobody may touch: an access before its begin or behind its end crashes.
#pragma once

#include <cstddef>
#include <cstdint>

namespace conformance {

class FencedMemory {
public:
    static constexpr std::size_t kBytes = 4096;      ///< that may be used
    static constexpr std::size_t kFenceBytes = 4096; ///< on both sides, at least

    /// @throws std::runtime_error where the system gives none.
    FencedMemory();
    ~FencedMemory();
    FencedMemory(const FencedMemory&) = delete;
    FencedMemory& operator=(const FencedMemory&) = delete;

    [[nodiscard]] std::uint8_t* Begin() const noexcept { return mBegin; }
    [[nodiscard]] std::uint8_t* End() const noexcept { return mEnd; }

private:
    std::uint8_t* mFence = nullptr; ///< the whole, fences included
    std::size_t mWholeBytes = 0;
    std::uint8_t* mBegin = nullptr;
    std::uint8_t* mEnd = nullptr;
};

} // namespace conformance
