/// Documents as trees of dynamically typed values.
#pragma once

#include <kestrel/Export.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace qelcore::serialization {

class Value;

/// What containers are made from. Keys stand in ascending byte order, which is also the order in which they are
/// printed.
using Array = std::vector<Value>;
using Object = std::map<std::string, Value, std::less<>>;

/// One value: nothing, a JSON null, a boolean, a signed or an unsigned 64-bit integer, a double, a UTF-8 text,
/// an array or an object. Values never change. A copy costs next to nothing, because it shares its contents
/// with the original; a part of a document keeps the whole document.
///
/// Parsed integers that fit a signed 64-bit number are signed, larger ones unsigned; a number with a point, an
/// exponent or beyond 64 bits is a double.
/// Threads: [any-thread], and [thread-safe] for reading.
class KESTREL_API Value {
public:
    enum class Kind : std::uint8_t { Nothing, Null, Boolean, Signed, Unsigned, Number, Text, Array, Object };

    struct Member;
    /// How a value lies in memory; for the parser and the printer of this library. Everything that a node
    /// points to belongs to the value's owner.
    struct Node {
        Kind kind = Kind::Nothing;
        std::uint32_t count = 0; ///< letters of a text, elements of an array, members of an object
        union {
            std::uint64_t bits = 0; ///< of a boolean or an integer
            double number;
            const char* letters;
            const Node* elements;
            const Member* members; ///< keys in ascending order, each once
        };
    };

    /// Nothing: what looking for an absent key gives, and parsing a malformed text. Printed as null.
    Value() noexcept = default;
    explicit Value(std::nullptr_t) noexcept;
    template <class Boolean>
    requires std::is_same_v<Boolean, bool>
    explicit Value(Boolean boolean) noexcept
    {
        mNode.kind = Kind::Boolean;
        mNode.bits = boolean ? 1 : 0;
    }
    explicit Value(std::int64_t integer) noexcept;
    explicit Value(std::uint64_t integer) noexcept;
    explicit Value(double number) noexcept;
    explicit Value(std::string text);
    explicit Value(std::string_view text) : Value(std::string(text)) {}
    explicit Value(const char* text) : Value(std::string(text)) {}
    explicit Value(Array elements);
    explicit Value(Object members);
    /// A value of which `owner` holds all that `node` points to.
    Value(std::shared_ptr<const void> owner, const Node& node) noexcept : mOwner(std::move(owner)), mNode(node)
    {
    }

    [[nodiscard]] Kind GetKind() const noexcept { return mNode.kind; }
    [[nodiscard]] bool IsNothing() const noexcept { return mNode.kind == Kind::Nothing; }
    [[nodiscard]] bool IsArray() const noexcept { return mNode.kind == Kind::Array; }
    [[nodiscard]] bool IsObject() const noexcept { return mNode.kind == Kind::Object; }
    [[nodiscard]] const Node& GetNode() const noexcept { return mNode; }
    /// A part of this value as a value of its own.
    [[nodiscard]] Value Part(const Node& node) const noexcept { return {mOwner, node}; }

private:
    std::shared_ptr<const void> mOwner; ///< null where nothing needs one
    Node mNode;
};

struct Value::Member {
    Node key; ///< a text
    Node value;
};

/// Goes through the parts of a container; `Parts` is `Elements` or `Members`.
template <class Parts>
class PartIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = decltype(std::declval<const Parts&>()[0]);
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = value_type;

    PartIterator(const Parts& parts, std::size_t index) noexcept : mParts(&parts), mIndex(index) {}
    value_type operator*() const { return (*mParts)[mIndex]; }
    PartIterator& operator++() noexcept
    {
        ++mIndex;
        return *this;
    }
    bool operator==(const PartIterator& other) const noexcept { return mIndex == other.mIndex; }

private:
    const Parts* mParts;
    std::size_t mIndex;
};

/// The elements of an array; shares its contents.
class Elements {
public:
    explicit Elements(Value array) noexcept : mArray(std::move(array)) {}

