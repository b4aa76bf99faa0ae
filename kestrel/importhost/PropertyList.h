/// A plug-in's property list: what a host learns of a plug-in before it runs any of it.
///
/// The bytes come from a file of unknown origin, so the parser takes nothing on trust: every
/// length is checked before it is used, and a list that breaks one rule is refused as a whole.
#pragma once

#include <kestrel/qelcore/FourCharacterCode.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace importhost {

using qelcore::FourCharacterCode;

/// One property as it stands in the list, padding included.
struct Property {
    std::uint32_t vendor = 0;
    std::uint32_t key = 0;
    std::uint32_t id = 0;
    std::vector<std::uint8_t> data;
};

/// The properties that a host of this system understands.
struct PropertyList {
    std::uint32_t kindCode = 0; ///< "kind"
    std::string nameKey;        ///< "name"
    std::string matchName;      ///< "eMNA"
    std::string category;       ///< "catg"
    std::string entryNameX86;   ///< "wx86"; empty where the list has none
    std::string entryNameX64;   ///< "8664"; likewise
    std::vector<Property> all;  ///< every property in file order, those of other vendors too
};

/// Parses a list, all of it: an integer header, then one property after the other without gaps, nothing
/// behind the last.
///
/// A property's data ends in at least one zero byte and its length is a multiple of 4. Of this system's
/// own vendor code, "kind", "name", "eMNA" and "catg" must be there, no key may come twice, and texts must
/// be UTF-8 without control characters. Properties of other vendors are kept and not looked into.
///
/// @throws HostError  one line that names the property and the byte offset. Threads: [any-thread].
[[nodiscard]] PropertyList ParsePropertyList(std::span<const std::uint8_t> bytes);

} // namespace importhost
