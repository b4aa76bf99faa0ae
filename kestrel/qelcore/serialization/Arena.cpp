#include "Arena.h"

#include <algorithm>

namespace qelcore::serialization {

void* Arena::AllocateBytes(std::size_t bytes, std::size_t alignment)
{
    constexpr std::size_t kLargestPiece = std::size_t{256} << 10U;
    if (std::align(alignment, bytes, mNext, mLeft) == nullptr) {
        // What is large gets a piece of its own, so that no more than a quarter of a piece is ever lost at its
        // end.
        if (bytes > mPieceSize / 4) {
            return mPieces.emplace_back(std::make_unique_for_overwrite<std::byte[]>(bytes)).get();
        }
        mNext = mPieces.emplace_back(std::make_unique_for_overwrite<std::byte[]>(mPieceSize)).get();
        mLeft = mPieceSize;
        mPieceSize = std::min(2 * mPieceSize, kLargestPiece);
    }
    void* const given = mNext;
    mNext = static_cast<std::byte*>(mNext) + bytes;
    mLeft -= bytes;
    return given;
}

} // namespace qelcore::serialization
