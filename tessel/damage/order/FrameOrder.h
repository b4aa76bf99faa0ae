/// Faults of order: which of the clip's frames each picture of the file shows.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace tessel::damage {

/// A picture of the file: a frame of the clip, or a foreign picture.
struct OrderedPicture {
    enum class Kind : std::uint8_t {
        Frame, ///< as the clip has it
        Black, ///< no frame of the clip
        Noise, ///< a frame of the clip under noise, so that it cannot be recognised
    };
    Kind kind = Kind::Frame;
    std::int64_t frame = 0; ///< counted from the clip's start; of `Black` the one before it

    bool operator==(const OrderedPicture&) const = default;
};

/// The pictures of a file in order. Positions count from the file's first picture; those that a fault needs and
/// that are not there leave everything as it is.
class FrameOrder {
public:
    /// Frames `first`, `first` + 1, ... as they come.
    FrameOrder(std::int64_t first, std::int64_t count);

    void Remove(std::int64_t at);
    /// Shows a picture `times` more times.
    void Repeat(std::int64_t at, std::int64_t times);
    void InsertBlack(std::int64_t at);
    void SwapWithNext(std::int64_t at);
    /// Shows a picture in place of the `count` that follow it.
    void Freeze(std::int64_t at, std::int64_t count);
    void Reverse();
    /// Shows pictures 0, 1, 2, ... so many times each, the pattern over and over: {3, 2} is film at 60 per
    /// second.
    void Pulldown(std::span<const int> pattern);
    void CutHead(std::int64_t count);
    void CutTail(std::int64_t count);
    void Spoil(std::int64_t at);

    [[nodiscard]] const std::vector<OrderedPicture>& Pictures() const noexcept { return mPictures; }

private:
    [[nodiscard]] bool Has(std::int64_t at) const noexcept;

    std::vector<OrderedPicture> mPictures;
};

} // namespace tessel::damage
