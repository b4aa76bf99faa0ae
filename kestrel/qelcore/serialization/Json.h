/// JSON texts to values and back (RFC 8259).
#pragma once

#include <kestrel/qelcore/serialization/Value.h>

#include <span>
#include <string>
#include <string_view>

namespace qelcore::serialization {

/// Parses UTF-8 text.
///
/// @param text    The document, whose first NUL ends it where it holds one. Text after the document is
///                malformed, white space is not. Of duplicate keys the last wins.
/// @param error   Where not null and nothing results: one line that says what is wrong and where.
/// @return the value, or null where the text is not well-formed: wrong JSON, invalid UTF-8, a number that
///         is no finite double. Unpaired surrogate escapes become U+FFFD. Nesting is limited by memory only.
/// Throws only `std::bad_alloc`. Threads: [any-thread].
[[nodiscard]] ValuePtr JSONParse(std::string_view text, std::string* error = nullptr);

/// Prints a value as UTF-8 JSON text: keys in ascending byte order, numbers so that they read back bit for
/// bit in every locale; infinities as ±1e39 (which reads back as an infinity once it is a 32-bit float),
/// NaN as 0.
///
/// @param formatted  Spread over lines and indented by two spaces a level, for the outer hundred levels; else
///                   without any white space.
[[nodiscard]] std::string GetJSONUTF8String(const Value& value, bool formatted);

/// Bytes to a text that JSON can carry, and back (RFC 4648, section 4).
[[nodiscard]] std::string EncodeBinaryDataToUTF8String(std::span<const std::uint8_t> bytes);

/// @throws parse_exception where `text` is not such an encoding.
[[nodiscard]] std::vector<std::uint8_t> DecodeBinaryDataFromUTF8String(std::string_view text);

} // namespace qelcore::serialization
