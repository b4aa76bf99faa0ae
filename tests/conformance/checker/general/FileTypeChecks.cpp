/// Start-up and file types: what a host learns before it opens anything.

#include "Clip.h"

#include <algorithm>

namespace conformance {

namespace {

void StartUpWritesItsFields(Plugin& plugin)
{
    GuardedRecord record;
    ExpectEqual(StartUp(plugin, record), ksResultServed, "the answer to the start-up request");
    const std::vector<std::size_t> flags = {offsetof(ksStartUpRec, flag28), offsetof(ksStartUpRec, flag32),
                                            offsetof(ksStartUpRec, flag36), offsetof(ksStartUpRec, flag44),
                                            offsetof(ksStartUpRec, flag52), offsetof(ksStartUpRec, flag60),
                                            offsetof(ksStartUpRec, flag72)};
    std::vector<Field> fields = {{offsetof(ksStartUpRec, fileTypeCode), 4}};
    for (const std::size_t flag : flags) {
        fields.push_back({flag, 4});
        // A flag that the importer does not write keeps 0xCC.
        const auto value = record.Get<std::uint32_t>(flag);
        Expect(value <= 1 || value == 0xCCCCCCCC,
               "the flag at byte " + std::to_string(flag) + " is " + std::to_string(value));
    }
    record.ExpectChangedOnly(fields, "the start-up request");
    GuardedRecord type;
    ExpectEqual(plugin.Request(ksSelectorFileType, ForeignStdParms(), nullptr, type.Data()), ksResultServed,
                "the answer for the first file type");
    ExpectEqual(record.Get<std::uint32_t>(0), type.Get<std::uint32_t>(0),
                "the file-type code of the start-up record, beside that of the first file type");
}

void StartsAgain(Plugin& plugin)
{
    for (int round = 0; round < 3; ++round) {
        RequireStartUp(plugin);
        ExpectEqual(plugin.Request(ksSelectorShutDown, ForeignStdParms(), nullptr, nullptr), ksResultServed,
                    "the answer to the shut-down request");
    }
}

/// Asks for one file type. @return whether there is one
bool AskFileType(const Plugin& plugin, std::uintptr_t index, GuardedRecord& record)
{
    const std::int32_t answer =
        plugin.Request(ksSelectorFileType, ForeignStdParms(), reinterpret_cast<void*>(index), record.Data());
    if (answer == ksResultNoMoreEntries) {
        record.ExpectUnchanged("the request for a file type that there is not");
        return false;
    }
    ExpectEqual(answer, ksResultServed, "the answer for file type " + std::to_string(index));
    return true;
}

void FileTypesAreDescribed(Plugin& plugin)
{
    RequireStartUp(plugin);
    GuardedRecord record;
    Expect(AskFileType(plugin, 0, record), "the importer opens no file type");
    const auto type = record.Get<ksFileTypeRec>(0);
    record.ExpectChangedOnly({{0, offsetof(ksFileTypeRec, reserved268)},
                              {offsetof(ksFileTypeRec, extensions), sizeof type.extensions},
                              {offsetof(ksFileTypeRec, zero760), 4}},
                             "the file-type request");
    Expect(type.fileTypeCode != 0 && type.fileTypeCode != 0xCCCCCCCC, "the file type has no code");
    const std::string name(type.displayName, sizeof type.displayName);
    Expect(name.find('\0') != std::string::npos && name[0] != '\0', "the display name is empty or not closed");
    const std::string extensions(type.extensions, sizeof type.extensions);
    const std::size_t end = extensions.find(std::string(2, '\0'));
    Expect(end != std::string::npos && end > 0, "the extension list is empty or not closed by an empty entry");
    Expect(std::all_of(extensions.begin(), extensions.begin() + static_cast<std::ptrdiff_t>(end),
                       [](unsigned char c) { return c == 0 || (c > 0x20 && c < 0x7F && c != '.'); }),
           "the extension list holds more than letters and digits");
}

void FileTypesEnd(Plugin& plugin)
{
    RequireStartUp(plugin);
    constexpr std::uintptr_t kMostFileTypes = 256;
    std::uintptr_t index = 0;
    for (GuardedRecord record; AskFileType(plugin, index, record); record = GuardedRecord()) {
        Expect(++index < kMostFileTypes, "there is no end of file types");
    }
    for (const std::uintptr_t beyond : {index + 1, std::uintptr_t{0x7FFFFFFF}, std::uintptr_t{0xFFFFFFFF}}) {
        GuardedRecord record;
        Expect(!AskFileType(plugin, beyond, record),
               "there is a file type " + std::to_string(beyond) + " behind the last one");
    }
}

} // namespace

std::vector<Check> FileTypeChecks()
{
    return {
        {"start-up.record", "Start-up writes the fields of its record and nothing else",
         StartUpWritesItsFields},
        {"start-up.again", "Selector 1 answers 0, and the importer can be started again", StartsAgain},
        {"file-type.described",
         "The first file type has a code, a display name and a closed list of extensions",
         FileTypesAreDescribed},
        {"file-type.end", "Asking for a file type behind the last one answers 301 and writes nothing",
         FileTypesEnd},
    };
}

} // namespace conformance
