#include "RecordBytes.h"

#include <ImporterTessel/entry/Entries.h>
#include <kestrel/importabi/Records.h>
#include <kestrel/qelcore/debug/DebugDatabase.h>

#include <gtest/gtest.h>
#include <support/ScopedVariable.h>

#include <cstdint>
#include <optional>
#include <string>

namespace {

constexpr const char* kGateKey = "ML.LoadTestingPluginsAtStartup";

class StartUpGate : public testing::Test {
protected:
    void SetGate(const std::string& text)
    {
        mGate.reset(); // overrides end in the opposite order of their beginning
        mGate.emplace(kGateKey, text);
    }

private:
    // The database file of the user who runs the test must have no effect.
    test::ScopedVariable mDatabase{"KESTREL_DEBUG_DATABASE", "/dev/null/absent"};
    std::optional<qelcore::debug::ScopedOverride> mGate;
};

TEST_F(StartUpGate, TextTrueOpensTheGateAndWritesTheseFieldsAndNoOthers)
{
    SetGate("true");
    auto record = FilledRecord<ksStartUpRec>();
    std::vector<std::uint8_t> expected = BytesOf(record);
    expected[0] = 'L';
    expected[1] = 'S';
    expected[2] = 'S';
    expected[3] = 'T';
    for (const std::size_t offset : {28U, 32U, 36U, 44U, 52U, 60U, 72U}) {
        Put(expected, offset, std::uint32_t{1});
    }
    EXPECT_EQ(xImportEntry(0, nullptr, &record, nullptr), 0);
    EXPECT_EQ(BytesOf(record), expected);
}

TEST_F(StartUpGate, AbsentKeyKeepsTheGateShut)
{
    auto record = FilledRecord<ksStartUpRec>();
    EXPECT_EQ(xImportEntry(0, nullptr, &record, nullptr), 3);
    EXPECT_EQ(BytesOf(record), BytesOf(FilledRecord<ksStartUpRec>()));
}

TEST_F(StartUpGate, AnyOtherTextKeepsTheGateShut)
{
    for (const std::string& text :
         {std::string("True"), std::string("TRUE"), std::string("1"), std::string("yes"), std::string("false"),
          std::string(), std::string("true "), std::string(" true"), std::string("truer"), std::string("tru"),
          std::string("true\0", 5)}) {
        SetGate(text);
        auto record = FilledRecord<ksStartUpRec>();
        EXPECT_EQ(xImportEntry(0, nullptr, &record, nullptr), 3) << '"' << text << '"';
        EXPECT_EQ(BytesOf(record), BytesOf(FilledRecord<ksStartUpRec>())) << '"' << text << '"';
    }
}

TEST_F(StartUpGate, NullRecordIsAFailureBehindAnOpenGateOnly)
{
    EXPECT_EQ(xImportEntry(0, nullptr, nullptr, nullptr), 3);
    SetGate("true");
    EXPECT_EQ(xImportEntry(0, nullptr, nullptr, nullptr), 5);
}

TEST(FileType, Index0WritesTheseFieldsAndNoOthers)
{
    auto record = FilledRecord<ksFileTypeRec>();
    std::vector<std::uint8_t> expected = BytesOf(record);
    Put(expected, 0, std::uint32_t{0x5453534C}); // TSSL
    Put(expected, 4, std::uint64_t{0xE008});     // flags, and the 0 at byte 8
    std::fill_n(expected.begin() + 12, 256, std::uint8_t{0});
    std::memcpy(expected.data() + 12, "Tessel", 6);
    std::memcpy(expected.data() + 300, "tessel\0\0\0", 9);
    Put(expected, 760, std::uint32_t{0});
    EXPECT_EQ(xImportEntry(14, nullptr, nullptr, &record), 0);
    EXPECT_EQ(BytesOf(record), expected);
}

TEST(FileType, AnyOtherIndexEndsTheListAndWritesNothing)
{
    for (const std::uintptr_t index : {std::uintptr_t{1}, std::uintptr_t{2}, std::uintptr_t{0xFFFFFFFF}}) {
        auto record = FilledRecord<ksFileTypeRec>();
        EXPECT_EQ(xImportEntry(14, nullptr, reinterpret_cast<void*>(index), &record), 301);
        EXPECT_EQ(BytesOf(record), BytesOf(FilledRecord<ksFileTypeRec>()));
    }
}

} // namespace
