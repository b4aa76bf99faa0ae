/// The selector table as a whole: what each number answers, and that nothing else is touched.

#include "Check.h"
#include "Requests.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

namespace conformance {

namespace {

/// The first index that an enumeration does not have, as it travels in param1.
void* const kIndexOne = reinterpret_cast<void*>(1);

void OutOfRangeIsUnsupported(Plugin& plugin)
{
    for (const std::int32_t selector : {87, 88, 1000, 0x7FFFFFFF, -1, -87, -2147483647 - 1}) {
        GuardedRecord param1;
        GuardedRecord param2;
        ExpectEqual(plugin.Request(selector, ForeignStdParms(), param1.Data(), param2.Data()), 3,
                    "selector " + std::to_string(selector));
        param1.ExpectUnchanged("selector " + std::to_string(selector));
        param2.ExpectUnchanged("selector " + std::to_string(selector));
    }
}

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

} // namespace

std::vector<Check> SelectorChecks()
{
    return {
        {"selectors.out-of-range",
         "Numbers above 86, negative ones included, are unsupported and touch nothing",
         OutOfRangeIsUnsupported},
        {"selectors.declined", "The selectors without work decline and touch nothing",
         DecliningSelectorsTouchNothing},
        {"selectors.pointer-tests", "The pointer-testing selectors answer 5 for null and 3 for a pointer",
         PointerTestingSelectorsTellNullFromPointer},
        {"selectors.fixed", "Selectors 1, 8, 28 and 36 give their fixed answers", FixedAnswers},
        {"selectors.null-records", "The serving selectors answer null records without touching them",
         ServingSelectorsSurviveNullRecords},
        {"selectors.27", "Selector 27 writes a zero for index 0 and has no further entries",
         Selector27WritesItsZeroAtIndexZeroOnly},
    };
}

} // namespace conformance
