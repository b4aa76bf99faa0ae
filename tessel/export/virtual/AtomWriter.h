/// Bytes of QuickTime's atoms: sizes, four-character types, numbers with their highest byte first.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace tessel::exporting {

/// Threads: [any-thread].
class AtomWriter {
public:
    void Put8(std::uint32_t value) { PutBytes(value, 1); }
    void Put16(std::uint32_t value) { PutBytes(value, 2); }
    void Put32(std::uint64_t value) { PutBytes(value, 4); }
    void Put64(std::uint64_t value) { PutBytes(value, 8); }
    /// A whole number as 16.16 fixed point.
    void PutFixed(std::int64_t number) { Put32(static_cast<std::uint64_t>(number) << 16U); }
    void PutDouble(double value) { Put64(std::bit_cast<std::uint64_t>(value)); }
    void PutZeros(std::size_t count) { mBytes.resize(mBytes.size() + count); }
    void PutText(std::string_view text)
    {
        for (const char letter : text) {
            mBytes.push_back(static_cast<std::byte>(letter));
        }
    }

    /// An atom around what `content` writes. @param type  four characters
    template <class Content>
    void Atom(std::string_view type, Content&& content)
    {
        const std::size_t start = mBytes.size();
        Put32(0);
        PutText(type);
        std::forward<Content>(content)();
        const std::size_t size = mBytes.size() - start;
        for (std::size_t index = 0; index < 4; ++index) {
            mBytes[start + index] = static_cast<std::byte>(size >> (24 - 8 * index) & 0xFFU);
        }
    }

    /// The same, beginning with a version and 24 bits of flags.
    template <class Content>
    void FullAtom(std::string_view type, std::uint32_t version, std::uint32_t flags, Content&& content)
    {
        Atom(type, [&] {
            Put32(version << 24U | flags);
            std::forward<Content>(content)();
        });
    }

    [[nodiscard]] std::size_t Size() const noexcept { return mBytes.size(); }
    [[nodiscard]] std::vector<std::byte> Take() noexcept { return std::move(mBytes); }

private:
    void PutBytes(std::uint64_t value, unsigned count)
    {
        std::size_t place = mBytes.size();
        mBytes.resize(place + count);
        while (count-- > 0) {
            mBytes[place++] = static_cast<std::byte>(value >> (8 * count) & 0xFFU);
        }
    }

    std::vector<std::byte> mBytes;
};

} // namespace tessel::exporting
