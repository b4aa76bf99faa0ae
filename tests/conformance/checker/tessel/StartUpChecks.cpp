/// The start-up gate and the description of the file type.

#include "Documents.h"
#include "TesselChecks.h"

#include <cstdlib>
#include <cstring>
#include <string>

namespace conformance {

namespace {

const std::vector<Field> kStartUpFields = {{0, 4},  {28, 4}, {32, 4}, {36, 4},
                                           {44, 4}, {52, 4}, {60, 4}, {72, 4}};

/// Starts the plug-in up with a debug database of this content.
std::int32_t StartUp(const Plugin& plugin, const std::string& database, GuardedRecord& record)
{
    const TemporaryFolder folder;
    setenv("KESTREL_DEBUG_DATABASE", folder.Write("debug.json", database).c_str(), 1);
    return plugin.Request(0, ForeignStdParms(), record.Data(), nullptr);
}

void ExpectShut(const Plugin& plugin, const std::string& database)
{
    GuardedRecord record;
    ExpectEqual(StartUp(plugin, database, record), 3, "start-up with the debug database " + database);
    record.ExpectUnchanged("start-up with the gate shut");
}

void OpensForTrue(Plugin& plugin)
{
    GuardedRecord record;
    ExpectEqual(StartUp(plugin, R"({"ML.LoadTestingPluginsAtStartup": "true"})", record), 0, "start-up");
    record.ExpectChangedOnly(kStartUpFields, "start-up");
    Expect(std::memcmp(record.Data(), "LSST", 4) == 0, "the file-type code does not read L, S, S, T in memory");
    for (const Field& field : kStartUpFields) {
        if (field.offset != 0) {
            ExpectEqual(record.Get<std::uint32_t>(field.offset), 1, "byte " + std::to_string(field.offset));
        }
    }
}

void OpenGateWithoutRecordFails(Plugin& plugin)
{
    const TemporaryFolder folder;
    setenv("KESTREL_DEBUG_DATABASE",
           folder.Write("debug.json", R"({"ML.LoadTestingPluginsAtStartup": "true"})").c_str(), 1);
    ExpectEqual(plugin.Request(0, ForeignStdParms(), nullptr, nullptr), 5, "start-up without a record");
}

void ShutWhenAbsent(Plugin& plugin)
{
    ExpectShut(plugin, "{}");
    setenv("KESTREL_DEBUG_DATABASE", "/nowhere/debug-database.json", 1);
    GuardedRecord record;
    ExpectEqual(plugin.Request(0, ForeignStdParms(), record.Data(), nullptr), 3, "start-up without a database");
    record.ExpectUnchanged("start-up without a database");
}

void ShutForOtherTexts(Plugin& plugin)
{
    for (const std::string text :
         {"True", "TRUE", "1", "yes", "true ", " true", "truest", "tru", "false", ""}) {
        ExpectShut(plugin, R"({"ML.LoadTestingPluginsAtStartup": ")" + text + "\"}");
    }
}

void ShutForOtherTypes(Plugin& plugin)
{
    for (const std::string value : {"true", "1", "null", "[\"true\"]", "{\"true\": \"true\"}"}) {
        ExpectShut(plugin, R"({"ML.LoadTestingPluginsAtStartup": )" + value + "}");
    }
    ExpectShut(plugin, R"({"ml.loadtestingpluginsatstartup": "true"})");
    ExpectShut(plugin, R"({"ML.LoadTestingPluginsAtStartup": "true")");
}

void FileType(Plugin& plugin)
{
    GuardedRecord record;
    ExpectEqual(plugin.Request(14, ForeignStdParms(), nullptr, record.Data()), 0, "selector 14");
    // 300: "tessel" and its NUL, then a 16-bit zero that closes the list.
    record.ExpectChangedOnly({{0, 268}, {300, 9}, {760, 4}}, "selector 14");
    Expect(std::memcmp(record.Data(), "LSST", 4) == 0, "the file-type code does not read L, S, S, T in memory");
    ExpectEqual(record.Get<std::uint32_t>(4), 0xE008, "byte 4");
    ExpectEqual(record.Get<std::uint32_t>(8), 0, "byte 8");
    ExpectEqual(record.Get<std::uint32_t>(760), 0, "byte 760");
    const char* bytes = static_cast<const char*>(record.Data());
    const std::string name(bytes + 12, 256);
    Expect(name == "Tessel" + std::string(250, '\0'), "the display name is not \"Tessel\", padded with NULs");
    Expect(std::string(bytes + 300, 9) == std::string("tessel\0\0\0", 9),
           "the extension list is not \"tessel\" and three NULs");
}

} // namespace

std::vector<Check> TesselStartUpChecks()
{
    return {
        {"tessel.start-up.open",
         "With the debug key at \"true\" the start-up record gets its code and seven flags, nothing else",
         OpensForTrue},
        {"tessel.start-up.no-record", "With the debug key at \"true\" a null record answers 5",
         OpenGateWithoutRecordFails},
        {"tessel.start-up.absent",
         "Without the debug key or the database start-up answers 3 and writes nothing", ShutWhenAbsent},
        {"tessel.start-up.other-texts", "With the debug key at any other text start-up answers 3",
         ShutForOtherTexts},
        {"tessel.start-up.other-types",
         "A debug value that is no text, a key of another case and a broken database count as absent",
         ShutForOtherTypes},
        {"tessel.file-type.described", "Selector 14 describes Tessel's file type, byte for byte", FileType},
    };
}

} // namespace conformance
