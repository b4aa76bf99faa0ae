/// The channel identifications.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace tessel::document {

/// The host's codes of channel layouts. @{
inline constexpr std::int32_t kStereoChannels = 2;
inline constexpr std::int32_t kSurroundChannels = 3; ///< 5.1
/// @}

struct Ident {
    std::string_view name;    ///< "blits"
    std::string_view title;   ///< "BLITS (5.1)"
    std::int32_t format;      ///< "mIdentifierFormat"
    std::int32_t channelType; ///< the layout that it is for
    std::int32_t channelCount;
};

/// In the order of their numbers. Static storage. Threads: [thread-safe].
[[nodiscard]] std::span<const Ident> AllIdents() noexcept;

} // namespace tessel::document
