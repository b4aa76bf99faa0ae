/// The file itself, and what it says about itself before any request.

#include "Clip.h"

#include <kestrel/importabi/Entries.h>

#include <algorithm>

namespace conformance {

namespace {

void Loads(Plugin& /*plugin*/)
{
    // Loading it and finding both entries is done before every check.
}

/// The properties of a list, each a key of four characters in reading order and its data.
struct PropertyList {
    std::vector<std::pair<std::string, std::string>> properties;

    [[nodiscard]] std::string Data(const std::string& key) const
    {
        const auto found = std::find_if(properties.begin(), properties.end(),
                                        [&key](const auto& property) { return property.first == key; });
        Expect(found != properties.end(), "the property list has no property \"" + key + "\"");
        return found->second;
    }
    /// A text that begins with the count of its bytes.
    [[nodiscard]] std::string Text(const std::string& key) const
    {
        const std::string data = Data(key);
        const std::size_t length = data.empty() ? 0 : static_cast<unsigned char>(data[0]);
        Expect(length > 0 && length < data.size(), "the property \"" + key + "\" is no text");
        return data.substr(1, length);
    }
};

/// Reads little-endian numbers and bytes one after another, never past the end.
class Reader {
public:
    explicit Reader(std::string bytes) : mBytes(std::move(bytes)) {}

    [[nodiscard]] std::string Bytes(std::size_t count, const std::string& what)
    {
        Expect(count <= mBytes.size() - mAt, "the property list ends inside " + what);
        mAt += count;
        return mBytes.substr(mAt - count, count);
    }
    [[nodiscard]] std::uint32_t Number(std::size_t bytes, const std::string& what)
    {
        const std::string text = Bytes(bytes, what);
        std::uint32_t number = 0;
        for (std::size_t at = bytes; at-- > 0;) {
            number = number << 8U | static_cast<unsigned char>(text[at]);
        }
        return number;
    }
    [[nodiscard]] bool AtEnd() const noexcept { return mAt == mBytes.size(); }

private:
    std::string mBytes;
    std::size_t mAt = 0;
};

PropertyList ReadPropertyList(const Plugin& plugin)
{
    const auto section = plugin.Section(kPropertyListSection);
    Expect(section.has_value(), std::string("the file has no section ") + kPropertyListSection);
    Reader reader(std::string(section->begin(), section->end()));
    ExpectEqual(reader.Number(2, "its version"), 1, "the version of the property list");
    ExpectEqual(reader.Number(4, "its header"), 0, "the second number of the property list");
    const std::uint32_t count = reader.Number(4, "its count");
    PropertyList list;
    for (std::uint32_t index = 0; index < count; ++index) {
        const std::string what = "property " + std::to_string(index + 1) + " of " + std::to_string(count);
        (void)reader.Bytes(4, what); // the vendor
        std::string key = reader.Bytes(4, what);
        std::reverse(key.begin(), key.end());
        ExpectEqual(reader.Number(4, what), 0, "the id of " + what);
        const std::uint32_t length = reader.Number(4, what);
        ExpectEqual(length % 4, 0, "the remainder of a division by 4 of the length of " + what);
        list.properties.emplace_back(key, reader.Bytes(length, what));
    }
    Expect(reader.AtEnd(), "bytes follow the last property of the property list");
    return list;
}

void HasPropertyList(Plugin& plugin)
{
    const PropertyList list = ReadPropertyList(plugin);
    Expect(list.Data("kind").rfind("TPMI", 0) == 0, "the property \"kind\" is not IMPT, stored byte-reversed");
    for (const char* key : {"name", "eMNA", "catg"}) {
        (void)list.Text(key);
    }
}

struct Told {
    int calls = 0;
    std::string name;
    std::string matchName;
    std::string kind;
    bool hasText = false;
    std::uint32_t code = 0;
};

std::int32_t Collect(void* context, const char* nameKey, const char* matchName, const char* kind,
                     const char* text, std::uint32_t code, std::int32_t /*value13*/, std::int32_t /*value29*/,
                     std::int64_t /*zero*/)
{
    const auto copy = [](const char* characters) { return characters != nullptr ? characters : "(null)"; };
    if (context != nullptr) {
        auto& told = *static_cast<Told*>(context);
        ++told.calls;
        told.name = copy(nameKey);
        told.matchName = copy(matchName);
        told.kind = copy(kind);
        told.hasText = text != nullptr;
        told.code = code;
    }
    return -5; // not examined
}

void IdentityAgrees(Plugin& plugin)
{
    Told told;
    plugin.DataEntry()(&told, Collect);
    ExpectEqual(told.calls, 1, "calls of the identity callback with the host's context");
    ExpectEqual(told.code, 0x494D5054, "the code that the callback was given (IMPT)");
    Expect(told.hasText, "the fifth argument of the callback, a text, is null");
    const PropertyList list = ReadPropertyList(plugin);
    for (const auto& [key, said] :
         {std::pair{"name", told.name}, {"eMNA", told.matchName}, {"catg", told.kind}}) {
        const std::string listed = list.Text(key);
        Expect(listed == said, "the callback says \"" + said + "\" where the property list says \"" + listed +
                                   "\" (" + key + ")");
    }
}

} // namespace

std::vector<Check> LibraryChecks()
{
    return {{"library.loads", "The file is a library that loads and exports both entries", Loads}};
}

std::vector<Check> RegistrationChecks()
{
    return {
        {"registration.property-list",
         "The file carries a complete property list with the code IMPT, a name, a match name and a kind",
         HasPropertyList},
        {"registration.identity",
         "PluginDataEntryFunction calls back once, with the host's context and the property list's names",
         IdentityAgrees},
    };
}

} // namespace conformance
