/// Numbers in JSON texts, without regard to the process's locale. Threads: [thread-safe].
#pragma once

#include <kestrel/Export.h>

#include <optional>
#include <string>
#include <string_view>

namespace qelcore::serialization {

/// The double nearest to a number in JSON's notation; what is too small for a double is a zero of its sign,
/// nothing where it is too large.
[[nodiscard]] KESTREL_API std::optional<double> DoubleFromJSONNumber(std::string_view number);

/// The double that stands for a 32-bit float in a document: of those that round to `value`, the one whose
/// decimal has the fewest digits, so that 0.95F is written 0.95. A zero keeps its sign; infinities and NaN stay
/// what they are.
[[nodiscard]] KESTREL_API double ShortestDoubleOf(float value);

/// The shortest text that reads back as the same double, always with a point or an exponent, so that it
/// does not become an integer. Infinities are ±1e39, NaN is 0.
[[nodiscard]] KESTREL_API std::string JSONNumberFromDouble(double value);

} // namespace qelcore::serialization
