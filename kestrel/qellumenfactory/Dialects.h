/// The words of both dialects: widget kinds, their parameters, and the values that these take.
#pragma once

#include "Layout.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qellumenfactory {

enum class ValueType { Text, Number, Truth };

/// "qel_popup" in Lumen is "popup" in Sable.
[[nodiscard]] std::string_view NameOf(ControlKind kind, Dialect dialect) noexcept;
[[nodiscard]] std::optional<ControlKind> FindKind(std::string_view name, Dialect dialect) noexcept;

/// "minValue" in Lumen is "min_value" in Sable. The name depends on the kind, too: Sable calls the label of a
/// popup and of a hot-text number "name".
[[nodiscard]] std::string_view NameOf(Key key, ControlKind kind, Dialect dialect) noexcept;
/// Nothing where a widget of that kind has no such parameter.
[[nodiscard]] std::optional<Key> FindKey(std::string_view name, ControlKind kind, Dialect dialect) noexcept;

/// The parameters of a kind, in the order of `Key`.
[[nodiscard]] std::vector<Key> KeysOf(ControlKind kind);
[[nodiscard]] ValueType TypeOf(Key key) noexcept;
[[nodiscard]] bool HoldsChildren(ControlKind kind) noexcept;

/// What `value` would have to be for `key`, in words ("a whole number from 0 to 15"); nothing if it is valid.
/// The caller has checked its type.
[[nodiscard]] std::optional<std::string> FindValueFault(Key key, const ParameterValue& value);

} // namespace qellumenfactory
