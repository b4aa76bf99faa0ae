/// Memory that grows piece by piece and is given back as a whole.
#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>
#include <vector>

namespace qelcore::serialization {

/// Holds what a parsed document consists of. Threads: [any-thread].
class Arena {
public:
    /// `count` objects whose contents are not set; they live as long as the arena. @throws std::bad_alloc
    template <class Type>
    [[nodiscard]] Type* Allocate(std::size_t count)
    {
        static_assert(std::is_trivially_copyable_v<Type> && std::is_trivially_destructible_v<Type>);
        static_assert(alignof(Type) <= alignof(std::max_align_t));
        return static_cast<Type*>(AllocateBytes(count * sizeof(Type), alignof(Type)));
    }

private:
    [[nodiscard]] void* AllocateBytes(std::size_t bytes, std::size_t alignment);

    std::vector<std::unique_ptr<std::byte[]>> mPieces;
    std::size_t mPieceSize = 512; ///< of the next piece; grows while there are few
    void* mNext = nullptr;        ///< first byte of the newest piece that is not given out
    std::size_t mLeft = 0;        ///< bytes from there on
};

} // namespace qelcore::serialization
