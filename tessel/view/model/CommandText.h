/// The command that shows again what a window shows.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tessel::view {

/// A word for a POSIX shell: as it is where it has no special letters, else in single quotes.
[[nodiscard]] std::string ShellWord(std::string_view text);

/// "tessel view clip.tessel --against 'my movie.mp4' --frame 112"
/// @param against  empty: none
/// @param plugin   empty: the one that is found without being named
[[nodiscard]] std::string ViewCommand(const std::vector<std::string>& clips, std::string_view against,
                                      std::int64_t frame, std::string_view plugin = {});

} // namespace tessel::view
