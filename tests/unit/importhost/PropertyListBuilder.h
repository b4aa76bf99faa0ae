/// Property lists as bytes, well-formed unless a test bends them.
#pragma once

#include <kestrel/importhost/PropertyList.h>

#include <cstdint>
#include <string_view>
#include <vector>

namespace importhosttests {

using Bytes = std::vector<std::uint8_t>;

inline void Append(Bytes& bytes, std::uint32_t value, int width)
{
    for (int i = 0; i < width; ++i) {
        bytes.push_back(static_cast<std::uint8_t>(value >> static_cast<unsigned>(8 * i)));
    }
}

/// At least one zero behind the content, then zeros up to a multiple of 4.
inline Bytes Padded(Bytes content)
{
    do {
        content.push_back(0);
    } while (content.size() % 4 != 0);
    return content;
}

inline Bytes Pascal(std::string_view text)
{
    Bytes bytes{static_cast<std::uint8_t>(text.size())};
    bytes.insert(bytes.end(), text.begin(), text.end());
    return Padded(bytes);
}

inline Bytes CText(std::string_view text)
{
    Bytes bytes(text.begin(), text.end());
    bytes.push_back(0);
    return Padded(bytes);
}

inline Bytes Code(std::uint32_t code)
{
    Bytes bytes;
    Append(bytes, code, 4);
    return Padded(bytes);
}

struct Entry {
    std::uint32_t key;
    Bytes data;
    std::uint32_t vendor = importhost::FourCharacterCode("5QRN");
};

inline std::vector<Entry> UsualEntries()
{
    using importhost::FourCharacterCode;
    return {{FourCharacterCode("kind"), Code(FourCharacterCode("IMPT"))},
            {FourCharacterCode("name"), Pascal("$$$/Tests/Name=Test Importer")},
            {FourCharacterCode("eMNA"), Pascal("TEST Importer")},
            {FourCharacterCode("catg"), Pascal("Importer")},
            {FourCharacterCode("wx86"), CText("xFilter")},
            {FourCharacterCode("8664"), CText("xFilter")},
            {FourCharacterCode("ePVR"), Code(0x00010002)}};
}

inline Bytes List(const std::vector<Entry>& entries)
{
    Bytes bytes;
    Append(bytes, 1, 2);
    Append(bytes, 0, 4);
    Append(bytes, static_cast<std::uint32_t>(entries.size()), 4);
    for (const Entry& entry : entries) {
        Append(bytes, entry.vendor, 4);
        Append(bytes, entry.key, 4);
        Append(bytes, 0, 4);
        Append(bytes, static_cast<std::uint32_t>(entry.data.size()), 4);
        bytes.insert(bytes.end(), entry.data.begin(), entry.data.end());
    }
    return bytes;
}

} // namespace importhosttests
