#include "Value.h"

#include <kestrel/qelcore/exceptions/Exceptions.h>
#include <kestrel/qelmediatypes/Saturating.h>

#include <exception>
#include <utility>

namespace qelcore::serialization {
namespace {

/// A tree is taken down recursively only so far; what lies deeper waits on a list. Otherwise a document of
/// many thousand brackets would overflow the stack in its destructor.
constexpr int kDeepestRecursion = 64;

thread_local int tDepth = 0;                                  ///< destructors running now, one inside the other
thread_local std::vector<Value::Storage>* tWaiting = nullptr; ///< the outermost destructor's list

bool HasChildren(const Value::Storage& storage) noexcept
{
    if (const auto* const array = std::get_if<Array>(&storage)) {
        return !array->empty();
    }
    if (const auto* const object = std::get_if<Object>(&storage)) {
        return !object->empty();
    }
    return false;
}

/// The alternative of `value`, or null where it has another type.
template <class Type>
const Type* Find(const ValuePtr& value) noexcept
{
    return value == nullptr ? nullptr : std::get_if<Type>(&value->Get());
}

template <class Type>
const Type& Get(const ValuePtr& value, std::string_view key, std::string_view expectedType)
{
    const Type* const found = Find<Type>(value);
    if (found == nullptr) {
        throw type_exception(key, expectedType);
    }
    return *found;
}

} // namespace

Value::Value(Storage storage) : mStorage(std::move(storage)) {}

Value::~Value()
{
    if (!HasChildren(mStorage)) {
        return;
    }
    if (tDepth == kDeepestRecursion) {
        try {
            tWaiting->push_back(std::move(mStorage));
            mStorage = Storage();
            return;
        } catch (const std::exception&) {
            // Without memory for the list, recursion is what is left.
        }
    }
    std::vector<Storage> waiting;
    const bool isOutermost = tDepth == 0;
    if (isOutermost) {
        tWaiting = &waiting;
    }
    ++tDepth;
    mStorage = Storage();
    while (isOutermost && !waiting.empty()) {
        const Storage next = std::move(waiting.back());
        waiting.pop_back();
    }
    --tDepth;
    if (isOutermost) {
        tWaiting = nullptr;
    }
}

const Object& AsObject(const ValuePtr& value, std::string_view key)
{
    return Get<Object>(value, key, "an object");
}

const Array& AsArray(const ValuePtr& value, std::string_view key)
{
    return Get<Array>(value, key, "an array");
}

const std::string& AsText(const ValuePtr& value, std::string_view key)
{
    return Get<std::string>(value, key, "a text");
}

std::int64_t AsInteger(const ValuePtr& value, std::string_view key)
{
    if (const auto* const unsignedInteger = Find<std::uint64_t>(value)) {
        return static_cast<std::int64_t>(*unsignedInteger);
    }
    return Get<std::int64_t>(value, key, "an integer");
}

double AsNumber(const ValuePtr& value, std::string_view key)
{
    if (const auto* const integer = Find<std::int64_t>(value)) {
        return static_cast<double>(*integer);
    }
    if (const auto* const unsignedInteger = Find<std::uint64_t>(value)) {
        return static_cast<double>(*unsignedInteger);
    }
    return Get<double>(value, key, "a number");
}

float AsFloat(const ValuePtr& value, std::string_view key)
{
    return qelmediatypes::SaturatingToFloat(AsNumber(value, key));
}

bool AsBoolean(const ValuePtr& value, std::string_view key)
{
    if (const auto* const boolean = Find<bool>(value)) {
        return *boolean;
    }
    if (const auto* const integer = Find<std::int64_t>(value)) {
        return *integer != 0;
    }
    if (const auto* const unsignedInteger = Find<std::uint64_t>(value)) {
        return *unsignedInteger != 0;
    }
    if (const auto* const text = Find<std::string>(value)) {
        if (*text == "true") {
            return true;
        }
        if (*text == "false") {
            return false;
        }
    }
    throw type_exception(key, "a boolean");
}

bool ObjectHasProperty(const ValuePtr& object, std::string_view key) noexcept
{
    const auto* const found = Find<Object>(object);
    return found != nullptr && found->find(key) != found->end();
}

ValuePtr GetVariantInObject(const ValuePtr& object, std::string_view key) noexcept
{
    const auto* const found = Find<Object>(object);
    if (found == nullptr) {
        return nullptr;
    }
    const auto entry = found->find(key);
    return entry == found->end() ? nullptr : entry->second;
}

void AddToObject(Object& object, std::string key, Value value)
{
    object.insert_or_assign(std::move(key), std::make_shared<const Value>(std::move(value)));
}

} // namespace qelcore::serialization
