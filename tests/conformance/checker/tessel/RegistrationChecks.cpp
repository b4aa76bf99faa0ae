/// Identity: the property list in the file, the two small resources, the identity callback.

#include "../host/ForeignHost.h"
#include "TesselChecks.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace conformance {

namespace {

constexpr char kNameKey[] = "$$$/Corvid/Importers/ImporterTessel/Name=Tessel Test Tool";

/// A property as a list holds it: codes as four characters in reading order.
struct Property {
    std::string key;
    std::string data; ///< with all of its padding
};

std::string Reversed(std::string fourCharacters)
{
    return {fourCharacters.rbegin(), fourCharacters.rend()};
}

/// At least one zero behind the data, then up to a multiple of four.
std::string Padded(std::string data)
{
    data.push_back('\0');
    while (data.size() % 4 != 0) {
        data.push_back('\0');
    }
    return data;
}

std::string Pascal(const std::string& text)
{
    return static_cast<char>(text.size()) + text;
}

std::string LittleEndian(std::uint32_t value, int bytes)
{
    std::string text;
    for (int at = 0; at < bytes; ++at) {
        text.push_back(static_cast<char>(value >> (8 * at)));
    }
    return text;
}

void PropertyList(Plugin& plugin)
{
    const std::vector<Property> properties = {
        {"kind", Padded(Reversed("IMPT"))},
        {"name", Padded(Pascal(kNameKey))},
        {"eMNA", Padded(Pascal("ZOKE Tessel"))},
        {"catg", Padded(Pascal("Importer"))},
        {"wx86", Padded(std::string("xFilter\0", 8))},
        {"8664", Padded(std::string("xFilter\0", 8))},
        {"ePVR", Padded(LittleEndian(2, 2) + LittleEndian(1, 2))},
        {"eSVR", Padded(LittleEndian(3, 4))},
        {"eVER", Padded(std::string("\0\0\x30\0", 4))},
    };
    std::string expected = LittleEndian(1, 2) + LittleEndian(0, 4) + LittleEndian(9, 4);
    for (const Property& property : properties) {
        expected += Reversed("5QRN") + Reversed(property.key) + LittleEndian(0, 4) +
                    LittleEndian(static_cast<std::uint32_t>(property.data.size()), 4) + property.data;
    }
    const auto bytes = plugin.Section(kPropertyListSection);
    Expect(bytes.has_value(), "the file has no property list");
    const auto differs =
        std::mismatch(bytes->begin(), bytes->end(), expected.begin(), expected.end(),
                      [](std::uint8_t a, char b) { return a == static_cast<std::uint8_t>(b); });
    Expect(differs.first == bytes->end() && differs.second == expected.end(),
           "the property list of " + std::to_string(bytes->size()) + " bytes, where " +
               std::to_string(expected.size()) + " are right, differs at byte " +
               std::to_string(differs.first - bytes->begin()));
}

void SmallResources(Plugin& plugin)
{
    const auto kind = plugin.Section(kImporterKindSection);
    Expect(kind && std::string(kind->begin(), kind->end()) == std::string("\0\0xiqp", 6), "IMPT 1000 is wrong");
    const auto type = plugin.Section(kPluginTypeSection);
    Expect(type && std::string(type->begin(), type->end()) == std::string("\0\0TPMI", 6), "TYPE 1000 is wrong");
}

struct Identity {
    void* context = nullptr;
    std::string texts;
    std::uint32_t code = 0;
    std::int64_t numbers = 0;
    int calls = 0;
};

Identity& Seen()
{
    static Identity identity;
    return identity;
}

std::int32_t NoteIdentity(void* context, const char* nameKey, const char* matchName, const char* kind,
                          const char* text, std::uint32_t code, std::int32_t value13, std::int32_t value29,
                          std::int64_t zero)
{
    Identity& seen = Seen();
    seen.context = context;
    seen.texts = std::string(nameKey) + "|" + matchName + "|" + kind + "|" + text;
    seen.code = code;
    seen.numbers = value13 * 1'000'000LL + value29 * 1000LL + zero;
    ++seen.calls;
    return -5; // not examined
}

void IdentityCallback(Plugin& plugin)
{
    int context = 0;
    plugin.DataEntry()(&context, NoteIdentity);
    const Identity& seen = Seen();
    ExpectEqual(seen.calls, 1, "calls");
    Expect(seen.context == &context, "the host's context did not come back");
    Expect(seen.texts == std::string(kNameKey) + "|ZOKE Tessel|Importer|",
           "the texts are wrong: " + seen.texts);
    ExpectEqual(seen.code, 0x494D5054, "the code");
    ExpectEqual(seen.numbers, 13'029'000, "13, 29 and 0");
}

void LayoutResources(Plugin& plugin)
{
    for (const char* prefix : {kLumenSectionPrefix, kSableSectionPrefix}) {
        const auto text = plugin.Section(std::string(prefix) + "ImporterTesselPrefs");
        Expect(text && !text->empty(), std::string("the file has no layout in ") + prefix);
        Expect(std::find(text->begin(), text->end(), 0) == text->end(), "the layout text holds a NUL");
    }
}

} // namespace

std::vector<Check> TesselRegistrationChecks()
{
    return {
        {"tessel.registration.property-list",
         "The property list is, byte for byte, a 10-byte header and nine properties", PropertyList},
        {"tessel.registration.small-resources",
         "The resources IMPT 1000 and TYPE 1000 hold their six bytes each", SmallResources},
        {"tessel.registration.identity", "The identity callback gets Tessel's names, code and numbers",
         IdentityCallback},
        {"tessel.registration.layouts", "The file carries the dialog's layout in both layout languages",
         LayoutResources},
    };
}

} // namespace conformance
