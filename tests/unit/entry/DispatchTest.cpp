#include "TestModule.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <set>
#include <string>

namespace {

/// Long enough for every record of the wire format.
using RecordBytes = std::array<std::uint8_t, 1024>;

RecordBytes Untouched()
{
    RecordBytes bytes;
    bytes.fill(0xCC);
    return bytes;
}

void SetPointer(RecordBytes& bytes, std::size_t offset, const void* pointer)
{
    std::memcpy(bytes.data() + offset, &pointer, sizeof pointer);
}

// The contract's lists of selectors, written apart from the dispatcher's table.
const std::set<int> kNothing{2,  3,  4,  6,  7,  10, 11, 15, 16, 17, 18, 19, 20, 21, 22, 26,
                             31, 32, 33, 34, 35, 41, 42, 43, 44, 50, 54, 57, 66, 71, 80};
const std::set<int> kNoteFirstOfParam2{12, 13, 23, 24, 49, 52, 53, 72};
const std::set<int> kNoteFirstOfParam1{40, 48, 51};
const std::set<int> kNeedFirstOfParam1{46, 56, 59, 60};
const std::set<int> kNeedFirstOfParam2{58, 61, 62, 63, 64, 67, 68, 69, 70, 74,
                                       75, 76, 77, 78, 79, 82, 84, 85, 86};
const std::set<int> kNeedByte64OfParam2{65, 83};

class Dispatch : public testing::Test {
protected:
    void SetUp() override { TestModule::Reset(); }

    /// Serves a request and checks that neither record has changed.
    std::int32_t Serve(int selector, RecordBytes& param1, RecordBytes& param2)
    {
        const RecordBytes before1 = param1;
        const RecordBytes before2 = param2;
        const std::int32_t result = TestModule::ImportEntry(selector, nullptr, param1.data(), param2.data());
        EXPECT_EQ(param1, before1) << "selector " << selector;
        EXPECT_EQ(param2, before2) << "selector " << selector;
        EXPECT_EQ(TestModule::TheScript().served, 0) << "selector " << selector;
        return result;
    }

