/// Text inside HTML and XML.
#pragma once

#include <string>
#include <string_view>

namespace tessel::verify {

/// The text with the letters that markup gives a meaning written as entities, fit for elements and attributes.
/// Control characters but the line feed, which XML 1.0 does not have, become question marks; bytes that are no
/// UTF-8, as file names may hold, become U+FFFD. Threads: [any-thread].
[[nodiscard]] std::string Escaped(std::string_view text);

} // namespace tessel::verify
