/// The table of selectors: what each number answers, reads and writes.

#include "../host/FencedMemory.h"
#include "Documents.h"
#include "TesselChecks.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

namespace conformance {

namespace {

/// Numbers that answer 5 where the pointer at `offset` of the record is null, else 3.
struct PointerTest {
    int selector;
    bool inParam1;
    std::size_t offset;
};

std::vector<PointerTest> PointerTests()
{
    std::vector<PointerTest> tests;
    for (const int selector : {46, 56, 59, 60}) {
        tests.push_back({selector, true, 0});
    }
    for (const int selector : {58, 61, 62, 63, 64, 67, 68, 69, 70, 74, 75, 76, 77, 78, 79, 82, 84, 85, 86}) {
        tests.push_back({selector, false, 0});
    }
    for (const int selector : {65, 83}) {
        tests.push_back({selector, false, 64});
    }
    return tests;
}

/// Numbers that decline whatever their records hold: all but those with a check of their own, so that none of
/// the 87 goes without one.
std::set<int> Declining()
{
    std::set<int> selectors;
    for (int selector = 0; selector <= 86; ++selector) {
        selectors.insert(selector);
    }
    for (const PointerTest& test : PointerTests()) {
        selectors.erase(test.selector);
    }
    for (const int selector : {0, 1, 8, 9, 14, 25, 27, 28, 36, 37, 38, 39, 45, 47, 73, 81}) {
        selectors.erase(selector);
    }
    return selectors;
}

void DecliningSelectorsTouchNothing(Plugin& plugin)
{
    for (const int selector : Declining()) {
        GuardedRecord param1;
        GuardedRecord param2;
        const std::string what = "selector " + std::to_string(selector);
        ExpectEqual(plugin.Request(selector, ForeignStdParms(), param1.Data(), param2.Data()), 3, what);
        param1.ExpectUnchanged(what);
        param2.ExpectUnchanged(what);
        ExpectEqual(plugin.Request(selector, ForeignStdParms(), nullptr, nullptr), 3,
                    what + " without records");
        ExpectEqual(plugin.Request(selector, nullptr, nullptr, nullptr), 3, what + " without anything");
    }
}

void PointerTestingSelectorsTellNullFromPointer(Plugin& plugin)
{
    for (const PointerTest& test : PointerTests()) {
        const std::string what = "selector " + std::to_string(test.selector);
        GuardedRecord param1;
        GuardedRecord param2;
        ExpectEqual(plugin.Request(test.selector, ForeignStdParms(), param1.Data(), param2.Data()), 3,
                    what + " with a pointer");
        GuardedRecord& record = test.inParam1 ? param1 : param2;
        record.Put<void*>(test.offset, nullptr);
        ExpectEqual(plugin.Request(test.selector, ForeignStdParms(), param1.Data(), param2.Data()), 5,
                    what + " with a null pointer");
        param1.ExpectUnchanged(what);
        param2.ExpectUnchanged(what);
        ExpectEqual(plugin.Request(test.selector, ForeignStdParms(), nullptr, nullptr), 5,
                    what + " without records");
    }
}

void FixedAnswers(Plugin& plugin)
{
    for (const auto& [selector, answer] : {std::pair{1, 0}, {8, 0}, {28, 100}, {36, 101}}) {
        GuardedRecord param1;
        GuardedRecord param2;
        const std::string what = "selector " + std::to_string(selector);
        ExpectEqual(plugin.Request(selector, ForeignStdParms(), param1.Data(), param2.Data()), answer, what);
        ExpectEqual(plugin.Request(selector, ForeignStdParms(), nullptr, nullptr), answer, what);
        param1.ExpectUnchanged(what);
        param2.ExpectUnchanged(what);
    }
}

void ServingSelectorsSurviveNullRecords(Plugin& plugin)
{
    setenv("KESTREL_DEBUG_DATABASE", "/nowhere/debug-database.json", 1);
    for (const auto& [selector, answer] : {std::pair{0, 3},
                                           {9, 3},
                                           {14, 5},
                                           {25, 5},
                                           {27, 5},
                                           {37, 5},
                                           {38, 5},
                                           {39, 5},
                                           {45, 5},
                                           {47, 5},
                                           {73, 5},
                                           {81, 5}}) {
        ExpectEqual(plugin.Request(selector, ForeignStdParms(), nullptr, nullptr), answer,
                    "selector " + std::to_string(selector) + " without records");
    }
    ExpectEqual(plugin.Request(14, ForeignStdParms(), kIndexOne, nullptr), 301,
                "selector 14, index 1, no record");
}

void Selector27WritesItsZeroAtIndexZeroOnly(Plugin& plugin)
{
    GuardedRecord param2;
    ExpectEqual(plugin.Request(27, ForeignStdParms(), kIndexOne, param2.Data()), 301, "index 1");
    param2.ExpectUnchanged("index 1");
    ExpectEqual(plugin.Request(27, ForeignStdParms(), nullptr, param2.Data()), 0, "index 0");
    param2.ExpectChangedOnly({{8, 4}}, "index 0");
    ExpectEqual(param2.Get<std::uint32_t>(8), 0, "byte 8");
    param2.Put<void*>(0, nullptr);
    ExpectEqual(plugin.Request(27, ForeignStdParms(), kIndexOne, param2.Data()), 5, "index 1, null instance");
}

/// What a selector without work reads, if anything: one pointer of one record.
struct NotedPointer {
    int selector;
    bool isRead = false;
    bool inParam1 = false;
    std::size_t offset = 0;
};

std::vector<NotedPointer> NotedPointers()
{
    std::vector<NotedPointer> noted;
    for (const int selector : Declining()) {
        noted.push_back({selector});
    }
    for (const int selector : {1, 8, 28, 36}) {
        noted.push_back({selector});
    }
    for (NotedPointer& each : noted) {
        const auto isOneOf = [&each](std::initializer_list<int> selectors) {
            return std::find(selectors.begin(), selectors.end(), each.selector) != selectors.end();
        };
        each.inParam1 = isOneOf({40, 48, 51});
        each.isRead = each.inParam1 || isOneOf({5, 12, 13, 23, 24, 29, 30, 49, 52, 53, 72});
        each.offset = each.selector == 5 ? 92 : isOneOf({29, 30}) ? 20 : 0;
    }
    for (const PointerTest& test : PointerTests()) {
        noted.push_back({test.selector, true, test.inParam1, test.offset});
    }
    return noted;
}

/// Places the pointer directly before and directly after memory that nobody may touch: reading bytes beside
/// the pointer crashes in one of the two places.
void OnlyThePointerIsRead(Plugin& plugin)
{
    const FencedMemory memory;
    const auto untouchable = reinterpret_cast<std::uintptr_t>(memory.End());
    for (const NotedPointer& noted : NotedPointers()) {
        const int answer = noted.selector == 1 || noted.selector == 8 ? 0
                           : noted.selector == 28                     ? 100
                           : noted.selector == 36                     ? 101
                                                                      : 3;
        const auto end = reinterpret_cast<std::uintptr_t>(memory.End()) - sizeof(void*) - noted.offset;
        const auto begin = reinterpret_cast<std::uintptr_t>(memory.Begin()) - noted.offset;
        for (const std::uintptr_t place : {end, begin}) {
            const std::uintptr_t read = noted.isRead ? place : untouchable;
            ExpectEqual(plugin.Request(noted.selector, ForeignStdParms(),
                                       reinterpret_cast<void*>(noted.inParam1 ? read : untouchable),
                                       reinterpret_cast<void*>(noted.inParam1 ? untouchable : read)),
                        answer, "selector " + std::to_string(noted.selector));
        }
    }
}

void NullInstancesAreAnswered5(Plugin& plugin)
{
    std::array<float, 16> samples{};
    std::array<float*, 6> channels{};
    channels.fill(samples.data());
    GuardedRecord audio;
    audio.Put<std::int64_t>(0, 0);
    audio.Put<std::uint32_t>(8, 16);
    audio.Put(12, channels.data());
    audio.Put<ksInstance>(20, nullptr);
    ExpectEqual(plugin.Request(25, ForeignStdParms(), nullptr, audio.Data()), 5, "selector 25");
    void* frame = nullptr;
    ExpectEqual(RequestFrame(plugin, nullptr, 0, frame), 5, "selector 47");
    GuardedRecord size;
    size.Put<ksInstance>(0, nullptr);
    size.Put<std::uint32_t>(20, 0);
    ExpectEqual(plugin.Request(45, ForeignStdParms(), size.Data(), nullptr), 5, "selector 45");
    GuardedRecord record;
    record.Put<ksInstance>(0, nullptr);
    for (const int selector : {27, 73}) {
        for (void* const index : {static_cast<void*>(nullptr), kIndexOne}) {
            ExpectEqual(plugin.Request(selector, ForeignStdParms(), index, record.Data()), 5,
                        "selector " + std::to_string(selector));
        }
    }
}

} // namespace

std::vector<Check> TesselSelectorChecks()
{
    return {
        {"tessel.selectors.declined", "Selectors without work answer 3 and write nothing",
         DecliningSelectorsTouchNothing},
        {"tessel.selectors.pointer-tests",
         "Selectors that test a pointer answer 5 for null and 3 for any other",
         PointerTestingSelectorsTellNullFromPointer},
        {"tessel.selectors.fixed", "Selectors 1, 8, 28 and 36 answer 0, 0, 100 and 101", FixedAnswers},
        {"tessel.selectors.null-records", "Selectors with work answer null records with their error code",
         ServingSelectorsSurviveNullRecords},
        {"tessel.selectors.null-instances", "Selectors 25, 27, 45, 47 and 73 answer 5 for a null instance",
         NullInstancesAreAnswered5},
        {"tessel.selectors.noted", "Selectors without work read at most the pointer that they note or test",
         OnlyThePointerIsRead},
        {"tessel.selectors.27", "Selector 27 writes a zero at index 0 and answers 301 at index 1",
         Selector27WritesItsZeroAtIndexZeroOnly},
    };
}

} // namespace conformance
