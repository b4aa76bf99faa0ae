/// The host's exceptions. All are exported types: one thrown in a library is caught by type in another.
#pragma once

#include <any>
#include <stdexcept>
#include <string>
#include <string_view>

namespace qelcore {

/// Base of the host's own exceptions. Deliberately not a `std::exception`; types that should be caught as
/// one inherit both.
class Exception {
public:
    explicit Exception(std::string message) : mMessage(std::move(message)) {}
    virtual ~Exception();

    [[nodiscard]] const std::string& Message() const noexcept { return mMessage; }

private:
    std::string mMessage;
};

/// A needed object is not there. `what()` names the missing object's type.
class null_pointer_exception : public Exception, public std::runtime_error {
public:
    explicit null_pointer_exception(std::string_view typeName);
    ~null_pointer_exception() override;
};

namespace serialization {

/// A document does not hold what its reader needs.
class parse_exception : public Exception, public std::runtime_error {
public:
    explicit parse_exception(const std::string& message);
    ~parse_exception() override;
};

/// An object lacks a required key. `what()` names the key and the record type.
class missing_key_exception : public parse_exception {
public:
    missing_key_exception(std::string_view key, std::string_view recordType);
    ~missing_key_exception() override;

    [[nodiscard]] const std::string& Key() const noexcept { return mKey; }

private:
    std::string mKey;
};

/// A value has another type than its reader needs. `what()` names the key and the expected type, for
/// instance: "mFrameWidth": expected an integer.
class type_exception : public std::bad_any_cast {
public:
    type_exception(std::string_view key, std::string_view expectedType);
    ~type_exception() override;

    [[nodiscard]] const char* what() const noexcept override { return mMessage.c_str(); }
    [[nodiscard]] const std::string& Key() const noexcept { return mKey; }

private:
    std::string mKey;
    std::string mMessage;
};

} // namespace serialization
} // namespace qelcore
