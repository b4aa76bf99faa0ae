/// Readable names of the values that a clip has.
#pragma once

#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/qelmediatypes/PixelAspectRatio.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tessel::typed {

/// The host constant's name, "KsPixelFormat_BGRA_4444_8u"; "unknown" for no format.
[[nodiscard]] std::string_view PixelFormatName(BR::PixelFormat format) noexcept;

/// The name of one of the host's ratios without its prefix, "DVNTSCWide"; empty for any other.
[[nodiscard]] std::string_view PixelAspectName(qelmediatypes::PixelAspectRatio ratio) noexcept;

/// The names of all of these ratios, as people type them: "dvntscwide".
[[nodiscard]] std::vector<std::string> PixelAspectChoices();

/// "stereo" for 2, "5.1" for 3; empty for any other code.
[[nodiscard]] std::string_view ChannelTypeName(std::int32_t channelType) noexcept;

} // namespace tessel::typed
