#include "DocumentFields.h"

#include <kestrel/qelcore/exceptions/Exceptions.h>
#include <kestrel/qelcore/serialization/JsonNumber.h>
#include <kestrel/qelcore/text/Unicode.h>

#include <utility>

namespace ImporterTessel {

using namespace qelcore::serialization;

namespace {

template <class Item>
void ListFromValue(const Value& value, std::string_view key, std::vector<Item>& field)
{
    const Elements elements = AsArray(value, key);
    std::vector<Item> items;
    items.reserve(elements.size());
    for (const Value element : elements) {
        try {
            FieldFromValue(element, key, items.emplace_back());
        } catch (const type_exception& error) {
            const std::string place = std::string(key) + '[' + std::to_string(items.size() - 1) + ']';
            throw type_exception(place, error.ExpectedType());
        }
    }
    field = std::move(items);
}

} // namespace

void FieldFromValue(const Value& value, std::string_view key, std::int32_t& field)
{
    field = static_cast<std::int32_t>(AsInteger(value, key));
}

void FieldFromValue(const Value& value, std::string_view key, std::uint32_t& field)
{
    field = static_cast<std::uint32_t>(AsInteger(value, key));
}

void FieldFromValue(const Value& value, std::string_view key, std::int64_t& field)
{
    field = AsInteger(value, key);
}

void FieldFromValue(const Value& value, std::string_view key, float& field)
{
    field = AsFloat(value, key);
}

void FieldFromValue(const Value& value, std::string_view key, bool& field)
{
    field = AsBoolean(value, key);
}

void FieldFromValue(const Value& value, std::string_view key, std::string& field)
{
    field = std::string(AsText(value, key));
}

void FieldFromValue(const Value& value, std::string_view key, std::u16string& field)
{
    field = qelcore::text::ToUTF16(AsText(value, key));
}

void FieldFromValue(const Value& value, std::string_view key, std::vector<std::int32_t>& field)
{
    ListFromValue(value, key, field);
}

void FieldFromValue(const Value& value, std::string_view key, std::vector<float>& field)
{
    ListFromValue(value, key, field);
}

Value IntegerValue(std::int32_t field)
{
    return Value(static_cast<std::uint64_t>(std::int64_t{field}));
}

Value IntegerValue(std::uint32_t field)
{
    return Value(std::uint64_t{field});
}

Value SignedValue(std::int64_t field)
{
    return Value(field);
}

Value NumberValue(float field)
{
    return Value(ShortestDoubleOf(field));
}

Value BooleanValue(bool field)
{
    return Value(field);
}

Value TextValue(std::string field)
{
    return Value(std::move(field));
}

Value TextValue(std::u16string_view field)
{
    return TextValue(qelcore::text::ToUTF8(field));
}

Value ListValue(const std::vector<std::int32_t>& field)
{
    Array array;
    array.reserve(field.size());
    for (const std::int32_t item : field) {
        array.push_back(SignedValue(item));
    }
    return Value(std::move(array));
}

Value ListValue(const std::vector<float>& field)
{
    Array array;
    array.reserve(field.size());
    for (const float item : field) {
        array.push_back(NumberValue(item));
    }
    return Value(std::move(array));
}

ObjectReader::ObjectReader(const Value& value, std::string_view path, std::string_view recordType)
    : mMembers(AsObject(value, path.empty() ? recordType : path)), mPath(path), mRecordType(recordType)
{
}

Value ObjectReader::Required(std::string_view key) const
{
    Value value = mMembers.Find(key);
    if (value.IsNothing()) {
        throw missing_key_exception(PathTo(key), mRecordType);
    }
    return value;
}

std::string ObjectReader::PathTo(std::string_view key) const
{
    std::string path(mPath);
    if (!path.empty()) {
        path += '.';
    }
    return path += key;
}

} // namespace ImporterTessel
