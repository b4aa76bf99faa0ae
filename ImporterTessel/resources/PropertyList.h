/// The plug-in's property list, from which the host learns what the library is without running it.
///
/// Layout, all integers little-endian, four-character codes with their bytes reversed: a 16-bit version (1), a
/// 32-bit 0 and the 32-bit number of properties; then the properties, each a vendor code, a key, a 32-bit id
/// (0), the 32-bit length of its data, and the data. Data is followed by at least one zero byte and then
/// padded with zeros to a multiple of four, which its length counts.
#pragma once

#include <ImporterTessel/entry/Identity.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ImporterTessel::resources {

/// Writes a property list byte by byte at compile time; with no room it only counts.
class PropertyListWriter {
public:
    constexpr explicit PropertyListWriter(std::uint8_t* bytes = nullptr) noexcept : mBytes(bytes) {}

    constexpr void Header(std::uint32_t propertyCount) noexcept
    {
        Integer(1, 2);
        Integer(0, 4);
        Integer(propertyCount, 4);
    }

    /// A text behind its length in one byte.
    constexpr void PascalText(std::uint32_t key, std::string_view text) noexcept
    {
        Begin(key, 1 + text.size());
        Integer(text.size(), 1);
        Text(text);
        End();
    }

    /// A text before its NUL.
    constexpr void CText(std::uint32_t key, std::string_view text) noexcept
    {
        Begin(key, text.size() + 1);
        Text(text);
        Integer(0, 1);
        End();
    }

    constexpr void Code(std::uint32_t key, std::uint32_t code) noexcept { Integers(key, code, 4); }
    constexpr void Value32(std::uint32_t key, std::uint32_t value) noexcept { Integers(key, value, 4); }

    constexpr void TwoValues16(std::uint32_t key, std::uint16_t first, std::uint16_t second) noexcept
    {
        Integers(key, std::uint32_t{second} << 16 | first, 4);
    }

    [[nodiscard]] constexpr std::size_t Size() const noexcept { return mSize; }

private:
    static constexpr std::uint32_t kVendor = FourCharacterCode("5QRN");

    constexpr void Integers(std::uint32_t key, std::uint32_t value, std::size_t width) noexcept
    {
        Begin(key, width);
        Integer(value, width);
        End();
    }

    constexpr void Begin(std::uint32_t key, std::size_t dataSize) noexcept
    {
        // At least one zero, then up to a multiple of four.
        const std::size_t paddedSize = (dataSize + 1 + 3) / 4 * 4;
        Integer(kVendor, 4);
        Integer(key, 4);
        Integer(0, 4);
        Integer(paddedSize, 4);
        mEnd = mSize + paddedSize;
    }

    constexpr void End() noexcept
    {
        while (mSize < mEnd) {
            Byte(0);
        }
    }

    constexpr void Text(std::string_view text) noexcept
    {
        for (const char character : text) {
            Byte(static_cast<std::uint8_t>(character));
        }
    }

    constexpr void Integer(std::uint64_t value, std::size_t width) noexcept
    {
        for (std::size_t index = 0; index < width; ++index) {
            Byte(static_cast<std::uint8_t>(value >> (8 * index)));
        }
    }

    constexpr void Byte(std::uint8_t byte) noexcept
    {
        if (mBytes != nullptr) {
            mBytes[mSize] = byte;
        }
        ++mSize;
    }

    std::uint8_t* mBytes;
    std::size_t mSize = 0;
    std::size_t mEnd = 0; ///< where the current property's data ends
};

/// Writes this plug-in's list.
constexpr void WritePropertyList(PropertyListWriter& writer) noexcept
{
    writer.Header(9);
    writer.Code(FourCharacterCode("kind"), kImporterCode);
    writer.PascalText(FourCharacterCode("name"), kNameKey);
    writer.PascalText(FourCharacterCode("eMNA"), kMatchName);
    writer.PascalText(FourCharacterCode("catg"), kKind);
    // Intended: not the name of the exported entry, which the host resolves by its fixed name.
    writer.CText(FourCharacterCode("wx86"), "xFilter");
    writer.CText(FourCharacterCode("8664"), "xFilter");
    writer.TwoValues16(FourCharacterCode("ePVR"), 2, 1);
    writer.Value32(FourCharacterCode("eSVR"), 3);
    writer.Value32(FourCharacterCode("eVER"), 0x0030'0000); // bytes 00 00 30 00
}

inline constexpr std::size_t kPropertyListSize = [] {
    PropertyListWriter counter;
    WritePropertyList(counter);
    return counter.Size();
}();

/// The serialised list.
[[nodiscard]] constexpr std::array<std::uint8_t, kPropertyListSize> MakePropertyList() noexcept
{
    std::array<std::uint8_t, kPropertyListSize> bytes{};
    PropertyListWriter writer(bytes.data());
    WritePropertyList(writer);
    return bytes;
}

} // namespace ImporterTessel::resources
