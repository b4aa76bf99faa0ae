/// What a channel identification sounds like at a time.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>

namespace tessel::document {

/// The part of an identification's cycle at a time: the channels that its tone is on ("L", "LFE", "L+R",
/// "all"), or "silence". In "EBU Multichannel (5.1)" the low-frequency channel sounds all the time and does not
/// count.
/// @param format  "mIdentifierFormat"; empty for an unknown number
/// @param ticks   since the clip's start, 0 or more
/// Threads: [thread-safe].
[[nodiscard]] std::string_view IdentSegmentAt(std::int32_t format, std::int64_t ticks) noexcept;

/// The number of the channel identification that a clip's document asks for; none for a steady tone, and for
/// other importers' clips, whose documents say nothing. Opens and parses the file.
[[nodiscard]] std::optional<std::int32_t> IdentOf(const std::filesystem::path& clip);

} // namespace tessel::document
