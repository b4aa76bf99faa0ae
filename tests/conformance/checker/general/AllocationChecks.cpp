/// Failing allocations: each request is repeated with its first, second, third ... allocation failing. And
/// leaks: deleting a clip frees what opening and using it allocated.

#include "../host/AllocationFailures.h"
#include "Clip.h"

#include <functional>

namespace conformance {

namespace {

constexpr int kMostAllocations = 20'000;

/// One selector's request, to be repeated.
struct Repeatable {
    std::string what;
    std::function<std::int32_t()> send; ///< the request alone: what this allocates, the plug-in allocates
    /// Judges the answer and deletes what the request made.
    std::function<void(std::int32_t)> after = [](std::int32_t) {};
    std::int32_t served = ksResultServed; ///< the answer where no allocation fails
};

/// The allocations that one undisturbed request makes.
long CountAllocations(const Repeatable& request)
{
    const long before = AllocationFailures::Made();
    const std::int32_t answer = request.send();
    const long made = AllocationFailures::Made() - before;
    request.after(answer);
    ExpectEqual(answer, request.served, request.what + " with memory enough");
    return made;
}

/// Runs the request with each of its allocations failing in turn.
/// @throws Skipped where it makes none: then there is nothing to prove.
void FailEachAllocation(const Repeatable& request)
{
    (void)CountAllocations(request); // what is allocated once and for all is there afterwards
    if (CountAllocations(request) == 0) {
        throw Skipped(request.what + " allocates nothing through operator new");
    }
    for (int nth = 1;; ++nth) {
        Expect(nth < kMostAllocations, request.what + " never stops to allocate");
        AllocationFailures::FailNth(nth);
        const std::int32_t answer = request.send();
        const bool hasFailed = AllocationFailures::HasFailed();
        AllocationFailures::Stop();
        request.after(answer);
        if (!hasFailed) {
            Expect(nth > 1, request.what + " was to allocate and did not");
            ExpectEqual(answer, request.served, request.what + " with memory enough again");
            return;
        }
        Expect(answer == ksResultOutOfMemory || answer == request.served,
               request.what + " is answered " + std::to_string(answer) + " where allocation " +
                   std::to_string(nth) + " fails");
    }
}

void Creating(Plugin& plugin)
{
    RequireStartUp(plugin);
    GuardedRecord record;
    Repeatable request;
    request.what = "selector 81";
    request.send = [&] {
        record.Put<ksInstance>(offsetof(ksFileInfoRec, instance), nullptr);
        return plugin.Request(ksSelectorCreateInstance, ForeignStdParms(), nullptr, record.Data());
    };
    request.after = [&](std::int32_t answer) {
        const auto instance = record.Get<ksInstance>(offsetof(ksFileInfoRec, instance));
        Expect(answer != ksResultOutOfMemory || instance == nullptr, "an instance is stored out of memory");
        if (instance != nullptr) {
            (void)plugin.Request(ksSelectorDeleteInstance, ForeignStdParms(), nullptr, instance);
        }
    };
    request.served = request.send();
    request.after(request.served);
    FailEachAllocation(request);
}

void Opening(Plugin& plugin)
{
    const std::u16string path = Wide(plugin.Document());
    RequireStartUp(plugin);
    GuardedRecord record;
    record.Put(offsetof(ksOpenRec, path), path.c_str());
    Repeatable request;
    request.what = "selector 39";
    request.send = [&] {
        record.Put<ksInstance>(offsetof(ksOpenRec, instance), nullptr);
        return plugin.Request(ksSelectorOpenFile, ForeignStdParms(), nullptr, record.Data());
    };
    request.after = [&](std::int32_t answer) {
        const auto instance = record.Get<ksInstance>(offsetof(ksOpenRec, instance));
        Expect((answer == ksResultServed) == (instance != nullptr),
               "answer " + std::to_string(answer) + " and the slot disagree");
        if (instance != nullptr) {
            (void)plugin.Request(ksSelectorDeleteInstance, ForeignStdParms(), nullptr, instance);
        }
    };
    FailEachAllocation(request);
}

void Describing(Plugin& plugin)
{
    const Clip clip(plugin);
    const std::u16string path = Wide(plugin.Document());
    GuardedRecord access;
    access.Put(offsetof(ksFileAccessRec, path), path.c_str());
    GuardedRecord info;
    info.Put(offsetof(ksFileInfoRec, instance), clip.Instance());
    info.Put<const char*>(offsetof(ksFileInfoRec, settingsText), nullptr);
    FailEachAllocation({"selector 37", [&] {
                            return plugin.Request(ksSelectorClipDescription, ForeignStdParms(), access.Data(),
                                                  info.Data());
                        }});
}

void GivingFrames(Plugin& plugin)
{
    const Clip clip(plugin);
    clip.RequireVideo();
    const Picture expected = RequirePicture(plugin, clip, 0);
    void* handle = nullptr;
    GuardedRecord request;
    request.Put(offsetof(ksFrameRec, instance), clip.Instance());
    request.Put<std::int64_t>(offsetof(ksFrameRec, time), 0);
    request.Put(offsetof(ksFrameRec, frame), &handle);
    FailEachAllocation({"selector 47",
                        [&] {
                            handle = nullptr;
                            return plugin.Request(ksSelectorFrame, ForeignStdParms(), nullptr, request.Data());
                        },
                        [&](std::int32_t) { FreeFrame(FindFrame(handle)); }});
    Expect(RequirePicture(plugin, clip, 0) == expected, "the picture differs once memory was short");
}

void GivingSound(Plugin& plugin)
{
    const Clip clip(plugin);
    clip.RequireAudio();
    const Sound expected = RequireSound(plugin, clip, 0, 4'800);
    SoundBuffers buffers(clip.Info().audioChannelCount, 4'800);
    GuardedRecord request;
    request.Put<std::int64_t>(offsetof(ksAudioRec, position), 0);
    request.Put<std::uint32_t>(offsetof(ksAudioRec, sampleCount), 4'800);
    request.Put(offsetof(ksAudioRec, channels), buffers.Pointers());
    request.Put(offsetof(ksAudioRec, instance), clip.Instance());
    FailEachAllocation({"selector 25", [&] {
                            return plugin.Request(ksSelectorAudio, ForeignStdParms(), nullptr, request.Data());
                        }});
    Expect(RequireSound(plugin, clip, 0, 4'800) == expected, "the sound differs once memory was short");
}

void GivingColorCodes(Plugin& plugin)
{
    const Clip clip(plugin);
    GuardedRecord color;
    color.Put(offsetof(ksColorRec, instance), clip.Instance());
    const auto send = [&] {
        return plugin.Request(ksSelectorColorInformation, ForeignStdParms(), nullptr, color.Data());
    };
    FailEachAllocation({"selector 73", send, [](std::int32_t) {}, send()});
}

void GivingSettings(Plugin& plugin)
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
    std::vector<char> buffer(exchange.Get<std::uint32_t>(offsetof(ksSettingsExchangeRec, bufferSize)));
    exchange.Put(offsetof(ksSettingsExchangeRec, text), buffer.data());
    FailEachAllocation({"selector 38", send});
}

void NothingIsLeft(Plugin& plugin)
{
    const auto liveOnce = [&plugin] {
        const Clip clip(plugin);
        (void)RequestPicture(plugin, clip.Instance(), 0);
        (void)RequestSound(plugin, clip, 0, 480);
        Foreign().creations.clear();
        Foreign().acquired.clear();
        Foreign().legacyTicksAsked.clear();
        Foreign().blocks.clear();
    };
    liveOnce(); // what is allocated once and for all is there afterwards
    liveOnce();
    const long before = AllocationFailures::Outstanding();
    constexpr int kLives = 10;
    for (int life = 0; life < kLives; ++life) {
        liveOnce();
    }
    const long left = AllocationFailures::Outstanding() - before;
    Expect(left < kLives, std::to_string(left) + " blocks of memory are left by " + std::to_string(kLives) +
                              " clips that were opened, used and deleted");
}

} // namespace

std::vector<Check> AllocationChecks()
{
    return {
        {"allocation.create",
         "Where an allocation fails, selector 81 answers 4 without an instance, or succeeds", Creating},
        {"allocation.open", "Where an allocation fails, selector 39 answers 4 without an instance, or succeeds",
         Opening},
        {"allocation.describe", "Where an allocation fails, selector 37 answers 4 or succeeds", Describing},
        {"allocation.frame", "Where an allocation fails, selector 47 answers 4 or succeeds", GivingFrames},
        {"allocation.sound", "Where an allocation fails, selector 25 answers 4 or succeeds", GivingSound},
        {"allocation.color", "Where an allocation fails, selector 73 answers 4 or succeeds", GivingColorCodes},
        {"allocation.settings", "Where an allocation fails, selector 38 answers 4 or succeeds", GivingSettings},
        {"allocation.left", "A clip that was opened, used and deleted leaves no memory allocated",
         NothingIsLeft},
    };
}

} // namespace conformance
