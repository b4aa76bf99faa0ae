/// What a swatch chart must be for the plug-in to paint it.
#pragma once

#include "DocumentFacts.h"

#include <kestrel/importhost/Clip.h>

#include <optional>
#include <string>

namespace tessel::document {

/// The rule that a swatch chart breaks, or nothing where it keeps them all: a frame of 1920 × 1080; for each
/// band columns, rows and exactly three color parts for each swatch; the bands in order, all above row 1080.
[[nodiscard]] std::optional<std::string> BrokenSwatchRule(const importhost::ClipDescription& description,
                                                          const DocumentFacts& facts);

} // namespace tessel::document
