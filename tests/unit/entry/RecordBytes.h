/// Records as bytes: set to 0xCC before a request, compared after it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <type_traits>
#include <vector>

template <class Record>
[[nodiscard]] Record FilledRecord()
{
    Record record;
    std::memset(static_cast<void*>(&record), 0xCC, sizeof record);
    return record;
}

template <class Record>
[[nodiscard]] std::vector<std::uint8_t> BytesOf(const Record& record)
{
    std::vector<std::uint8_t> bytes(sizeof record);
    std::memcpy(bytes.data(), &record, sizeof record);
    return bytes;
}

/// Writes `value` at byte `offset`: how a test says what a request should leave behind.
template <class Value>
void Put(std::vector<std::uint8_t>& bytes, std::size_t offset, Value value)
{
    static_assert(std::is_arithmetic_v<Value> || std::is_pointer_v<Value>);
    std::memcpy(bytes.data() + offset, &value, sizeof value);
}
