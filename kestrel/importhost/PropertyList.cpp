#include "PropertyList.h"

#include "HostError.h"

#include <kestrel/qelcore/text/FourCharacterText.h>
#include <kestrel/qelcore/text/Unicode.h>

#include <algorithm>
#include <string_view>

namespace importhost {
namespace {

constexpr std::uint32_t kVendor = FourCharacterCode("5QRN");
constexpr std::size_t kPropertyHeaderBytes = 16;
/// A list of this kind has a handful of properties; the bound keeps a broken count from costing memory.
constexpr std::uint32_t kMostProperties = 1024;

std::string Quoted(std::uint32_t key)
{
    return '"' + qelcore::text::TextOfFourCharacters(key) + '"';
}

[[noreturn]] void Refuse(const std::string& what)
{
    throw HostError("property list: " + what);
}

/// Reads integers in order and refuses to pass the end.
class Reader {
public:
    explicit Reader(std::span<const std::uint8_t> bytes) : mBytes(bytes) {}

    [[nodiscard]] std::size_t Offset() const noexcept { return mOffset; }
    [[nodiscard]] std::size_t Left() const noexcept { return mBytes.size() - mOffset; }

    std::span<const std::uint8_t> Take(std::size_t count, const char* what)
    {
        if (Left() < count) {
            Refuse("ends inside " + std::string(what) + " at byte " + std::to_string(mOffset) + ", " +
                   std::to_string(count) + " bytes expected and " + std::to_string(Left()) + " left");
        }
        const auto taken = mBytes.subspan(mOffset, count);
        mOffset += count;
        return taken;
    }

    std::uint32_t Integer(std::size_t width, const char* what)
    {
        std::uint32_t value = 0;
        const auto bytes = Take(width, what);
        for (std::size_t i = width; i > 0; --i) {
            value = value << 8U | bytes[i - 1];
        }
        return value;
    }

private:
    std::span<const std::uint8_t> mBytes;
    std::size_t mOffset = 0;
};

Property ReadProperty(Reader& reader)
{
    Property property;
    property.vendor = reader.Integer(4, "a property's vendor code");
    property.key = reader.Integer(4, "a property's key");
    property.id = reader.Integer(4, "a property's id");
    const std::uint32_t length = reader.Integer(4, "a property's length");
    if (length % 4 != 0) {
        Refuse(Quoted(property.key) + " has a length of " + std::to_string(length) +
               ", a multiple of 4 expected");
    }
    const auto data = reader.Take(length, "a property's data");
    property.data.assign(data.begin(), data.end());
    return property;
}

/// The data must be `content` bytes, a zero, and zeros up to the next multiple of 4.
void CheckPadding(const Property& property, std::size_t content)
{
    const std::size_t expected = (content + 1 + 3) / 4 * 4;
    if (property.data.size() != expected) {
        Refuse(Quoted(property.key) + " has a length of " + std::to_string(property.data.size()) + ", " +
               std::to_string(expected) + " expected for " + std::to_string(content) + " bytes of content");
    }
    if (std::any_of(property.data.begin() + static_cast<std::ptrdiff_t>(content), property.data.end(),
                    [](std::uint8_t byte) { return byte != 0; })) {
        Refuse(Quoted(property.key) + " is not padded with zeros");
    }
}

std::string CheckedText(const Property& property, std::size_t begin, std::size_t length)
{
    std::string text(property.data.begin() + static_cast<std::ptrdiff_t>(begin),
                     property.data.begin() + static_cast<std::ptrdiff_t>(begin + length));
    const bool hasControl = std::any_of(text.begin(), text.end(), [](char character) {
        return static_cast<unsigned char>(character) < 0x20 || character == 0x7F;
    });
    if (text.empty() || hasControl || !qelcore::text::ToUTF16Strict(text)) {
        Refuse(Quoted(property.key) + " is not a text of UTF-8 without control characters");
    }
    return text;
}

std::string PascalText(const Property& property)
{
    if (property.data.empty()) {
        Refuse(Quoted(property.key) + " is empty, a counted text expected");
    }
    const std::size_t count = property.data[0];
    CheckPadding(property, count + 1);
    return CheckedText(property, 1, count);
}

std::string CText(const Property& property)
{
    const auto end = std::find(property.data.begin(), property.data.end(), std::uint8_t{0});
    if (end == property.data.end()) {
        Refuse(Quoted(property.key) + " is not closed by a zero byte");
    }
    const auto length = static_cast<std::size_t>(end - property.data.begin());
    // The text's own closing zero is content: the padding's one zero byte comes behind it.
    CheckPadding(property, length + 1);
    return CheckedText(property, 0, length);
}

std::uint32_t Code(const Property& property)
{
    CheckPadding(property, 4);
    return Reader(property.data).Integer(4, "a code");
}

void Understand(const Property& property, PropertyList& list)
{
    switch (property.key) {
    case FourCharacterCode("kind"):
        list.kindCode = Code(property);
        break;
    case FourCharacterCode("name"):
        list.nameKey = PascalText(property);
        break;
    case FourCharacterCode("eMNA"):
        list.matchName = PascalText(property);
        break;
    case FourCharacterCode("catg"):
        list.category = PascalText(property);
        break;
    case FourCharacterCode("wx86"):
        list.entryNameX86 = CText(property);
        break;
    case FourCharacterCode("8664"):
        list.entryNameX64 = CText(property);
        break;
    case FourCharacterCode("ePVR"):
    case FourCharacterCode("eSVR"):
    case FourCharacterCode("eVER"):
        CheckPadding(property, 4);
        break;
    default:
        break;
    }
}

bool Has(const PropertyList& list, std::uint32_t key)
{
    return std::any_of(list.all.begin(), list.all.end(), [key](const Property& property) {
        return property.vendor == kVendor && property.key == key;
    });
}

} // namespace

PropertyList ParsePropertyList(std::span<const std::uint8_t> bytes)
{
    Reader reader(bytes);
    const std::uint32_t version = reader.Integer(2, "the header");
    const std::uint32_t reserved = reader.Integer(4, "the header");
    const std::uint32_t count = reader.Integer(4, "the header");
    if (version != 1 || reserved != 0) {
        Refuse("version " + std::to_string(version) + "." + std::to_string(reserved) + ", 1.0 expected");
    }
    if (count > kMostProperties || count > reader.Left() / kPropertyHeaderBytes) {
        Refuse(std::to_string(count) + " properties announced in " + std::to_string(bytes.size()) + " bytes");
    }

    PropertyList list;
    list.all.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        Property property = ReadProperty(reader);
        if (property.vendor == kVendor) {
            if (Has(list, property.key)) {
                Refuse(Quoted(property.key) + " comes twice");
            }
            Understand(property, list);
        }
        list.all.push_back(std::move(property));
    }
    if (reader.Left() != 0) {
        Refuse(std::to_string(reader.Left()) + " bytes behind the last property");
    }
    for (const std::uint32_t key : {FourCharacterCode("kind"), FourCharacterCode("name"),
                                    FourCharacterCode("eMNA"), FourCharacterCode("catg")}) {
        if (!Has(list, key)) {
            Refuse(Quoted(key) + " is missing");
        }
    }
    return list;
}

} // namespace importhost
