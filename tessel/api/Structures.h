/// Structures that carry their size, so that they may grow.
#pragma once

#include "Results.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <type_traits>

namespace tessel::api {

/// A caller's structure as this library knows it: members that the caller's header lacks are zero.
/// @param given  may be null: all zero
template <typename Structure>
[[nodiscard]] Structure Taken(const Structure* given)
{
    static_assert(std::is_trivially_copyable_v<Structure>);
    Structure taken{};
    if (given != nullptr) {
        Require(given->size >= sizeof(std::size_t), "the structure's size is not set");
        std::memcpy(&taken, given, std::min(given->size, sizeof(Structure)));
    }
    return taken;
}

/// Writes as much as the caller's structure holds. Its size stays.
template <typename Structure>
void Give(Structure value, Structure* wanted)
{
    static_assert(std::is_trivially_copyable_v<Structure>);
    Require(wanted != nullptr, "the structure to fill is a null pointer");
    Require(wanted->size >= sizeof(std::size_t), "the structure's size is not set");
    value.size = wanted->size;
    std::memcpy(wanted, &value, std::min(wanted->size, sizeof(Structure)));
}

} // namespace tessel::api