    [[nodiscard]] std::size_t size() const noexcept { return mArray.GetNode().count; }
    [[nodiscard]] bool empty() const noexcept { return size() == 0; }
    [[nodiscard]] Value operator[](std::size_t index) const noexcept
    {
        return mArray.Part(mArray.GetNode().elements[index]);
    }
    [[nodiscard]] PartIterator<Elements> begin() const noexcept { return {*this, 0}; }
    [[nodiscard]] PartIterator<Elements> end() const noexcept { return {*this, size()}; }

private:
    Value mArray;
};

/// The members of an object, by ascending keys; shares its contents.
class KESTREL_API Members {
public:
    struct Entry {
        std::string_view key;
        Value value;
    };

    explicit Members(Value object) noexcept : mObject(std::move(object)) {}

    [[nodiscard]] std::size_t size() const noexcept { return mObject.GetNode().count; }
    [[nodiscard]] Entry operator[](std::size_t index) const noexcept;
    /// The value under `key`, nothing where it is absent.
    [[nodiscard]] Value Find(std::string_view key) const noexcept;
    [[nodiscard]] PartIterator<Members> begin() const noexcept { return {*this, 0}; }
    [[nodiscard]] PartIterator<Members> end() const noexcept { return {*this, size()}; }

private:
    Value mObject;
};

/// Reads. Each throws `type_exception` naming `key` where the value has another type; nothing is of no type. A
/// text lives as long as some copy of its value or of what contains it, so that of a temporary is not given.
/// @{
[[nodiscard]] KESTREL_API Members AsObject(const Value& value, std::string_view key);
[[nodiscard]] KESTREL_API Elements AsArray(const Value& value, std::string_view key);
[[nodiscard]] KESTREL_API std::string_view AsText(const Value& value, std::string_view key);
std::string_view AsText(const Value&& value, std::string_view key) = delete;
/// From a signed or unsigned integer; the bits of the 64-bit two's complement. 333.0 is not an integer.
[[nodiscard]] KESTREL_API std::int64_t AsInteger(const Value& value, std::string_view key);
/// From a double or either kind of integer.
[[nodiscard]] KESTREL_API double AsNumber(const Value& value, std::string_view key);
/// The same, rounded to the nearest 32-bit float; an infinity beyond its range.
[[nodiscard]] KESTREL_API float AsFloat(const Value& value, std::string_view key);
/// From a boolean, an integer (non-zero is true), or the text "true" or "false".
[[nodiscard]] KESTREL_API bool AsBoolean(const Value& value, std::string_view key);
/// @}

/// The same without an exception: no result where the value has another type. @{
[[nodiscard]] KESTREL_API std::optional<std::int64_t> FindInteger(const Value& value) noexcept;
[[nodiscard]] KESTREL_API std::optional<std::string_view> FindText(const Value& value) noexcept;
std::optional<std::string_view> FindText(const Value&& value) = delete;
/// @}

/// Whether the value is a double or an integer.
[[nodiscard]] KESTREL_API bool IsNumber(const Value& value) noexcept;

/// Whether `object` is an object and has `key`.
[[nodiscard]] KESTREL_API bool ObjectHasProperty(const Value& object, std::string_view key) noexcept;

/// The value under `key`; nothing where `object` is no object or lacks the key.
[[nodiscard]] KESTREL_API Value GetVariantInObject(const Value& object, std::string_view key) noexcept;

/// The members of an object to build another one from; none of any other value.
[[nodiscard]] KESTREL_API Object CopyMembers(const Value& object);

/// An array of the values that `convert` makes of `items`, in their order.
template <class Items, class Convert>
[[nodiscard]] Value ArrayOf(const Items& items, const Convert& convert)
{
    Array elements;
    for (const auto& item : items) {
        elements.push_back(convert(item));
    }
    return Value(std::move(elements));
}

/// Adds `value` under `key`, in the place of one that is there.
KESTREL_API void AddToObject(Object& object, std::string key, Value value);

} // namespace qelcore::serialization
