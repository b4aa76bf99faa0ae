/// Documents as trees of dynamically typed values.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace qelcore::serialization {

class Value;

/// Values are shared, so that a sub-tree can be handed out without copying it; nobody changes a value
/// that somebody else may hold.
using ValuePtr = std::shared_ptr<const Value>;

/// Keys in ascending byte order, which is also the order in which they are printed.
using Object = std::map<std::string, ValuePtr, std::less<>>;
using Array = std::vector<ValuePtr>;

/// One value: nothing, a boolean, a signed or an unsigned 64-bit integer, a double, a UTF-8 text, an
/// array or an object. Parsed integers that fit a signed 64-bit number are signed, larger ones unsigned;
/// a number with a point, an exponent or beyond 64 bits is a double.
/// Threads: [any-thread], and [thread-safe] for reading.
class Value {
public:
    using Storage =
        std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::string, Array, Object>;

    Value() = default;
    explicit Value(Storage storage);
    ~Value();
    Value(const Value&) = default;
    Value(Value&&) noexcept = default;
    Value& operator=(const Value&) = default;
    Value& operator=(Value&&) noexcept = default;

    [[nodiscard]] const Storage& Get() const noexcept { return mStorage; }
    [[nodiscard]] bool IsObject() const noexcept { return std::holds_alternative<Object>(mStorage); }
    [[nodiscard]] bool IsArray() const noexcept { return std::holds_alternative<Array>(mStorage); }

private:
    Storage mStorage;
};

/// Reads. Each throws `type_exception` naming `key` where the value has another type; `value` may be null,
/// which counts as another type.
/// @{
[[nodiscard]] const Object& AsObject(const ValuePtr& value, std::string_view key);
[[nodiscard]] const Array& AsArray(const ValuePtr& value, std::string_view key);
[[nodiscard]] const std::string& AsText(const ValuePtr& value, std::string_view key);
/// From a signed or unsigned integer; the bits of the 64-bit two's complement. 333.0 is not an integer.
[[nodiscard]] std::int64_t AsInteger(const ValuePtr& value, std::string_view key);
/// From a double or either kind of integer.
[[nodiscard]] double AsNumber(const ValuePtr& value, std::string_view key);
/// The same, rounded to the nearest 32-bit float; an infinity beyond its range.
[[nodiscard]] float AsFloat(const ValuePtr& value, std::string_view key);
/// From a boolean, an integer (non-zero is true), or the text "true" or "false".
[[nodiscard]] bool AsBoolean(const ValuePtr& value, std::string_view key);
/// @}

/// Whether `object` is an object and has `key`. Null counts as no object.
[[nodiscard]] bool ObjectHasProperty(const ValuePtr& object, std::string_view key) noexcept;

/// The value under `key`, or null where `object` is no object or lacks the key.
[[nodiscard]] ValuePtr GetVariantInObject(const ValuePtr& object, std::string_view key) noexcept;

/// Adds `value` under `key`, in the place of one that is there.
void AddToObject(Object& object, std::string key, Value value);

} // namespace qelcore::serialization
