/// Opening, describing and deleting: the life of an instance.

#include "Clip.h"

#include <cmath>
#include <fstream>
#include <iterator>
#include <random>
#include <utility>

namespace conformance {

namespace {

void Delete(const Plugin& plugin, ksInstance instance)
{
    ExpectEqual(plugin.Request(ksSelectorDeleteInstance, ForeignStdParms(), nullptr, instance), ksResultServed,
                "the answer to the delete request");
}

/// The description of an instance without its instance slot, so that two of them compare equal.
ksFileInfoRec Description(const Plugin& plugin, ksInstance instance)
{
    GuardedRecord info;
    ExpectEqual(Describe(plugin, instance, info), ksResultServed, "the answer to the description request");
    ksFileInfoRec description = InfoOf(info);
    ExpectEqual(description.instance == instance ? 1 : 0, 1, "whether the description keeps the instance");
    description.instance = nullptr;
    return description;
}

void ExpectSame(const ksFileInfoRec& a, const ksFileInfoRec& b, const std::string& what)
{
    Expect(std::memcmp(&a, &b, sizeof a) == 0, what);
}

void OpensAndDeletes(Plugin& plugin)
{
    const std::u16string path = Wide(plugin.Document());
    RequireStartUp(plugin);
    for (int round = 0; round < 3; ++round) {
        ksInstance instance = nullptr;
        ExpectEqual(Open(plugin, path.c_str(), instance), ksResultServed, "the answer to the open request");
        Expect(instance != nullptr, "the document was opened, but the slot is null");
        Delete(plugin, instance);
    }
}

/// Paths that name no document.
std::vector<std::pair<std::string, std::u16string>> Unreadable(const TemporaryFolder& folder)
{
    return {{"a missing file", Wide(folder.Path() / "missing")},
            {"a missing folder", Wide(folder.Path() / "none" / "missing")},
            {"a directory", Wide(folder.Path())},
            {"an empty path", u""}};
}

void UnreadableOnAFreshSlot(Plugin& plugin)
{
    const TemporaryFolder folder;
    RequireStartUp(plugin);
    for (const auto& [what, path] : Unreadable(folder)) {
        ksInstance instance = nullptr;
        ExpectEqual(Open(plugin, path.c_str(), instance), ksResultFileUnreadable, "the answer for " + what);
        Expect(instance == nullptr, what + " leaves an instance in the slot");
    }
    ksInstance instance = nullptr;
    ExpectEqual(Open(plugin, nullptr, instance), ksResultFileUnreadable, "the answer for a null path");
    Expect(instance == nullptr, "a null path leaves an instance in the slot");
}

void UnreadableOnAHeldSlot(Plugin& plugin)
{
    const Clip clip(plugin);
    const ksFileInfoRec before = Description(plugin, clip.Instance());
    const TemporaryFolder folder;
    for (const auto& [what, path] : Unreadable(folder)) {
        ksInstance instance = clip.Instance();
        ExpectEqual(Open(plugin, path.c_str(), instance), ksResultFileUnreadable, "the answer for " + what);
        Expect(instance == clip.Instance(), what + " changes the slot");
        ExpectSame(Description(plugin, clip.Instance()), before,
                   "the clip is described otherwise after an open request for " + what);
    }
}

void OpensAgain(Plugin& plugin)
{
    const Clip clip(plugin);
    const ksFileInfoRec before = Description(plugin, clip.Instance());
    const std::u16string path = Wide(plugin.Document());
    ksInstance instance = clip.Instance();
    ExpectEqual(Open(plugin, path.c_str(), instance), ksResultServed, "the answer to a second open request");
    Expect(instance == clip.Instance(), "a second open request changes the slot");
    ExpectSame(Description(plugin, instance), before, "the clip is described otherwise once opened again");
}

void ClosedFileStaysOpen(Plugin& plugin)
{
    const Clip clip(plugin);
    const ksFileInfoRec before = Description(plugin, clip.Instance());
    const Picture picture = RequestPicture(plugin, clip.Instance(), 0);
    ExpectEqual(plugin.Request(ksSelectorCloseFile, ForeignStdParms(), nullptr, clip.Instance()),
                ksResultServed, "the answer to the request to close the file");
    ExpectSame(Description(plugin, clip.Instance()), before,
               "the clip is described otherwise once its file was closed");
    Expect(RequestPicture(plugin, clip.Instance(), 0) == picture,
           "the clip shows another picture once its file was closed");
}

void ManyAtOnce(Plugin& plugin)
{
    const Clip clip(plugin);
    const ksFileInfoRec expected = Description(plugin, clip.Instance());
    const std::u16string path = Wide(plugin.Document());
    std::vector<ksInstance> instances(48, nullptr);
    for (ksInstance& instance : instances) {
        ExpectEqual(Open(plugin, path.c_str(), instance), ksResultServed, "the answer to one of 48 opens");
    }
    // Every third one first, then the rest: not in the order of their making.
    for (std::size_t at = 0; at < instances.size(); at += 3) {
        Delete(plugin, std::exchange(instances[at], nullptr));
    }
    for (const ksInstance instance : instances) {
        if (instance != nullptr) {
            ExpectSame(Description(plugin, instance), expected, "one of 48 instances is described otherwise");
            Delete(plugin, instance);
        }
    }
}

/// The document with some of its bytes changed, cut off, repeated, removed or inserted.
std::string Damaged(std::string bytes, std::mt19937_64& random)
{
    const auto below = [&random](std::size_t limit) {
        return static_cast<std::size_t>(random() % std::max<std::size_t>(limit, 1));
    };
    for (std::size_t damages = 1 + below(4); damages > 0; --damages) {
        const std::size_t at = below(bytes.size());
        switch (below(5)) {
        case 0:
            bytes.resize(at);
            break;
        case 1:
            bytes.insert(at, bytes.substr(0, below(64)));
            break;
        case 2:
            bytes.erase(at, below(16));
            break;
        case 3:
            bytes.insert(at, 1, static_cast<char>(below(256)));
            break;
        default:
            if (!bytes.empty()) {
                bytes[at] = static_cast<char>(bytes[at] ^ (1 << below(8)));
            }
            break;
        }
    }
    return bytes;
}

void DamagedDocuments(Plugin& plugin)
{
    std::ifstream stream(plugin.Document(), std::ios::binary);
    const std::string document(std::istreambuf_iterator<char>(stream), {});
    const TemporaryFolder folder;
    RequireStartUp(plugin);
    std::mt19937_64 random(plugin.Seed());
    Foreign().mostPixels = 1'000'000; // sizes are damaged too
    for (int round = 0; round < 200; ++round) {
        // The first one is empty.
        const std::string bytes = round == 0 ? std::string() : Damaged(document, random);
        const std::u16string path =
            Wide(folder.Write("damaged" + plugin.Document().extension().string(), bytes));
        ksInstance instance = nullptr;
        const std::int32_t answer = Open(plugin, path.c_str(), instance);
        Expect((answer == ksResultServed) == (instance != nullptr),
               "answer " + std::to_string(answer) + " and the slot disagree for damaged document " +
                   std::to_string(round));
        if (instance == nullptr) {
            continue;
        }
        GuardedRecord info;
        (void)Describe(plugin, instance, info);
        (void)RequestPicture(plugin, instance, 0);
        Delete(plugin, instance);
    }
}

const std::vector<Field>& DescribedFields()
{
    static const std::vector<Field> kFields = {
        {offsetof(ksFileInfoRec, hasVideo), 2},        {offsetof(ksFileInfoRec, frameWidth), 8},
        {offsetof(ksFileInfoRec, depth), 2},           {offsetof(ksFileInfoRec, fieldType), 1},
        {offsetof(ksFileInfoRec, flag22), 1},          {offsetof(ksFileInfoRec, parNumerator), 8},
        {offsetof(ksFileInfoRec, flag54), 4},          {offsetof(ksFileInfoRec, supportsColorManagement), 4},
        {offsetof(ksFileInfoRec, videoTimeScale), 24}, {offsetof(ksFileInfoRec, instance), 8}};
    return kFields;
}

void DescribesWhatAHostCanPlay(Plugin& plugin)
{
    const Clip clip(plugin);
    GuardedRecord record;
    ExpectEqual(Describe(plugin, clip.Instance(), record), ksResultServed, "the answer to the description");
    record.ExpectChangedOnly(DescribedFields(), "the description request");
    const ksFileInfoRec info = InfoOf(record);
    Expect(info.hasVideo <= 1 && info.hasAudio <= 1 && info.hasVideo + info.hasAudio > 0,
           "the clip has neither pictures nor sound, or a flag of theirs is not 0 or 1");
    const auto expectFrom1To = [](long long value, long long largest, const std::string& what) {
        Expect(value >= 1 && value <= largest,
               what + " is " + std::to_string(value) + ", outside 1 to " + std::to_string(largest));
    };
    if (info.hasVideo != 0) {
        expectFrom1To(info.frameWidth, 100'000, "the frame width");
        expectFrom1To(info.frameHeight, 100'000, "the frame height");
        expectFrom1To(info.parNumerator, 0xFFFFFFFF, "the numerator of the pixel aspect ratio");
        expectFrom1To(info.parDenominator, 0xFFFFFFFF, "the denominator of the pixel aspect ratio");
        expectFrom1To(info.videoTimeScale, 0x7FFFFFFF, "the time scale");
        expectFrom1To(info.videoSampleSize, 0x7FFFFFFF, "the sample size");
        expectFrom1To(info.videoDuration, 0x7FFFFFFF, "the duration");
        ExpectEqual(info.videoDuration % info.videoSampleSize, 0, "the units behind the last whole frame");
        Expect(info.fieldType <= 2, "the field type is " + std::to_string(info.fieldType));
    }
    if (info.hasAudio != 0) {
        expectFrom1To(info.audioChannelCount, 64, "the channel count");
        const float rate = info.audioSampleRate;
        Expect(std::isfinite(rate) && rate > 0.0F, "the sample rate is " + std::to_string(rate));
    }
}

void DescribesTheSame(Plugin& plugin)
{
    const Clip clip(plugin);
    const ksFileInfoRec first = Description(plugin, clip.Instance());
    ExpectSame(Description(plugin, clip.Instance()), first, "a second description differs from the first");
    const Clip other(plugin);
    ExpectSame(Description(plugin, other.Instance()), first, "a second instance is described otherwise");
}

void DescribesNothing(Plugin& plugin)
{
    RequireStartUp(plugin);
    GuardedRecord access;
    access.Put<const char16_t*>(offsetof(ksFileAccessRec, path), nullptr);
    GuardedRecord info;
    info.Put<ksInstance>(offsetof(ksFileInfoRec, instance), nullptr);
    info.Put<const char*>(offsetof(ksFileInfoRec, settingsText), nullptr);
    ExpectEqual(plugin.Request(ksSelectorClipDescription, ForeignStdParms(), access.Data(), info.Data()),
                ksResultFileUnreadable, "the answer for a clip with neither a file nor a settings text");
    info.ExpectChangedOnly({{offsetof(ksFileInfoRec, hasVideo), 2}, {offsetof(ksFileInfoRec, instance), 8}},
                           "a description request that is answered 2");
    access.ExpectUnchanged("the description request's file access");
    const auto instance = info.Get<ksInstance>(offsetof(ksFileInfoRec, instance));
    if (instance != nullptr) {
        Delete(plugin, instance);
    }
}

} // namespace

std::vector<Check> OpenChecks()
{
    return {
        {"open.document", "Selector 39 stores an instance in its slot, and selector 9 deletes it",
         OpensAndDeletes},
        {"open.unreadable", "An unreadable path answers 2 and leaves an empty slot null",
         UnreadableOnAFreshSlot},
        {"open.unreadable-held", "An unreadable path answers 2 and leaves an open clip unchanged",
         UnreadableOnAHeldSlot},
        {"open.again", "The same document can be opened again into its instance", OpensAgain},
        {"open.closed-file", "Selector 8 answers 0, and the clip can still be described and shown",
         ClosedFileStaysOpen},
        {"open.many", "48 instances of one document can be open at once and be deleted in any order",
         ManyAtOnce},
        {"open.damaged",
         "200 damaged documents are opened or refused without a crash, and an opened one can be described and "
         "shown",
         DamagedDocuments},
    };
}

std::vector<Check> DescribeChecks()
{
    return {
        {"describe.fields",
         "The description holds values that a host can play, and only its fields are written",
         DescribesWhatAHostCanPlay},
        {"describe.same", "Every description of a document is the same", DescribesTheSame},
        {"describe.nothing",
         "A clip with neither a file nor a settings text answers 2, and nothing is described",
         DescribesNothing},
    };
}

} // namespace conformance
