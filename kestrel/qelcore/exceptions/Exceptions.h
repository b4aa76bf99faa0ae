/// The host's exceptions, exported so that one library catches by type what another throws. [any-thread]
#pragma once

#include <kestrel/Export.h>

#include <any>
#include <stdexcept>
#include <string>
#include <string_view>

namespace qelcore {

/// Base of the host's own exceptions. Deliberately not a `std::exception`; types that should be caught as
/// one inherit both.
class KESTREL_API Exception {
public:
    explicit Exception(std::string message) : mMessage(std::move(message)) {}
    virtual ~Exception();
    Exception(const Exception&) = default;
    Exception& operator=(const Exception&) = default;

    [[nodiscard]] const std::string& Message() const noexcept { return mMessage; }

private:
    std::string mMessage;
};

/// A needed object is not there. `what()` names the missing object's type.
class KESTREL_API null_pointer_exception : public Exception, public std::runtime_error {
public:
    explicit null_pointer_exception(std::string_view typeName);
    ~null_pointer_exception() override;
    null_pointer_exception(const null_pointer_exception&) = default;
    null_pointer_exception& operator=(const null_pointer_exception&) = default;
};

namespace serialization {

/// A document does not hold what its reader needs.
class KESTREL_API parse_exception : public Exception, public std::runtime_error {
public:
    explicit parse_exception(const std::string& message);
    ~parse_exception() override;
    parse_exception(const parse_exception&) = default;
    parse_exception& operator=(const parse_exception&) = default;
};

/// An object lacks a required key. `what()` names the key with those that lead to it, parted by points, and the
/// record type: "color.red": missing key of Color. `Key()` is the last of them alone.
class KESTREL_API missing_key_exception : public parse_exception {
public:
    missing_key_exception(std::string_view path, std::string_view recordType);
    ~missing_key_exception() override;
    missing_key_exception(const missing_key_exception&) = default;
    missing_key_exception& operator=(const missing_key_exception&) = default;

    [[nodiscard]] const std::string& Key() const noexcept { return mKey; }

private:
    std::string mKey;
};

/// A value has another type than its reader needs. `what()` names the key, with those that lead to it as above,
/// and the expected type: "width": expected an integer. `Key()` is the last of them alone.
class KESTREL_API type_exception : public std::bad_any_cast {
public:
    type_exception(std::string_view path, std::string_view expectedType);
    ~type_exception() override;
    type_exception(const type_exception&) = default;
    type_exception& operator=(const type_exception&) = default;

    [[nodiscard]] const char* what() const noexcept override { return mMessage.c_str(); }
    [[nodiscard]] const std::string& Key() const noexcept { return mKey; }
    [[nodiscard]] const std::string& ExpectedType() const noexcept { return mExpectedType; }

private:
    std::string mKey;
    std::string mExpectedType;
    std::string mMessage;
};

} // namespace serialization
} // namespace qelcore
