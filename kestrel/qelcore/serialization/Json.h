/// JSON texts to values and back (RFC 8259).
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelcore/serialization/Value.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qelcore::serialization {

/// The longest text that is parsed, in bytes before its first NUL, and the most containers that lie inside one
/// another. A document beyond either is refused before it can take the process's memory.
inline constexpr std::size_t kLongestJSONText = 128'000'000;
inline constexpr std::size_t kDeepestJSONNesting = 10'000;

/// Parses UTF-8 text.
///
/// @param text    The document, up to its first NUL. White space may follow the document, other text makes it
///                malformed. A byte order mark is skipped. Of duplicate keys the last wins.
/// @param error   If not null, receives one line that says what is wrong and where, when nothing is returned.
///                Columns are counted in characters.
/// @return the value, or nothing where the text is not well-formed: wrong JSON, invalid UTF-8, a number that is
///         no finite double, or one of the limits above passed. Unpaired surrogate escapes become U+FFFD.
/// Throws only `std::bad_alloc`. Threads: [any-thread]. Cost: at most 15 bytes of memory for a byte of text,
/// also while parsing.
[[nodiscard]] KESTREL_API Value JSONParse(std::string_view text, std::string* error = nullptr);

/// Prints a value as UTF-8 JSON text: keys in ascending byte order, numbers so that they read back bit for
/// bit in every locale; infinities as ±1e39 (which reads back as an infinity once it is a 32-bit float),
/// NaN as 0.
///
/// @param formatted  Spread over lines and indented by two spaces a level, for the outer hundred levels; else
///                   without any white space.
[[nodiscard]] KESTREL_API std::string GetJSONUTF8String(const Value& value, bool formatted);

/// Bytes to a text that JSON can carry, and back (RFC 4648, section 4).
[[nodiscard]] KESTREL_API std::string EncodeBinaryDataToUTF8String(std::span<const std::uint8_t> bytes);

/// @throws parse_exception where `text` is not such an encoding.
[[nodiscard]] KESTREL_API std::vector<std::uint8_t> DecodeBinaryDataFromUTF8String(std::string_view text);

} // namespace qelcore::serialization
