#include "SizesInC.h"

#include <kestrel/importabi/Entries.h>
#include <kestrel/importabi/Records.h>
#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/importabi/Selectors.h>
#include <kestrel/importabi/StandardParameters.h>
#include <kestrel/importabi/Suites.h>

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <type_traits>

namespace {

TEST(ImportAbi, TypesHaveTheSameSizeInCAndInCxx)
{
#define SIZE_OF(type) TypeSize{#type, sizeof(type)},
    const std::array sizes = {IMPORT_ABI_TYPES(SIZE_OF)};
#undef SIZE_OF
    std::size_t count = 0;
    const TypeSize* const inC = SizesInC(&count);
    ASSERT_EQ(count, sizes.size());
    for (std::size_t i = 0; i < count; ++i) {
        EXPECT_STREQ(inC[i].name, sizes[i].name);
        EXPECT_EQ(inC[i].size, sizes[i].size) << sizes[i].name;
    }
}

TEST(ImportAbi, RecordsMayStandAtAnyAddress)
{
    // Packed: a host may place a record at any address.
    EXPECT_EQ(alignof(ksStdParms), 1U);
    EXPECT_EQ(alignof(ksServiceTables), 1U);
    EXPECT_EQ(alignof(ksStartUpRec), 1U);
    EXPECT_EQ(alignof(ksFileTypeRec), 1U);
    EXPECT_EQ(alignof(ksAudioRec), 1U);
    EXPECT_EQ(alignof(ksIndexedRec), 1U);
    EXPECT_EQ(alignof(ksFileAccessRec), 1U);
    EXPECT_EQ(alignof(ksOpenRec), 1U);
    EXPECT_EQ(alignof(ksFileInfoRec), 1U);
    EXPECT_EQ(alignof(ksSettingsExchangeRec), 1U);
    EXPECT_EQ(alignof(ksFrameSizeRec), 1U);
    EXPECT_EQ(alignof(ksFrameRec), 1U);
    EXPECT_EQ(alignof(ksColorRec), 1U);
}

TEST(ImportAbi, FieldsAreReadFromTheBytesOfTheirOffset)
{
    // Byte i of the record holds i, so that a little-endian field at offset n of four bytes reads
    // (n+3) << 24 | (n+2) << 16 | (n+1) << 8 | n.
    const auto fieldAt = [](std::uint32_t n) { return (n + 3) << 24 | (n + 2) << 16 | (n + 1) << 8 | n; };
    std::array<std::uint8_t, sizeof(ksFileInfoRec)> bytes{};
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(i);
    }
    ksFileInfoRec info{};
    std::memcpy(&info, bytes.data(), sizeof info);
    EXPECT_EQ(info.parNumerator, fieldAt(34));
    EXPECT_EQ(info.parDenominator, fieldAt(38));
    EXPECT_EQ(info.supportsColorManagement, fieldAt(98));
    EXPECT_EQ(static_cast<std::uint32_t>(info.frameWidth), fieldAt(2));
    EXPECT_EQ(static_cast<std::uint32_t>(info.frameHeight), fieldAt(6));
    EXPECT_EQ(info.depth, 13U << 8 | 12U);
    EXPECT_EQ(info.fieldType, 18);

    ksSettingsExchangeRec exchange{};
    std::memcpy(&exchange, bytes.data(), sizeof exchange);
    EXPECT_EQ(exchange.bufferSize, fieldAt(8));
    EXPECT_EQ(exchange.newClip, 12);
    EXPECT_EQ(static_cast<std::uint32_t>(exchange.frameWidth), fieldAt(37));
    EXPECT_EQ(static_cast<std::uint32_t>(exchange.sampleSize), fieldAt(57));
}

TEST(ImportAbi, ResultCodesHaveTheirFixedNumbers)
{
    EXPECT_EQ(ksResultServed, 0);
    EXPECT_EQ(ksResultFileUnreadable, 2);
    EXPECT_EQ(ksResultUnsupported, 3);
    EXPECT_EQ(ksResultOutOfMemory, 4);
    EXPECT_EQ(ksResultFailed, 5);
    EXPECT_EQ(ksResultUseSavedFile, 17);
    EXPECT_EQ(ksResultNoSuchColorIndex, 19);
    EXPECT_EQ(ksResultNoInstance, 99);
    EXPECT_EQ(ksResultSelector28, 100);
    EXPECT_EQ(ksResultSelector36, 101);
    EXPECT_EQ(ksResultCancelled, 300);
    EXPECT_EQ(ksResultNoMoreEntries, 301);
}

} // namespace
