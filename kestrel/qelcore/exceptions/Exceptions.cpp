#include "Exceptions.h"

// Destructors stand here, not in the header, so that each type's identity exists once, in this library, and
// is the same for every library that throws or catches it.

namespace qelcore {
namespace {

std::string Quoted(std::string_view text)
{
    std::string quoted;
    quoted.reserve(text.size() + 2);
    quoted += '"';
    quoted += text;
    quoted += '"';
    return quoted;
}

std::string_view LastKey(std::string_view path)
{
    return path.substr(path.rfind('.') + 1); // without a point, all of it: npos + 1 is 0
}

std::string NullPointerMessage(std::string_view typeName)
{
    return "there is no " + std::string(typeName);
}

} // namespace

Exception::~Exception() = default;

null_pointer_exception::null_pointer_exception(std::string_view typeName)
    : Exception(NullPointerMessage(typeName)), std::runtime_error(NullPointerMessage(typeName))
{
}

null_pointer_exception::~null_pointer_exception() = default;

namespace serialization {

parse_exception::parse_exception(const std::string& message) : Exception(message), std::runtime_error(message)
{
}

parse_exception::~parse_exception() = default;

missing_key_exception::missing_key_exception(std::string_view path, std::string_view recordType)
    : parse_exception(Quoted(path) + ": missing key of " + std::string(recordType)), mKey(LastKey(path))
{
}

missing_key_exception::~missing_key_exception() = default;

type_exception::type_exception(std::string_view path, std::string_view expectedType)
    : mKey(LastKey(path)), mExpectedType(expectedType),
      mMessage(Quoted(path) + ": expected " + std::string(expectedType))
{
}

type_exception::~type_exception() = default;

} // namespace serialization
} // namespace qelcore
