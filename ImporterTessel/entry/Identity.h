/// How the plug-in presents itself to the host, in its property list and in its identity callback.
#pragma once

#include <kestrel/qelcore/FourCharacterCode.h>

#include <cstdint>

// Macros, because the property list is made of literals.
/// Localisation key; its default display text follows the equals sign.
#define TESSEL_NAME_KEY "$$$/Corvid/Importers/ImporterTessel/Name=Tessel Test Tool"
#define TESSEL_MATCH_NAME "ZOKE Tessel"

namespace ImporterTessel {

inline constexpr char kNameKey[] = TESSEL_NAME_KEY;
inline constexpr char kMatchName[] = TESSEL_MATCH_NAME;
inline constexpr char kKind[] = "Importer";

inline constexpr std::uint32_t kImporterCode = qelcore::FourCharacterCode("IMPT");

} // namespace ImporterTessel
