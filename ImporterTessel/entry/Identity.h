/// How the plug-in presents itself to the host: said by its property list and by its identity callback alike.
#pragma once

#include <cstdint>

// Macros, because the property list is made of literals.
/// Localisation key; its default display text follows the equals sign.
#define TESSEL_NAME_KEY "$$$/Corvid/Importers/ImporterTessel/Name=Tessel Test Tool"
#define TESSEL_MATCH_NAME "ZOKE Tessel"

namespace ImporterTessel {

inline constexpr char kNameKey[] = TESSEL_NAME_KEY;
inline constexpr char kMatchName[] = TESSEL_MATCH_NAME;
inline constexpr char kKind[] = "Importer";

/// Four characters as the integer whose big-endian reading they are.
[[nodiscard]] constexpr std::uint32_t FourCharacterCode(const char (&characters)[5]) noexcept
{
    std::uint32_t code = 0;
    for (int index = 0; index < 4; ++index) {
        code = code << 8 | static_cast<std::uint8_t>(characters[index]);
    }
    return code;
}

inline constexpr std::uint32_t kImporterCode = FourCharacterCode("IMPT");

} // namespace ImporterTessel
