#include "PropertyListBuilder.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/PropertyList.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using importhost::FourCharacterCode;
using importhost::HostError;
using importhost::ParsePropertyList;
using namespace importhosttests;

constexpr std::size_t kHeader = 10;

/// The line that refuses the list; empty where it is taken.
std::string Refusal(const Bytes& bytes)
{
    try {
        (void)ParsePropertyList(bytes);
        return {};
    } catch (const HostError& error) {
        return error.what();
    }
}

void ExpectRefusal(const Bytes& bytes, const std::string& says)
{
    const std::string line = Refusal(bytes);
    EXPECT_NE(line.find(says), std::string::npos) << "refused with: " << line;
    EXPECT_EQ(line.find('\n'), std::string::npos) << line;
}

/// The usual list with one entry's data replaced.
Bytes WithData(const char (&key)[5], const Bytes& data)
{
    auto entries = UsualEntries();
    for (Entry& entry : entries) {
        if (entry.key == FourCharacterCode(key)) {
            entry.data = data;
        }
    }
    return List(entries);
}

TEST(PropertyList, AWellFormedListGivesItsTexts)
{
    const auto list = ParsePropertyList(List(UsualEntries()));
    EXPECT_EQ(list.kindCode, 0x494D5054U);
    EXPECT_EQ(list.nameKey, "$$$/Tests/Name=Test Importer");
    EXPECT_EQ(list.matchName, "TEST Importer");
    EXPECT_EQ(list.category, "Importer");
    EXPECT_EQ(list.entryNameX86, "xFilter");
    EXPECT_EQ(list.entryNameX64, "xFilter");
    EXPECT_EQ(list.all.size(), UsualEntries().size());
}

TEST(PropertyList, EveryProperPrefixIsRefused)
{
    const Bytes whole = List(UsualEntries());
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_NE(Refusal(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size))), "")
            << "taken after " << size << " of " << whole.size() << " bytes";
    }
}

TEST(PropertyList, AnyOneByteChangedIsTakenOrRefusedInOneLine)
{
    const Bytes whole = List(UsualEntries());
    for (std::size_t place = 0; place < whole.size(); ++place) {
        for (int value = 0; value < 256; ++value) {
            Bytes changed = whole;
            changed[place] = static_cast<std::uint8_t>(value);
            const std::string line = Refusal(changed);
            ASSERT_EQ(line.find('\n'), std::string::npos) << "byte " << place << " = " << value;
        }
    }
}

TEST(PropertyList, BytesBehindTheLastPropertyAreRefused)
{
    Bytes bytes = List(UsualEntries());
    bytes.insert(bytes.end(), 4, 0);
    ExpectRefusal(bytes, "4 bytes behind the last property");
}

TEST(PropertyList, OtherVersionsAreRefused)
{
    Bytes bytes = List(UsualEntries());
    bytes[0] = 2;
    ExpectRefusal(bytes, "version 2.0");
    bytes[0] = 1;
    bytes[2] = 1;
    ExpectRefusal(bytes, "version 1.1");
}

TEST(PropertyList, ACountThatTheBytesCannotHoldIsRefusedBeforeItCostsMemory)
{
    Bytes bytes = List(UsualEntries());
    for (std::size_t i = 6; i < kHeader; ++i) {
        bytes[i] = 0xFF;
    }
    ExpectRefusal(bytes, "4294967295 properties");
}

TEST(PropertyList, ALengthPastTheEndIsRefused)
{
    Bytes bytes = List(UsualEntries());
    for (std::size_t i = 0; i < 4; ++i) {
        bytes[kHeader + 12 + i] = i == 0 ? 0xFC : 0xFF;
    }
    ExpectRefusal(bytes, "ends inside a property's data");
}

TEST(PropertyList, ALengthThatIsNoMultipleOfFourIsRefused)
{
    ExpectRefusal(WithData("catg", Bytes{1, 'I', 0}), "multiple of 4");
}

TEST(PropertyList, DataWithoutAZeroByteAtItsEndIsRefused)
{
    // The count and three characters fill the four bytes.
    ExpectRefusal(WithData("catg", Bytes{3, 'I', 'm', 'p'}), "8 expected for 4 bytes");
    ExpectRefusal(WithData("kind", Bytes{'T', 'P', 'M', 'I'}), "8 expected for 4 bytes");
    ExpectRefusal(WithData("wx86", Bytes{'a', 'b', 'c', 0}), "8 expected for 4 bytes");
    ExpectRefusal(WithData("wx86", Bytes{'a', 'b', 'c', 'd'}), "not closed");
}

TEST(PropertyList, MorePaddingThanNeededIsRefused)
{
    Bytes data = Pascal("Importer");
    data.insert(data.end(), 4, 0);
    ExpectRefusal(WithData("catg", data), "12 expected for 9 bytes");
}

TEST(PropertyList, PaddingOtherThanZeroIsRefused)
{
    Bytes data = Pascal("Importer");
    data.back() = 1;
    ExpectRefusal(WithData("catg", data), "not padded with zeros");
}

TEST(PropertyList, ACountLongerThanTheDataIsRefused)
{
    ExpectRefusal(WithData("eMNA", Bytes{200, 'a', 0, 0}), "expected for 201 bytes");
}

TEST(PropertyList, TextsThatAreNotUTF8OrHoldControlCharactersAreRefused)
{
    ExpectRefusal(WithData("eMNA", Pascal("a\xFF")), "UTF-8");
    ExpectRefusal(WithData("eMNA", Pascal("a\nb")), "control");
    ExpectRefusal(WithData("eMNA", Pascal("")), "UTF-8");
    ExpectRefusal(WithData("eMNA", Bytes{}), "empty");
}

TEST(PropertyList, AKeyThatComesTwiceIsRefused)
{
    auto entries = UsualEntries();
    entries.push_back(entries[1]);
    ExpectRefusal(List(entries), "\"name\" comes twice");
}

TEST(PropertyList, EachNeededKeyIsMissed)
{
    for (std::size_t i = 0; i < 4; ++i) {
        auto entries = UsualEntries();
        entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(i));
        ExpectRefusal(List(entries), "is missing");
    }
}

TEST(PropertyList, OtherVendorsPropertiesAreKeptAndNotLookedInto)
{
    auto entries = UsualEntries();
    entries.push_back({FourCharacterCode("name"), Bytes{0xFF, 0xFF, 0xFF, 0xFF}, FourCharacterCode("ABCD")});
    const auto list = ParsePropertyList(List(entries));
    EXPECT_EQ(list.nameKey, "$$$/Tests/Name=Test Importer");
    EXPECT_EQ(list.all.back().data, (Bytes{0xFF, 0xFF, 0xFF, 0xFF}));
}

} // namespace