    RecordBytes mParam1 = Untouched();
    RecordBytes mParam2 = Untouched();
};

TEST_F(Dispatch, SelectorsAbove86AreDeclinedWithoutTouchingARecord)
{
    constexpr int kLowest = std::numeric_limits<std::int32_t>::min();
    for (const int selector : {87, 88, 255, 256, 65536, 0x7FFFFFFF, -1, -2, kLowest, kLowest + 25}) {
        EXPECT_EQ(Serve(selector, mParam1, mParam2), 3) << selector;
        EXPECT_EQ(TestModule::ImportEntry(selector, nullptr, nullptr, nullptr), 3) << selector;
    }
}

TEST_F(Dispatch, SelectorsWithoutWorkAreDeclinedWithAnyRecords)
{
    for (const int selector : kNothing) {
        EXPECT_EQ(Serve(selector, mParam1, mParam2), 3) << selector;
        EXPECT_EQ(TestModule::ImportEntry(selector, nullptr, nullptr, nullptr), 3) << selector;
    }
}

TEST_F(Dispatch, FixedAnswersNeedNoRecord)
{
    for (const auto& [selector, result] : {std::pair(1, 0), {28, 100}, {36, 101}}) {
        EXPECT_EQ(Serve(selector, mParam1, mParam2), result) << selector;
        EXPECT_EQ(TestModule::ImportEntry(selector, nullptr, nullptr, nullptr), result) << selector;
    }
}

TEST_F(Dispatch, SelectorsThatNoteAPointerAnswerTheirCodeWithOrWithoutARecord)
{
    std::set<int> declining{5, 29, 30, 55};
    declining.insert(kNoteFirstOfParam1.begin(), kNoteFirstOfParam1.end());
    declining.insert(kNoteFirstOfParam2.begin(), kNoteFirstOfParam2.end());
    for (const int selector : declining) {
        EXPECT_EQ(Serve(selector, mParam1, mParam2), 3) << selector;
        EXPECT_EQ(TestModule::ImportEntry(selector, nullptr, nullptr, nullptr), 3) << selector;
    }
    EXPECT_EQ(Serve(8, mParam1, mParam2), 0);
    EXPECT_EQ(TestModule::ImportEntry(8, nullptr, nullptr, nullptr), 0);
}

TEST_F(Dispatch, SelectorsThatNeedAPointerLookForItWhereItStands)
{
    struct Row {
        const std::set<int>& selectors;
        bool isParam1;
        std::size_t offset;
    };
    for (const Row& row : {Row{kNeedFirstOfParam1, true, 0}, Row{kNeedFirstOfParam2, false, 0},
                           Row{kNeedByte64OfParam2, false, 64}}) {
        for (const int selector : row.selectors) {
            EXPECT_EQ(TestModule::ImportEntry(selector, nullptr, nullptr, nullptr), 5) << selector;

            RecordBytes param1 = Untouched();
            RecordBytes param2 = Untouched();
            EXPECT_EQ(Serve(selector, param1, param2), 3) << selector;
            SetPointer(row.isParam1 ? param1 : param2, row.offset, nullptr);
            EXPECT_EQ(Serve(selector, param1, param2), 5) << selector;

            // All zero but for the one pointer that counts, in its last byte.
            param1.fill(0);
            param2.fill(0);
            EXPECT_EQ(Serve(selector, param1, param2), 5) << selector;
            (row.isParam1 ? param1 : param2)[row.offset + 7] = 1;
            EXPECT_EQ(Serve(selector, param1, param2), 3) << selector;
        }
    }
}

TEST_F(Dispatch, SelectorsThatNeedOneRecordDoNotLookAtTheOther)
{
    RecordBytes bytes = Untouched();
    for (const int selector : kNeedFirstOfParam1) {
        EXPECT_EQ(TestModule::ImportEntry(selector, nullptr, bytes.data(), nullptr), 3) << selector;
        EXPECT_EQ(TestModule::ImportEntry(selector, nullptr, nullptr, bytes.data()), 5) << selector;
    }
    for (const int selector : kNeedFirstOfParam2) {
        EXPECT_EQ(TestModule::ImportEntry(selector, nullptr, nullptr, bytes.data()), 3) << selector;
        EXPECT_EQ(TestModule::ImportEntry(selector, nullptr, bytes.data(), nullptr), 5) << selector;
    }
}

TEST_F(Dispatch, EverySelectorIsInExactlyOneListOfThisTest)
{
    std::multiset<int> all{0, 1, 5, 8, 9, 14, 25, 27, 28, 29, 30, 36, 37, 38, 39, 45, 47, 55, 73, 81};
    for (const auto* list : {&kNothing, &kNoteFirstOfParam1, &kNoteFirstOfParam2, &kNeedFirstOfParam1,
                             &kNeedFirstOfParam2, &kNeedByte64OfParam2}) {
        all.insert(list->begin(), list->end());
    }
    EXPECT_EQ(all.size(), 87U);
    for (int selector = 0; selector <= 86; ++selector) {
        EXPECT_EQ(all.count(selector), 1U) << selector;
    }
}

TEST_F(Dispatch, ServedSelectorsAnswerWhatTheirOperationAnswers)
{
    TestModule instance;
    RecordBytes param1{};
    for (const int selector : {0, 14, 25, 37, 38, 39, 45, 47, 73}) {
        TestModule::TheScript().served = 0;
        TestModule::TheScript().onRequest = [selector] { return 1000 + selector; };
        // Wherever the instance stands in the record of a selector: at 0, 20, 36 or 198.
        RecordBytes record = Untouched();
        for (const std::size_t offset : {0U, 20U, 36U, 198U}) {
            SetPointer(record, offset, &instance);
        }
        const bool isIndexed = selector == 14 || selector == 73;
        if (selector == 45) {
            SetPointer(param1, 0, &instance);
            std::memset(param1.data() + 20, 0, 4);
        }
        EXPECT_EQ(
            TestModule::ImportEntry(selector, nullptr, isIndexed ? nullptr : param1.data(), record.data()),
            1000 + selector);
        EXPECT_EQ(TestModule::TheScript().served, 1) << selector;
    }
}

TEST_F(Dispatch, NullRecordsWhereOneIsNeededAreAFailure)
{
    for (const int selector : {14, 25, 27, 37, 38, 39, 45, 47, 73, 81}) {
        EXPECT_EQ(TestModule::ImportEntry(selector, nullptr, nullptr, nullptr), 5) << selector;
    }
    for (const int selector : {37, 38}) {
        EXPECT_EQ(TestModule::ImportEntry(selector, nullptr, nullptr, mParam2.data()), 5) << selector;
        EXPECT_EQ(TestModule::ImportEntry(selector, nullptr, mParam1.data(), nullptr), 5) << selector;
    }
    EXPECT_EQ(TestModule::TheScript().served, 0);
    EXPECT_EQ(TestModule::ImportEntry(9, nullptr, nullptr, nullptr), 3);
}

TEST_F(Dispatch, NullInstancesAreAFailure)
{
    RecordBytes zeros{};
    for (const int selector : {25, 27, 47, 73}) {
        EXPECT_EQ(TestModule::ImportEntry(selector, nullptr, nullptr, zeros.data()), 5) << selector;
    }
    EXPECT_EQ(TestModule::ImportEntry(45, nullptr, zeros.data(), nullptr), 5);
    EXPECT_EQ(TestModule::TheScript().served, 0);
}

TEST_F(Dispatch, IndexTestsKeepTheirPlace)
{
    TestModule instance;
    const auto one = reinterpret_cast<void*>(std::uintptr_t{1});
    RecordBytes withInstance = Untouched();
    SetPointer(withInstance, 0, &instance);
    const RecordBytes before = withInstance;
    RecordBytes zeros{};

    // 14: the index before the record.
    EXPECT_EQ(TestModule::ImportEntry(14, nullptr, one, nullptr), 301);
    EXPECT_EQ(TestModule::ImportEntry(14, nullptr, one, mParam2.data()), 301);
    // 27 and 73: the instance before the index.
    EXPECT_EQ(TestModule::ImportEntry(27, nullptr, one, zeros.data()), 5);
    EXPECT_EQ(TestModule::ImportEntry(27, nullptr, one, withInstance.data()), 301);
    EXPECT_EQ(TestModule::ImportEntry(73, nullptr, one, zeros.data()), 5);
    EXPECT_EQ(TestModule::ImportEntry(73, nullptr, one, withInstance.data()), 19);
    // 45: the index before the instance.
    zeros[20] = 1;
    EXPECT_EQ(TestModule::ImportEntry(45, nullptr, zeros.data(), nullptr), 3);

    EXPECT_EQ(withInstance, before);
    EXPECT_EQ(mParam2, Untouched());
    EXPECT_EQ(TestModule::TheScript().served, 0);
}

TEST_F(Dispatch, AnIndexIsTheLow32BitsOfItsParameter)
{
    RecordBytes record = Untouched();
    const auto high = reinterpret_cast<void*>(std::uintptr_t{1} << 32);
    EXPECT_EQ(TestModule::ImportEntry(14, nullptr, high, record.data()), 0);
    EXPECT_EQ(TestModule::TheScript().served, 1);
}

TEST_F(Dispatch, Selector27WritesZeroAtByte8AndNothingElse)
{
    TestModule instance;
    RecordBytes record = Untouched();
    SetPointer(record, 0, &instance);
    RecordBytes expected = record;
    std::memset(expected.data() + 8, 0, 4);
    EXPECT_EQ(TestModule::ImportEntry(27, nullptr, nullptr, record.data()), 0);
    EXPECT_EQ(record, expected);
}

TEST_F(Dispatch, FrameAndSettingsRequestsGetTheStandardParametersOfTheRequest)
{
    const ksStdParms created{};
    const ksStdParms requested{};
    const auto instance = TestModule::CreateImportModuleInstance(&created);
    RecordBytes record = Untouched();
    SetPointer(record, 0, instance.get());
    EXPECT_EQ(TestModule::ImportEntry(47, &requested, nullptr, record.data()), 0);
    EXPECT_EQ(TestModule::TheScript().stdParms, &requested);
    EXPECT_EQ(TestModule::ImportEntry(38, &requested, mParam1.data(), mParam2.data()), 0);
    EXPECT_EQ(TestModule::TheScript().stdParms, &requested);
    // The others use those that the instance was created with.
    EXPECT_EQ(TestModule::ImportEntry(73, &requested, nullptr, record.data()), 0);
    EXPECT_EQ(TestModule::TheScript().stdParms, &created);
}

TEST_F(Dispatch, NotedPointersAreThoseAtTheSelectorsOwnPlaces)
{
    // The pointer at an offset of a record has the offset as its value.
    RecordBytes param1;
    RecordBytes param2;
    const auto fill = [](RecordBytes& bytes, std::uintptr_t base, std::size_t offset) {
        bytes.fill(0xCC);
        SetPointer(bytes, offset, reinterpret_cast<const void*>(base + offset));
    };
    struct Row {
        std::set<int> selectors;
        bool isParam1;
        std::size_t offset;
    };
    for (const Row& row : {Row{kNoteFirstOfParam1, true, 0}, Row{kNoteFirstOfParam2, false, 0},
                           Row{{5}, false, 92}, Row{{29, 30}, false, 20}, Row{kNeedFirstOfParam1, true, 0},
                           Row{kNeedFirstOfParam2, false, 0}, Row{kNeedByte64OfParam2, false, 64}}) {
        for (const int selector : row.selectors) {
            fill(param1, 0x1000, row.offset);
            fill(param2, 0x2000, row.offset);
            ImportRequest request{selector, nullptr, param1.data(), param2.data()};
            EXPECT_EQ(TestModule::Serve(request), 3) << selector;
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(request.currentImporter),
                      (row.isParam1 ? 0x1000U : 0x2000U) + row.offset)
                << selector;
        }
    }
    for (const auto& [selector, result] : {std::pair(8, 0), {55, 3}}) {
        ImportRequest request{selector, nullptr, param1.data(), param2.data()};
        EXPECT_EQ(TestModule::Serve(request), result);
        EXPECT_EQ(request.currentImporter, param2.data()) << selector;
    }
    for (const int selector : kNothing) {
        ImportRequest request{selector, nullptr, param1.data(), param2.data()};
        EXPECT_EQ(TestModule::Serve(request), 3);
        EXPECT_EQ(request.currentImporter, nullptr) << selector;
    }
}

} // namespace
