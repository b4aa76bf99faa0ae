/// The JSON Schema of `.tessel` documents, for editors.
#pragma once

#include <string>

namespace tessel::document {

/// Draft 2020-12, printed from the key table. Every document that the plug-in reads validates. What does not
/// validate it refuses, but for integers that are written as numbers ("333.0"), which JSON Schema takes.
[[nodiscard]] std::string DocumentSchema();

} // namespace tessel::document
