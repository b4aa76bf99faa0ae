#include "Schema.h"

#include "KeyTable.h"

#include <kestrel/qelcore/serialization/Json.h>

#include <string_view>
#include <utility>

namespace tessel::document {
namespace {

using qelcore::serialization::AddToObject;
using qelcore::serialization::Array;
using qelcore::serialization::JSONParse;
using qelcore::serialization::Object;
using qelcore::serialization::Value;

// Larger integers are no integers to the reader, but numbers.
const std::string kInteger =
    R"({"type": "integer", "minimum": -9223372036854775808, "maximum": 18446744073709551615})";

/// A schema without annotations, as JSON.
std::string TypeSchema(KeyType type)
{
    switch (type) {
    case KeyType::Object:
        return R"({"type": "object"})";
    case KeyType::Integer32:
    case KeyType::Integer64:
        return kInteger;
    case KeyType::Number:
        return R"({"type": "number"})";
    case KeyType::Boolean:
        return R"({"anyOf": [{"type": "boolean"}, )" + kInteger + R"(, {"enum": ["true", "false"]}]})";
    case KeyType::Text:
        return R"({"type": "string"})";
    case KeyType::Base64:
        return R"({"type": "string", "contentEncoding": "base64",
                   "pattern": "^(?:[A-Za-z0-9+/]{4})*(?:[A-Za-z0-9+/]{2}==|[A-Za-z0-9+/]{3}=)?$"})";
    case KeyType::Integers:
        return R"({"type": "array", "items": )" + kInteger + '}';
    case KeyType::Numbers:
        return R"({"type": "array", "items": {"type": "number"}})";
    }
    return "{}";
}

/// Known values with their meanings for editors to offer; the reader takes any other of the type, too.
Value WithKnownValues(const KeyInfo& key)
{
    Array choices;
    for (const KeyValue& known : key.values) {
        Object choice;
        AddToObject(choice, "const", Value(known.value));
        AddToObject(choice, "title", Value(known.meaning));
        choices.emplace_back(std::move(choice));
    }
    choices.push_back(JSONParse(TypeSchema(key.type)));
    Object schema;
    AddToObject(schema, "anyOf", Value(std::move(choices)));
    return Value(std::move(schema));
}

/// The keys directly inside an object; `prefix` is its path with a point, or empty for the root.
bool IsDirectlyInside(const KeyInfo& key, std::string_view prefix)
{
    return key.path.starts_with(prefix) && key.path.find('.', prefix.size()) == std::string::npos;
}

void DescribeMembers(Object& schema, const std::string& prefix);

Value SchemaOf(const KeyInfo& key)
{
    Object schema = qelcore::serialization::CopyMembers(key.values.empty() ? JSONParse(TypeSchema(key.type))
                                                                           : WithKnownValues(key));
    if (!key.meaning.empty()) {
        AddToObject(schema, "description", Value(key.meaning));
    }
    if (!key.standard.empty()) {
        AddToObject(schema, "default", JSONParse(key.standard));
    }
    if (key.type == KeyType::Object) {
        DescribeMembers(schema, key.path + '.');
    }
    return Value(std::move(schema));
}

void DescribeMembers(Object& schema, const std::string& prefix)
{
    Object properties;
    Array required;
    for (const KeyInfo& key : AllKeys()) {
        if (!IsDirectlyInside(key, prefix)) {
            continue;
        }
        const std::string name = key.path.substr(prefix.size());
        if (key.isRequired) {
            required.emplace_back(name);
        }
        AddToObject(properties, name, SchemaOf(key));
    }
    AddToObject(schema, "properties", Value(std::move(properties)));
    if (!required.empty()) {
        AddToObject(schema, "required", Value(std::move(required)));
    }
}

} // namespace

std::string DocumentSchema()
{
    Object settings;
    AddToObject(settings, "type", Value("object"));
    DescribeMembers(settings, "");

    Object definitions;
    AddToObject(definitions, "settings", Value(std::move(settings)));
    Object schema;
    AddToObject(schema, "$schema", Value("https://json-schema.org/draft/2020-12/schema"));
    AddToObject(schema, "title", Value("Tessel clip"));
    AddToObject(schema, "description", Value("The settings of a synthetic clip, a .tessel document"));
    AddToObject(schema, "$defs", Value(std::move(definitions)));
    AddToObject(schema, "type", Value("object"));
    // The other keys of a wrapper are ignored.
    AddToObject(schema, "if", JSONParse(R"({"required": ["SerializerWrappedObject"]})"));
    AddToObject(schema, "then",
                JSONParse(R"({"properties": {"SerializerWrappedObject": {"$ref": "#/$defs/settings"}}})"));
    AddToObject(schema, "else", JSONParse(R"({"$ref": "#/$defs/settings"})"));
    return qelcore::serialization::GetJSONUTF8String(Value(std::move(schema)), /*formatted=*/true) + '\n';
}

} // namespace tessel::document
