/// Start-up, file types, and what holds for requests of every number.

#include "../host/FencedMemory.h"
#include "Clip.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <set>

namespace conformance {

namespace {

void* const kIndexOne = reinterpret_cast<void*>(1);

/// The numbers that the wire format gives a record or an index.
const std::set<int>& SelectorsWithRecords()
{
    static const std::set<int> kSelectors = {
        ksSelectorStartUp,   ksSelectorDeleteInstance,  ksSelectorFileType,         ksSelectorAudio,
        ksSelectorIndexed27, ksSelectorClipDescription, ksSelectorSettingsExchange, ksSelectorOpenFile,
        ksSelectorFrameSize, ksSelectorFrame,           ksSelectorColorInformation, ksSelectorCreateInstance};
    return kSelectors;
}

std::string Name(int selector)
{
    return "selector " + std::to_string(selector);
}

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
        // What an importer leaves alone keeps the host's value.
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
    const ksFileTypeRec type = record.Get<ksFileTypeRec>(0);
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

void NumbersOutOfRange(Plugin& plugin)
{
    RequireStartUp(plugin);
    for (const std::int32_t selector : {ksSelectorLast + 1, 88, 1000, 0x7FFFFFFF, -1, -87, -2147483647 - 1}) {
        GuardedRecord param1;
        GuardedRecord param2;
        ExpectEqual(plugin.Request(selector, ForeignStdParms(), param1.Data(), param2.Data()),
                    ksResultUnsupported, "the answer to " + Name(selector));
        param1.ExpectUnchanged(Name(selector));
        param2.ExpectUnchanged(Name(selector));
    }
}

void OtherNumbersWriteNothing(Plugin& plugin)
{
    RequireStartUp(plugin);
    for (int selector = 0; selector <= ksSelectorLast; ++selector) {
        if (SelectorsWithRecords().count(selector) != 0) {
            continue;
        }
        // The records are full of 0xCC: a pointer that is read from one leads nowhere.
        GuardedRecord param1;
        GuardedRecord param2;
        (void)plugin.Request(selector, ForeignStdParms(), param1.Data(), param2.Data());
        param1.ExpectUnchanged(Name(selector) + ", first record");
        param2.ExpectUnchanged(Name(selector) + ", second record");
        (void)plugin.Request(selector, ForeignStdParms(), nullptr, nullptr);
        (void)plugin.Request(selector, nullptr, nullptr, nullptr);
    }
}

void NullRecords(Plugin& plugin)
{
    RequireStartUp(plugin);
    for (const int selector : SelectorsWithRecords()) {
        const std::int32_t answer = plugin.Request(selector, ForeignStdParms(), nullptr, nullptr);
        Expect(answer != ksResultServed, Name(selector) + " without records is answered as served");
    }
}

void NullInstances(Plugin& plugin)
{
    RequireStartUp(plugin);
    SoundBuffers buffers(6, 16);
    void* frame = nullptr;
    GuardedRecord audio;
    audio.Put<std::int64_t>(offsetof(ksAudioRec, position), 0);
    audio.Put<std::uint32_t>(offsetof(ksAudioRec, sampleCount), 16);
    audio.Put(offsetof(ksAudioRec, channels), buffers.Pointers());
    audio.Put<ksInstance>(offsetof(ksAudioRec, instance), nullptr);
    GuardedRecord picture;
    picture.Put<ksInstance>(offsetof(ksFrameRec, instance), nullptr);
    picture.Put<std::int64_t>(offsetof(ksFrameRec, time), 0);
    picture.Put(offsetof(ksFrameRec, frame), &frame);
    GuardedRecord size;
    size.Put<ksInstance>(offsetof(ksFrameSizeRec, instance), nullptr);
    size.Put<std::uint32_t>(offsetof(ksFrameSizeRec, index), 0);
    GuardedRecord color;
    color.Put<ksInstance>(offsetof(ksColorRec, instance), nullptr);
    for (const auto& [selector, param1, param2] :
         {std::tuple{static_cast<int>(ksSelectorAudio), static_cast<GuardedRecord*>(nullptr), &audio},
          {static_cast<int>(ksSelectorFrame), nullptr, &picture},
          {static_cast<int>(ksSelectorFrameSize), &size, nullptr},
          {static_cast<int>(ksSelectorColorInformation), nullptr, &color}}) {
        GuardedRecord& record = param1 != nullptr ? *param1 : *param2;
        const std::int32_t answer =
            plugin.Request(selector, ForeignStdParms(), param1 != nullptr ? param1->Data() : nullptr,
                           param2 != nullptr ? param2->Data() : nullptr);
        Expect(answer != ksResultServed, Name(selector) + " without an instance is answered as served");
        record.ExpectUnchanged(Name(selector) + " without an instance");
    }
    Expect(frame == nullptr && Foreign().creations.empty(), "a frame was made without an instance");
    Expect(buffers.Channel(0) == std::vector<float>(16, SoundBuffers::kUntouched),
           "samples were written without an instance");
    Expect(plugin.Request(ksSelectorDeleteInstance, ForeignStdParms(), nullptr, nullptr) != ksResultServed,
           "deleting a null instance is answered as served");
}

/// A record of exactly its size, behind which lies memory that nobody may touch.
template <class Record>
class FencedRecord {
public:
    FencedRecord() { Store(); }

