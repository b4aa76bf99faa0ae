/// Conversions between UTF-8 and UTF-16. Threads: [thread-safe].
#pragma once

#include <kestrel/Export.h>

#include <optional>
#include <string>
#include <string_view>

namespace qelcore::text {

/// Malformed UTF-8 becomes U+FFFD, one for each maximal broken piece (Unicode 15, section 3.9).
[[nodiscard]] KESTREL_API std::u16string ToUTF16(std::string_view utf8);

/// Unpaired surrogates become U+FFFD.
[[nodiscard]] KESTREL_API std::string ToUTF8(std::u16string_view utf16);

/// Nothing where the bytes are not well-formed UTF-8.
[[nodiscard]] KESTREL_API std::optional<std::u16string> ToUTF16Strict(std::string_view utf8);

/// `utf8` with every malformed piece replaced as `ToUTF16` does it: well-formed UTF-8 always.
[[nodiscard]] KESTREL_API std::string Repaired(std::string_view utf8);

/// Nothing where the text has an unpaired surrogate.
[[nodiscard]] KESTREL_API std::optional<std::string> ToUTF8Strict(std::u16string_view utf16);

} // namespace qelcore::text
