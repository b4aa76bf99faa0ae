/// Documents that stand inside another object.
#pragma once

#include <kestrel/qelcore/serialization/Value.h>

#include <string_view>

namespace tessel::document {

/// The key of an object that wraps a document.
inline constexpr std::string_view kWrapperKey = "SerializerWrappedObject";

/// The document in a wrapper; anything that is no wrapper as it is. Threads: [thread-safe].
[[nodiscard]] qelcore::serialization::Value Unwrapped(const qelcore::serialization::Value& root) noexcept;

} // namespace tessel::document