    Record fields = Filled();

    void* Store()
    {
        std::memcpy(Address(), &fields, sizeof fields);
        return Address();
    }
    void Load() { std::memcpy(&fields, Address(), sizeof fields); }

private:
    static Record Filled()
    {
        Record record;
        std::memset(&record, 0xCC, sizeof record);
        return record;
    }
    [[nodiscard]] std::uint8_t* Address() const { return mMemory.End() - sizeof(Record); }

    FencedMemory mMemory;
};

void RecordsEndWhereTheyEnd(Plugin& plugin)
{
    const Clip clip(plugin);
    const auto send = [&plugin](int selector, void* param1, void* param2) {
        return plugin.Request(selector, ForeignStdParms(), param1, param2);
    };
    FencedRecord<ksStartUpRec> start;
    (void)send(ksSelectorStartUp, start.Store(), nullptr);
    FencedRecord<ksFileTypeRec> type;
    (void)send(ksSelectorFileType, nullptr, type.Store());

    const std::u16string path = Wide(plugin.Document());
    FencedRecord<ksOpenRec> open;
    open.fields.path = path.c_str();
    open.fields.instance = nullptr;
    ExpectEqual(send(ksSelectorOpenFile, nullptr, open.Store()), ksResultServed, "the open request");
    open.Load();
    const ksInstance instance = open.fields.instance;

    FencedRecord<ksFileAccessRec> access;
    access.fields.path = path.c_str();
    FencedRecord<ksFileInfoRec> info;
    info.fields.instance = instance;
    info.fields.settingsText = nullptr;
    ExpectEqual(send(ksSelectorClipDescription, access.Store(), info.Store()), ksResultServed,
                "the description request");
    FencedRecord<ksSettingsExchangeRec> exchange;
    exchange.fields.text = nullptr;
    (void)send(ksSelectorSettingsExchange, access.Store(), exchange.Store());
    (void)send(ksSelectorCreateInstance, nullptr, info.Store());

    FencedRecord<ksFrameSizeRec> size;
    size.fields.instance = instance;
    size.fields.index = 0;
    (void)send(ksSelectorFrameSize, size.Store(), nullptr);
    FencedRecord<ksColorRec> color;
    color.fields.instance = instance;
    (void)send(ksSelectorColorInformation, nullptr, color.Store());
    FencedRecord<ksIndexedRec> indexed;
    indexed.fields.instance = instance;
    (void)send(ksSelectorIndexed27, nullptr, indexed.Store());

    void* frame = nullptr;
    FencedRecord<ksFrameRec> picture;
    picture.fields.instance = instance;
    picture.fields.time = 0;
    picture.fields.frame = &frame;
    (void)send(ksSelectorFrame, nullptr, picture.Store());
    SoundBuffers buffers(clip.Info().audioChannelCount, 48);
    FencedRecord<ksAudioRec> audio;
    audio.fields.position = 0;
    audio.fields.sampleCount = 48;
    audio.fields.channels = buffers.Pointers();
    audio.fields.instance = instance;
    (void)send(ksSelectorAudio, nullptr, audio.Store());
    (void)send(ksSelectorDeleteInstance, nullptr, instance);
}

/// The size of the clip's frames, from the request that asks for nothing else.
void FrameSizeAgrees(Plugin& plugin)
{
    const Clip clip(plugin);
    clip.RequireVideo();
    GuardedRecord size;
    size.Put(offsetof(ksFrameSizeRec, instance), clip.Instance());
    for (const std::uint32_t index : {1U, 0U}) {
        size.Put(offsetof(ksFrameSizeRec, index), index);
        const std::int32_t answer =
            plugin.Request(ksSelectorFrameSize, ForeignStdParms(), size.Data(), nullptr);
        if (index != 0 || answer != ksResultServed) {
            Expect(answer != ksResultServed, "there is a second frame size");
            size.ExpectUnchanged("a frame-size request that is not served");
            continue;
        }
        size.ExpectChangedOnly({{offsetof(ksFrameSizeRec, width), 8}}, "the frame-size request");
        ExpectEqual(size.Get<std::int32_t>(offsetof(ksFrameSizeRec, width)), clip.Info().frameWidth,
                    "the width, beside the described one");
        ExpectEqual(size.Get<std::int32_t>(offsetof(ksFrameSizeRec, height)), clip.Info().frameHeight,
                    "the height, beside the described one");
    }
}

void ColorCodesAreCodes(Plugin& plugin)
{
    const Clip clip(plugin);
    GuardedRecord color;
    color.Put(offsetof(ksColorRec, instance), clip.Instance());
    const std::int32_t answer =
        plugin.Request(ksSelectorColorInformation, ForeignStdParms(), nullptr, color.Data());
    if (answer != ksResultServed) {
        color.ExpectUnchanged("a colour request that is not served");
        throw Skipped("the importer gives no colour codes (answer " + std::to_string(answer) + ")");
    }
    color.ExpectChangedOnly({{offsetof(ksColorRec, kind), 4}, {offsetof(ksColorRec, codes), 16}},
                            "the colour request");
    const ksSEIColorCodesRec codes = color.Get<ksSEIColorCodesRec>(offsetof(ksColorRec, codes));
    for (const std::int32_t code : {codes.primaries, codes.transfer, codes.matrix}) {
        Expect(code >= 0 && code <= 255,
               "a code is " + std::to_string(code) + ", outside ITU-T H.273's 0..255");
    }
    Expect(codes.fullRange == 0 || codes.fullRange == 1,
           "the range flag is " + std::to_string(codes.fullRange));
}

void ColorCodesEnd(Plugin& plugin)
{
    const Clip clip(plugin);
    GuardedRecord color;
    color.Put(offsetof(ksColorRec, instance), clip.Instance());
    Expect(plugin.Request(ksSelectorColorInformation, ForeignStdParms(), kIndexOne, color.Data()) !=
               ksResultServed,
           "there is a second entry of colour information");
    color.ExpectUnchanged("the colour request with index 1");
}

void SettingsSize(Plugin& plugin)
{
    const std::u16string path = Wide(plugin.Document());
    RequireStartUp(plugin);
    GuardedRecord access;
    access.Put(offsetof(ksFileAccessRec, path), path.c_str());
    GuardedRecord exchange;
    exchange.Put<char*>(offsetof(ksSettingsExchangeRec, text), nullptr);
    exchange.Put<std::uint8_t>(offsetof(ksSettingsExchangeRec, newClip), 1);
    const std::int32_t answer =
        plugin.Request(ksSelectorSettingsExchange, ForeignStdParms(), access.Data(), exchange.Data());
    access.ExpectUnchanged("the request for the size of the settings text");
    if (answer != ksResultServed) {
        exchange.ExpectUnchanged("a request for the size of the settings text that is not served");
        throw Skipped("the importer has no settings text (answer " + std::to_string(answer) + ")");
    }
    exchange.ExpectChangedOnly({{offsetof(ksSettingsExchangeRec, bufferSize), 4}},
                               "the request for the size of the settings text");
    const auto size = exchange.Get<std::uint32_t>(offsetof(ksSettingsExchangeRec, bufferSize));
    Expect(size > 0 && size <= 1U << 30U, "the size of the settings text is " + std::to_string(size));
}

void SettingsTextFits(Plugin& plugin)
{
    const std::u16string path = Wide(plugin.Document());
    RequireStartUp(plugin);
    GuardedRecord access;
    access.Put(offsetof(ksFileAccessRec, path), path.c_str());
    GuardedRecord exchange;
    exchange.Put<char*>(offsetof(ksSettingsExchangeRec, text), nullptr);
    exchange.Put<std::uint8_t>(offsetof(ksSettingsExchangeRec, newClip), 1);
    const auto send = [&] {
        return plugin.Request(ksSelectorSettingsExchange, ForeignStdParms(), access.Data(), exchange.Data());
    };
    if (const std::int32_t answer = send(); answer != ksResultServed) {
        throw Skipped("the importer has no settings text (answer " + std::to_string(answer) + ")");
    }
    const auto size = exchange.Get<std::uint32_t>(offsetof(ksSettingsExchangeRec, bufferSize));
    ForeignBlock buffer(size);
    exchange.Put(offsetof(ksSettingsExchangeRec, text), static_cast<char*>(buffer.Data()));
    ExpectEqual(send(), ksResultServed, "the answer to the request for the settings text");
    Expect(buffer.IsGuardIntact(), "bytes behind the buffer were written");
    Expect(std::memchr(buffer.Data(), 0, size) != nullptr, "the settings text is not closed by a NUL");
}

} // namespace

std::vector<Check> FileTypeChecks()
{
    return {
        {"start-up.record", "Start-up writes the fields of its record and nothing else",
         StartUpWritesItsFields},
        {"file-type.described",
         "The first file type has a code, a display name and a closed list of extensions",
         FileTypesAreDescribed},
        {"file-type.end", "Asking for a file type behind the last one answers 301 and writes nothing",
         FileTypesEnd},
    };
}

std::vector<Check> RequestChecks()
{
    return {
        {"requests.out-of-range", "Selectors above 86, negative ones included, answer 3 and write nothing",
         NumbersOutOfRange},
        {"requests.without-record",
         "Selectors without a record in the wire format accept null records and write nothing",
         OtherNumbersWriteNothing},
        {"requests.null-records", "No request that needs a record is served without it", NullRecords},
        {"requests.null-instances", "No request that needs an instance is served without it", NullInstances},
        {"requests.record-ends", "No request reads or writes beyond the end of its record",
         RecordsEndWhereTheyEnd},
        {"requests.frame-size",
         "Selector 45 gives the described frame size at index 0 and is declined at index 1", FrameSizeAgrees},
    };
}

std::vector<Check> ColorChecks()
{
    return {
        {"color.codes", "Colour codes lie in the range of ITU-T H.273, and only their fields are written",
         ColorCodesAreCodes},
        {"color.end", "Colour information has no entry at index 1, and asking for it writes nothing",
         ColorCodesEnd},
    };
}

std::vector<Check> SettingsChecks()
{
    return {
        {"settings.size", "A settings request without a buffer gives the buffer's size and writes nothing else",
         SettingsSize},
        {"settings.text", "The settings text of an existing file ends with a NUL inside its buffer",
         SettingsTextFits},
    };
}

} // namespace conformance
