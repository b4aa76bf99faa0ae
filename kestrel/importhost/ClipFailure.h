/// Why a clip's frame or sound could not be rendered.
#pragma once

#include <kestrel/Export.h>
#include <kestrel/importhost/FrameRefusal.h>

#include <cstdint>
#include <optional>
#include <string>

namespace importhost {

struct ClipDescription;

enum class FailureCause : std::uint8_t {
    PluginFailed,   ///< the plug-in answered `ClipFailure::result`
    FrameRefused,   ///< the host makes no such frame: `ClipFailure::refusal`
    NoFrame,        ///< success without a frame
    ForeignFrame,   ///< success with a frame that this host did not make for the request
    WrongFrameSize, ///< a frame whose size is not the described one
    TooManyChannels ///< more channels than the host plays
};

struct ClipFailure {
    FailureCause cause = FailureCause::PluginFailed;
    std::int32_t result = 0; ///< the plug-in's answer
    FrameRefusal refusal = FrameRefusal::None;
    std::int32_t frameWidth = 0; ///< of the frame that was made, pixels
    std::int32_t frameHeight = 0;
};

/// More channels than these are not played.
inline constexpr std::int32_t kMostChannels = 64;

/// The failure in one line without the file's name, as far as the host sees its reason. [thread-safe]
[[nodiscard]] KESTRELHOST_API std::string FailureText(const ClipFailure& failure,
                                                      const ClipDescription& description);

} // namespace importhost
