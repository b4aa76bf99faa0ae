/// An edited document in the layout that it had.
#pragma once

#include <string>

namespace tessel::document {

/// The settings of `after` in the text of `before`: line ends, indentation and order of keys stay, values that
/// are the same keep their spelling, keys that `after` lacks are removed. `after` as it is where `before` is
/// not a document, or where the settings cannot be put into its text. Threads: [any-thread].
[[nodiscard]] std::string InLayoutOf(const std::string& before, const std::string& after);

} // namespace tessel::document
