/// The options that describe a host's sequence to a new clip.
#pragma once

#include <kestrel/importhost/SettingsExchange.h>

#include <string_view>

namespace tessel::cli {

/// @param size         "1920x1080", both 1..2147483647
/// @param rate         "25", "30000/1001" or a decimal number; the usual roundings of NTSC rates (23.976,
///                     23.98, 29.97, 59.94, 119.88, 47.952) stand for the exact ones
/// @param pixelAspect  "10/11", or a whole number
/// @throws UsageError naming what is wrong and what would be right. Threads: [any-thread].
[[nodiscard]] importhost::SequenceValues ParseSequenceValues(std::string_view size, std::string_view rate,
                                                             std::string_view pixelAspect);

} // namespace tessel::cli
