#include <ImporterTessel/entry/Entries.h>
#include <ImporterTessel/entry/StaticRegistration.h>
#include <kestrel/brindle/StaticPlugins.h>
#include <kestrel/qelcore/resources/ResourceFile.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <regex>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

void Append(Bytes& bytes, const std::string& text)
{
    bytes.insert(bytes.end(), text.begin(), text.end());
}

/// One property: vendor and key with their bytes reversed, the id 0, the length and the data.
void AppendProperty(Bytes& bytes, const std::string& reversedKey, const std::string& paddedData)
{
    Append(bytes, "NRQ5" + reversedKey + std::string(4, '\0'));
    bytes.push_back(static_cast<std::uint8_t>(paddedData.size()));
    Append(bytes, std::string(3, '\0') + paddedData);
}

/// The list as its layout has it, laid out by hand: padding is written out, not computed.
Bytes ExpectedPropertyList()
{
    using namespace std::string_literals;
    Bytes bytes;
    Append(bytes, "\x01\0"s + "\0\0\0\0"s + "\x09\0\0\0"s);
    AppendProperty(bytes, "dnik", "TPMI\0\0\0\0"s);
    // 57 characters and their count make 58, so two zeros.
    AppendProperty(bytes, "eman", "\x39$$$/Corvid/Importers/ImporterTessel/Name=Tessel Test Tool\0\0"s);
    // 11 characters and their count make 12, so four zeros.
    AppendProperty(bytes, "ANMe", "\x0BZOKE Tessel\0\0\0\0"s);
    // 8 characters and their count make 9, so three zeros.
    AppendProperty(bytes, "gtac", "\x08Importer\0\0\0"s);
    // 7 characters and their NUL make 8, so four zeros more.
    AppendProperty(bytes, "68xw", "xFilter\0\0\0\0\0"s);
    AppendProperty(bytes, "4668", "xFilter\0\0\0\0\0"s);
    AppendProperty(bytes, "RVPe", "\x02\0\x01\0\0\0\0\0"s);
    AppendProperty(bytes, "RVSe", "\x03\0\0\0\0\0\0\0"s);
    AppendProperty(bytes, "REVe", "\0\0\x30\0\0\0\0\0"s);
    return bytes;
}

std::optional<Bytes> Resource(const std::string& section)
{
    return qelcore::resources::ReadResource(TESSEL_PLUGIN, section);
}

Bytes FileBytes(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(stream), {});
}

/// One call of the identity callback.
struct Identity {
    void* hostContext = nullptr;
    std::vector<std::string> texts;
    std::uint32_t code = 0;
    std::int32_t value13 = 0;
    std::int32_t value29 = 0;
    std::int64_t zero = -1;
    int calls = 0;
};

std::int32_t Record(void* hostContext, const char* nameKey, const char* matchName, const char* kind,
                    const char* text, std::uint32_t code, std::int32_t value13, std::int32_t value29,
                    std::int64_t zero)
{
    auto& identity = *static_cast<Identity*>(hostContext);
    identity = {hostContext,       {nameKey, matchName, kind, text}, code, value13, value29, zero,
                identity.calls + 1};
    return -1;
}

} // namespace

TEST(PluginFile, CarriesThePropertyListAsOneSection)
{
    EXPECT_EQ(Resource(".ksres.PIPL.16000"), ExpectedPropertyList());
}

TEST(PluginFile, CarriesTheTwoSmallResources)
{
    EXPECT_EQ(Resource(".ksres.IMPT.1000"), (Bytes{0, 0, 'x', 'i', 'q', 'p'}));
    EXPECT_EQ(Resource(".ksres.TYPE.1000"), (Bytes{0, 0, 'T', 'P', 'M', 'I'}));
}

TEST(PluginFile, CarriesBothLayoutTextsByteForByte)
{
    const std::filesystem::path folder(TESSEL_RESOURCES);
    EXPECT_EQ(Resource(".ksres.LUMEN.ImporterTesselPrefs"), FileBytes(folder / "ImporterTesselPrefs.lumen"));
    EXPECT_EQ(Resource(".ksres.SABLE.ImporterTesselPrefs"), FileBytes(folder / "ImporterTesselPrefs.sable"));
}

TEST(IdentityCallback, IsCalledOnceWithWhatThePropertyListSays)
{
    Identity identity;
    PluginDataEntryFunction(&identity, &Record);
    EXPECT_EQ(identity.calls, 1);
    EXPECT_EQ(identity.hostContext, &identity);
    EXPECT_EQ(identity.texts,
              (std::vector<std::string>{"$$$/Corvid/Importers/ImporterTessel/Name=Tessel Test Tool",
                                        "ZOKE Tessel", "Importer", ""}));
    EXPECT_EQ(identity.code, 0x494D5054U);
    EXPECT_EQ(identity.value13, 13);
    EXPECT_EQ(identity.value29, 29);
    EXPECT_EQ(identity.zero, 0);
}

TEST(IdentityCallback, MayBeNull)
{
    PluginDataEntryFunction(nullptr, nullptr);
}

TEST(StaticRegistration, HandsOverNineEntriesOfWhichSevenAreZero)
{
    ImporterTessel::RegisterStatically();
    const std::vector<BR::StaticPlugin> plugins = BR::RegisteredStaticPlugins();
    ASSERT_EQ(plugins.size(), 1U);
    const BR::StaticPlugin& plugin = plugins[0];
    EXPECT_EQ(plugin.type, 6);
    EXPECT_EQ(plugin.name, "ImporterTessel");
    ASSERT_EQ(plugin.entries.size(), 9U);
    EXPECT_EQ(plugin.entries[0].function, reinterpret_cast<void (*)()>(&xImportEntry));
    EXPECT_STREQ(plugin.entries[0].name, "xImportEntry");
    EXPECT_EQ(plugin.entries[1].function, reinterpret_cast<void (*)()>(&PluginDataEntryFunction));
    EXPECT_STREQ(plugin.entries[1].name, "PluginDataEntryFunction");
    for (std::size_t entry = 2; entry < plugin.entries.size(); ++entry) {
        EXPECT_EQ(plugin.entries[entry].function, nullptr);
        EXPECT_EQ(plugin.entries[entry].name, nullptr);
    }
    EXPECT_TRUE(std::regex_match(plugin.buildDate, std::regex("[A-Z][a-z]{2} [ 1-3][0-9] [0-9]{4}")))
        << plugin.buildDate;
    EXPECT_TRUE(std::regex_match(plugin.buildTime, std::regex("[0-2][0-9]:[0-5][0-9]:[0-6][0-9]")))
        << plugin.buildTime;
}
