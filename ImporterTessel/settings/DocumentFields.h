/// Fields of records to and from the values of a document: one place for the rules of widths and types.
#pragma once

#include <kestrel/qelcore/serialization/Value.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ImporterTessel {

/// Reads a field from `value`; `key` names it in errors, after the keys that lead to it, parted by points.
/// Integers are taken modulo 2^32 where the field has 32 bits; numbers become floats, so one beyond a float's
/// range becomes an infinity; texts become UTF-16. Lists replace what the field held.
/// @throws qelcore::serialization::type_exception, with the field untouched.
/// Threads: [any-thread].
/// @{
void FieldFromValue(const qelcore::serialization::Value& value, std::string_view key, std::int32_t& field);
void FieldFromValue(const qelcore::serialization::Value& value, std::string_view key, std::uint32_t& field);
void FieldFromValue(const qelcore::serialization::Value& value, std::string_view key, std::int64_t& field);
void FieldFromValue(const qelcore::serialization::Value& value, std::string_view key, float& field);
void FieldFromValue(const qelcore::serialization::Value& value, std::string_view key, bool& field);
void FieldFromValue(const qelcore::serialization::Value& value, std::string_view key, std::string& field);
void FieldFromValue(const qelcore::serialization::Value& value, std::string_view key, std::u16string& field);
void FieldFromValue(const qelcore::serialization::Value& value, std::string_view key,
                    std::vector<std::int32_t>& field);
void FieldFromValue(const qelcore::serialization::Value& value, std::string_view key,
                    std::vector<float>& field);
/// @}

/// Values as documents carry them. 32-bit integers are sign-extended and written as unsigned 64-bit values,
/// so -1 reads 18446744073709551615; ticks and positions stay signed.
/// Threads: [any-thread].
/// @{
[[nodiscard]] qelcore::serialization::Value IntegerValue(std::int32_t field);
[[nodiscard]] qelcore::serialization::Value IntegerValue(std::uint32_t field);
[[nodiscard]] qelcore::serialization::Value SignedValue(std::int64_t field);
[[nodiscard]] qelcore::serialization::Value NumberValue(float field);
[[nodiscard]] qelcore::serialization::Value BooleanValue(bool field);
[[nodiscard]] qelcore::serialization::Value TextValue(std::string field);
[[nodiscard]] qelcore::serialization::Value TextValue(std::u16string_view field);
[[nodiscard]] qelcore::serialization::Value ListValue(const std::vector<std::int32_t>& field);
[[nodiscard]] qelcore::serialization::Value ListValue(const std::vector<float>& field);
/// @}

/// The object that holds a record's fields. Refers to the path that it was made from, which must outlive it.
/// Threads: [any-thread].
class ObjectReader {
public:
    /// @param path        Names the object in errors: the keys that lead to it, parted by points; empty for the
    ///                    root.
    /// @param recordType  Names the record in errors about missing keys; a literal.
    /// @throws qelcore::serialization::type_exception where `value` is not an object.
    ObjectReader(const qelcore::serialization::Value& value, std::string_view path,
                 std::string_view recordType);

    /// Reads a required field. @throws missing_key_exception, type_exception
    template <class Field>
    void Read(std::string_view key, Field& field) const
    {
        Visit(key, [&](const auto& value, std::string_view path) { FieldFromValue(value, path, field); });
    }

    /// Reads a required record by its own reader, called with the value and the path to it.
    template <class Record, class Reader>
    void Read(std::string_view key, Record& record, const Reader& recordFromValue) const
    {
        Visit(key, [&](const auto& value, std::string_view path) { record = recordFromValue(value, path); });
    }

    /// Reads where `key` is there, else leaves the field as it is; a null is there and of the wrong type.
    /// @throws type_exception @{
    template <class Field>
    void ReadIfPresent(std::string_view key, Field& field) const
    {
        VisitIfPresent(key,
                       [&](const auto& value, std::string_view path) { FieldFromValue(value, path, field); });
    }

    template <class Record, class Reader>
    void ReadIfPresent(std::string_view key, Record& record, const Reader& recordFromValue) const
    {
        VisitIfPresent(
            key, [&](const auto& value, std::string_view path) { record = recordFromValue(value, path); });
    }
    /// @}

    /// Calls `visit` with the value under `key` and the path to it. @throws missing_key_exception
    template <class Visitor>
    void Visit(std::string_view key, const Visitor& visit) const
    {
        visit(Required(key), PathTo(key));
    }

    /// The same; does nothing where `key` is absent.
    template <class Visitor>
    void VisitIfPresent(std::string_view key, const Visitor& visit) const
    {
        if (const qelcore::serialization::Value value = mMembers.Find(key); !value.IsNothing()) {
            visit(value, PathTo(key));
        }
    }

private:
    [[nodiscard]] qelcore::serialization::Value Required(std::string_view key) const;

    [[nodiscard]] std::string PathTo(std::string_view key) const;

    qelcore::serialization::Members mMembers;
    std::string_view mPath;
    std::string_view mRecordType;
};

} // namespace ImporterTessel
