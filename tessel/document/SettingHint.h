/// Which setting of a clip's document to change, for messages about clips that cannot be used.
#pragma once

#include "OpenClip.h"

#include <cstdint>
#include <string_view>

namespace tessel::document {

enum class Setting : std::uint8_t { FrameSize, FrameRate, Duration, SampleRate, ChannelCount };

/// The end of a message: the keys of the setting and what they must be, after ": ". Empty for clips of other
/// importers, whose documents the program does not know. Threads: [any-thread].
[[nodiscard]] std::string_view SettingHint(const ClipFacts& clip, Setting setting) noexcept;

} // namespace tessel::document
