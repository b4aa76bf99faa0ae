/// A request record that starts as 0xCC and knows afterwards which of its bytes were changed.
#pragma once

#include "../Check.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace conformance {

/// Bytes that a request may change: `size` from `offset` on.
struct Field {
    std::size_t offset;
    std::size_t size;
};

class GuardedRecord {
public:
    static constexpr std::uint8_t kFill = 0xCC;
    static constexpr std::size_t kBytes = 1024; // more than the largest record, so that overruns show

    GuardedRecord() { mBytes.fill(kFill); }

    [[nodiscard]] void* Data() noexcept { return mBytes.data(); }

    template <class T>
    void Put(std::size_t offset, T value)
    {
        std::memcpy(mBytes.data() + offset, &value, sizeof value);
        mBefore = mBytes;
    }

    template <class T>
    [[nodiscard]] T Get(std::size_t offset) const
    {
        T value;
        std::memcpy(&value, mBytes.data() + offset, sizeof value);
        return value;
    }

    /// Later comparisons start from the present state.
    void Remember() { mBefore = mBytes; }

    /// @throws Violation naming the first byte outside `fields` that differs from the remembered state.
    void ExpectChangedOnly(const std::vector<Field>& fields, const std::string& what) const
    {
        for (std::size_t at = 0; at < kBytes; ++at) {
            const bool allowed = std::any_of(fields.begin(), fields.end(), [at](const Field& field) {
                return at >= field.offset && at < field.offset + field.size;
            });
            Expect(allowed || mBytes[at] == mBefore[at],
                   what + ": byte " + std::to_string(at) + " of the record was changed");
        }
    }
    void ExpectUnchanged(const std::string& what) const { ExpectChangedOnly({}, what); }

private:
    static std::array<std::uint8_t, kBytes> Filled()
    {
        std::array<std::uint8_t, kBytes> bytes;
        bytes.fill(kFill);
        return bytes;
    }

    std::array<std::uint8_t, kBytes> mBytes{};
    std::array<std::uint8_t, kBytes> mBefore = Filled();
};

} // namespace conformance
