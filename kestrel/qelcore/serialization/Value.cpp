#include "Value.h"

#include <kestrel/qelcore/exceptions/Exceptions.h>
#include <kestrel/qelmediatypes/Saturating.h>

#include <algorithm>
#include <bit>
#include <limits>
#include <stdexcept>

namespace qelcore::serialization {
namespace {

using Kind = Value::Kind;
using Node = Value::Node;

/// The count of a container's parts as nodes hold it.
std::uint32_t CountOf(std::size_t size)
{
    if (size > std::numeric_limits<std::uint32_t>::max()) {
        throw std::length_error("a value has more than 2^32 - 1 parts");
    }
    return static_cast<std::uint32_t>(size);
}

std::string_view TextOf(const Node& node) noexcept
{
    return {node.letters, node.count};
}

Node TextNode(std::string_view text)
{
    Node node;
    node.kind = Kind::Text;
    node.count = CountOf(text.size());
    node.letters = text.data();
    return node;
}

/// A container's nodes, with what they point into.
struct BuiltArray {
    Array source;
    std::vector<Node> nodes;
};
struct BuiltObject {
    Object source;
    std::vector<Value::Member> members;
};

const Value& Require(const Value& value, Kind kind, std::string_view key, std::string_view expectedType)
{
    if (value.GetKind() != kind) {
        throw type_exception(key, expectedType);
    }
    return value;
}

} // namespace

Value::Value(std::nullptr_t) noexcept
{
    mNode.kind = Kind::Null;
}

Value::Value(std::int64_t integer) noexcept
{
    mNode.kind = Kind::Signed;
    mNode.bits = static_cast<std::uint64_t>(integer);
}

Value::Value(std::uint64_t integer) noexcept
{
    mNode.kind = Kind::Unsigned;
    mNode.bits = integer;
}

Value::Value(double number) noexcept
{
    mNode.kind = Kind::Number;
    mNode.number = number;
}

Value::Value(std::string text)
{
    const auto owner = std::make_shared<const std::string>(std::move(text));
    mNode = TextNode(*owner);
    mOwner = owner;
}

Value::Value(Array elements)
{
    const auto owner = std::make_shared<BuiltArray>();
    owner->source = std::move(elements);
    owner->nodes.reserve(owner->source.size());
    for (const Value& element : owner->source) {
        owner->nodes.push_back(element.mNode);
    }
    mNode.kind = Kind::Array;
    mNode.count = CountOf(owner->nodes.size());
    mNode.elements = owner->nodes.data();
    mOwner = owner;
}

Value::Value(Object members)
{
    const auto owner = std::make_shared<BuiltObject>();
    owner->source = std::move(members);
    owner->members.reserve(owner->source.size());
    for (const auto& [key, value] : owner->source) {
        owner->members.push_back({TextNode(key), value.mNode});
    }
    mNode.kind = Kind::Object;
    mNode.count = CountOf(owner->members.size());
    mNode.members = owner->members.data();
    mOwner = owner;
}

Members::Entry Members::operator[](std::size_t index) const noexcept
{
    const Value::Member& member = mObject.GetNode().members[index];
    return {TextOf(member.key), mObject.Part(member.value)};
}

Value Members::Find(std::string_view key) const noexcept
{
    const Value::Member* const first = mObject.GetNode().members;
    const Value::Member* const last = first + size();
    const Value::Member* const found =
        std::lower_bound(first, last, key, [](const Value::Member& member, std::string_view wanted) {
            return TextOf(member.key) < wanted;
        });
    return found != last && TextOf(found->key) == key ? mObject.Part(found->value) : Value();
}

Members AsObject(const Value& value, std::string_view key)
{
    return Members(Require(value, Kind::Object, key, "an object"));
}

Elements AsArray(const Value& value, std::string_view key)
{
    return Elements(Require(value, Kind::Array, key, "an array"));
}

std::string_view AsText(const Value& value, std::string_view key)
{
    return TextOf(Require(value, Kind::Text, key, "a text").GetNode());
}

std::int64_t AsInteger(const Value& value, std::string_view key)
{
    const std::optional<std::int64_t> integer = FindInteger(value);
    if (!integer) {
        throw type_exception(key, "an integer");
    }
    return *integer;
}

double AsNumber(const Value& value, std::string_view key)
{
    const Node& node = value.GetNode();
    switch (node.kind) {
    case Kind::Signed:
        return static_cast<double>(static_cast<std::int64_t>(node.bits));
    case Kind::Unsigned:
        return static_cast<double>(node.bits);
    case Kind::Number:
        return node.number;
    default:
        throw type_exception(key, "a number");
    }
}

float AsFloat(const Value& value, std::string_view key)
{
    return qelmediatypes::SaturatingToFloat(AsNumber(value, key));
}

bool AsBoolean(const Value& value, std::string_view key)
{
    const Node& node = value.GetNode();
    switch (node.kind) {
    case Kind::Boolean:
    case Kind::Signed:
    case Kind::Unsigned:
        return node.bits != 0;
    case Kind::Text:
        if (TextOf(node) == "true") {
            return true;
        }
        if (TextOf(node) == "false") {
            return false;
        }
        [[fallthrough]];
    default:
        throw type_exception(key, "a boolean");
    }
}

std::optional<std::int64_t> FindInteger(const Value& value) noexcept
{
    const Node& node = value.GetNode();
    if (node.kind != Kind::Signed && node.kind != Kind::Unsigned) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(node.bits);
}

std::optional<std::string_view> FindText(const Value& value) noexcept
{
    if (value.GetKind() != Kind::Text) {
        return std::nullopt;
    }
    return TextOf(value.GetNode());
}

bool IsNumber(const Value& value) noexcept
{
    return value.GetKind() == Kind::Number || FindInteger(value).has_value();
}

bool ObjectHasProperty(const Value& object, std::string_view key) noexcept
{
    return !GetVariantInObject(object, key).IsNothing();
}

Value GetVariantInObject(const Value& object, std::string_view key) noexcept
{
    return object.IsObject() ? Members(object).Find(key) : Value();
}

Object CopyMembers(const Value& object)
{
    Object copy;
    if (object.IsObject()) {
        for (const auto& [key, value] : Members(object)) {
            copy.emplace_hint(copy.end(), key, value);
        }
    }
    return copy;
}

void AddToObject(Object& object, std::string key, Value value)
{
    object.insert_or_assign(std::move(key), std::move(value));
}

} // namespace qelcore::serialization
