/// Escapes of UTF-16 code units in JSON texts.
#pragma once

#include <string>
#include <string_view>

namespace qelcore::serialization {

/// `text` with every escape of an unpaired surrogate (\uD800 .. \uDFFF) replaced by \uFFFD, which has the
/// same length, so that places in the text stay what they are.
///
/// @param storage  Holds the result where it differs from `text`.
/// @return `text` itself, or a view of `storage`.
[[nodiscard]] std::string_view WithoutUnpairedSurrogates(std::string_view text, std::string& storage);

} // namespace qelcore::serialization
