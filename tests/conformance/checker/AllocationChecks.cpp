/// Failing allocations: each request is repeated with its first, second, third ... allocation failing.

#include "AllocationFailures.h"
#include "Check.h"
#include "Requests.h"

#include <string>

namespace conformance {

namespace {

constexpr int kMostAllocations = 20'000;

/// Runs `request` with allocation 1, 2, 3 ... failing until none fails any more. @return how many failed.
template <class Request>
int FailEach(const Request& request)
{
    for (int nth = 1; nth < kMostAllocations; ++nth) {
        AllocationFailures::FailNth(nth);
        const std::int32_t answer = request();
        const bool failed = AllocationFailures::HasFailed();
        AllocationFailures::Stop();
        if (!failed) {
            ExpectEqual(answer, 0, "the request without a failing allocation");
            return nth - 1;
        }
        Expect(answer == 4 || answer == 0,
               "allocation " + std::to_string(nth) + " failing is answered " + std::to_string(answer));
    }
    throw Violation("the request never ends to allocate");
}

void CreatingAnInstance(Plugin& plugin)
{
    GuardedRecord record;
    bool outOfMemory = false;
    for (int nth = 1; nth < 100; ++nth) {
        record.Put<ksInstance>(198, nullptr);
        AllocationFailures::FailNth(nth);
        const std::int32_t answer = plugin.Request(81, ForeignStdParms(), nullptr, record.Data());
        const bool failed = AllocationFailures::HasFailed();
        AllocationFailures::Stop();
        if (!failed) {
            ExpectEqual(answer, 3, "selector 81");
            Expect(outOfMemory, "selector 81 allocates nothing");
            return;
        }
        outOfMemory = true;
        ExpectEqual(answer, 4, "selector 81 out of memory");
        Expect(record.Get<ksInstance>(198) == nullptr, "selector 81 out of memory stores an instance");
    }
}

void Opening(Plugin& plugin)
{
    const TemporaryFolder folder;
    const std::u16string path = Wide(folder.Write("clip.tessel", Document("\"mVersion\": 1,")));
    GuardedRecord open;
    open.Put(12, path.c_str());
    const int failures = FailEach([&] {
        open.Put<ksInstance>(36, nullptr);
        const std::int32_t answer = plugin.Request(39, ForeignStdParms(), nullptr, open.Data());
        const bool failed = AllocationFailures::HasFailed();
        AllocationFailures::Stop();
        const auto instance = open.Get<ksInstance>(36);
        if (answer != 0) {
            Expect(instance == nullptr, "a failed open leaves an instance in a fresh slot");
        } else {
            ExpectEqual(plugin.Request(9, ForeignStdParms(), nullptr, instance), 0, "selector 9");
        }
        if (failed) {
            AllocationFailures::PretendFailed();
        }
        return answer;
    });
    Expect(failures > 3, "opening allocates almost nothing");
}

void FramesAndSound(Plugin& plugin)
{
    const ksInstance instance = OpenDocument(plugin, Document("\"mToneFormat\": 1, \"mIdentifierFormat\": 3,"));
    void* frame = nullptr;
    ExpectEqual(RequestFrame(plugin, instance, 0, frame), 0, "selector 47");
    std::vector<std::vector<float>> samples(6, std::vector<float>(48'000));
    std::vector<float*> channels;
    channels.reserve(samples.size());
    for (auto& channel : samples) {
        channels.push_back(channel.data());
    }
    GuardedRecord request;
    request.Put<std::int64_t>(0, 0);
    request.Put<std::uint32_t>(8, 48'000);
    request.Put(12, channels.data());
    request.Put(20, instance);
    FailEach([&] { return plugin.Request(25, ForeignStdParms(), nullptr, request.Data()); });
    GuardedRecord color;
    color.Put(0, instance);
    FailEach([&] { return plugin.Request(73, ForeignStdParms(), nullptr, color.Data()); });
    ExpectEqual(RequestFrame(plugin, instance, 0, frame), 0, "selector 47 afterwards");
}

} // namespace

std::vector<Check> AllocationChecks()
{
    return {
        {"allocation.create", "Out of memory while creating an instance answers 4 and stores none",
         CreatingAnInstance},
        {"allocation.open",
         "Out of memory while opening answers 4, or opens the default clip, and leaves no instance", Opening},
        {"allocation.serve", "Out of memory while serving leaves the instance usable", FramesAndSound},
    };
}

} // namespace conformance
