/// Why a frame was not rendered, in a person's words.
#pragma once

#include "Clip.h"
#include "FrameSource.h"
#include "SettingsKeys.h"

#include <optional>
#include <string>

namespace importhost {

/// The reason as far as the host can see it: what its frame creator refused, and the rules of swatch charts.
/// One line without the file's name.
[[nodiscard]] std::string FrameFailureText(const RenderedFrame& rendered, const ClipDescription& description,
                                           const SettingsKeys& keys);

/// The rule that a swatch chart breaks, or nothing where it keeps them all: a frame of 1920 × 1080; for each
/// band columns, rows and exactly three color parts for each swatch; the bands in order, all above row 1080.
[[nodiscard]] std::optional<std::string> BrokenSwatchRule(const ClipDescription& description,
                                                          const SettingsKeys& keys);

} // namespace importhost
