#include "FillRow.h"

#include <cstring>

void pixmill::FillRow(std::byte* row, std::size_t byteCount, const FillPattern& pattern) noexcept
{
    const FillPattern wide = pattern; // a copy the compiler knows not to overlap the row: kept in registers
    std::byte* const end = row + byteCount;
    for (; end - row >= 16; row += 16) {
        std::memcpy(row, wide.data(), 16);
    }
    for (std::size_t i = 0; row != end; row += 4, i += 4) {
        std::memcpy(row, wide.data() + i, 4);
    }
}
