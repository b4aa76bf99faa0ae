/// The pages of `tessel help TOPIC`.
#pragma once

#include "HelpText.h"

namespace tessel::cli {

/// The document: what it is, what makes and changes it.
[[nodiscard]] TopicText AboutDocuments();

/// Containers and codecs, from the tables that `render` works with.
[[nodiscard]] TopicText AboutCodecs();

/// Code values, ranges, matrices, and who decides them.
[[nodiscard]] TopicText AboutColors();

} // namespace tessel::cli
