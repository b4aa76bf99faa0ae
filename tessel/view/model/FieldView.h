/// Which rows of an interlaced picture are shown.
#pragma once

#include <cstdint>

namespace tessel::view {

enum class FieldView : std::uint8_t {
    Woven, ///< all rows in their places
    Upper, ///< rows 0, 2, 4, ..., each twice
    Lower, ///< rows 1, 3, 5, ..., each twice
    Bob,   ///< one field after the other in the order of the clip, at twice the frame rate, each row twice
};

enum class FirstField : std::uint8_t { Upper, Lower };

/// The rows to draw: every `step`th one from `first` on.
struct Rows {
    int first = 0;
    int step = 1;
    int count = 0; ///< 1 or more for a picture of 1 row or more

    bool operator==(const Rows&) const = default;
};

/// @param isSecondField  which of the frame's fields `Bob` shows; without meaning otherwise
[[nodiscard]] Rows RowsOf(FieldView view, FirstField firstField, bool isSecondField, int height) noexcept;

} // namespace tessel::view
