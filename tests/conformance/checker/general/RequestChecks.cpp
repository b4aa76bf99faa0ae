/// Requests of every number: what they do without a record or an instance, and where their records end.

#include "../host/FencedMemory.h"
#include "Clip.h"

#include <set>
#include <tuple>

namespace conformance {

namespace {

/// The selectors that need a record or an instance.
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

/// Selectors that every importer serves; another one may also be answered as unsupported.
bool IsServedByAll(int selector)
{
    return selector == ksSelectorFileType || selector == ksSelectorAudio || selector == ksSelectorOpenFile ||
           selector == ksSelectorClipDescription || selector == ksSelectorFrame;
}

/// @throws Violation where a request without something that it needs is not answered as failed.
void ExpectRefused(int selector, std::int32_t answer, const std::string& without)
{
    const bool isDelete = selector == ksSelectorDeleteInstance; // which has an answer of its own
    const bool mayBeUnsupported = isDelete || !IsServedByAll(selector);
    Expect((answer == ksResultFailed && !isDelete) || (answer == ksResultUnsupported && mayBeUnsupported),
           Name(selector) + " without " + without + " is answered " + std::to_string(answer));
}

void NullRecords(Plugin& plugin)
{
    RequireStartUp(plugin);
    for (const int selector : SelectorsWithRecords()) {
        ExpectRefused(selector, plugin.Request(selector, ForeignStdParms(), nullptr, nullptr), "records");
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
        ExpectRefused(selector, answer, "an instance");
        record.ExpectUnchanged(Name(selector) + " without an instance");
    }
    Expect(frame == nullptr && Foreign().creations.empty(), "a frame was made without an instance");
    Expect(buffers.Channel(0) == std::vector<float>(16, SoundBuffers::kUntouched),
           "samples were written without an instance");
    ExpectRefused(ksSelectorDeleteInstance,
                  plugin.Request(ksSelectorDeleteInstance, ForeignStdParms(), nullptr, nullptr), "an instance");
}

/// A record directly in front of memory that nobody may touch.
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

/// Selector 45 beside selector 37.
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

} // namespace

std::vector<Check> RequestChecks()
{
    return {
        {"requests.out-of-range", "Selectors above 86, negative ones included, answer 3 and write nothing",
         NumbersOutOfRange},
        {"requests.without-record",
         "Selectors without a record in the wire format accept null records and write nothing",
         OtherNumbersWriteNothing},
        {"requests.null-records",
         "A request without the record that it needs answers 5, or 3 where the importer does not serve it",
         NullRecords},
        {"requests.null-instances",
         "A request without the instance that it needs answers 5, or 3 where the importer does not serve it",
         NullInstances},
        {"requests.record-ends", "No request reads or writes beyond the end of its record",
         RecordsEndWhereTheyEnd},
        {"requests.frame-size",
         "Selector 45 gives the described frame size at index 0 and is declined at index 1", FrameSizeAgrees},
    };
}

} // namespace conformance
