/// Requests on many threads at once, on one instance and on several.

#include "Clip.h"

#include <atomic>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

namespace conformance {

namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 12;

/// Runs `work(thread, round)` on all threads at once. @throws what the first of them threw.
void OnThreads(const std::function<void(int, int)>& work)
{
    std::exception_ptr failure;
    std::mutex failureMutex;
    std::atomic<int> waiting{kThreads};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            for (--waiting; waiting > 0;) { // all begin at once
                std::this_thread::yield();
            }
            try {
                for (int round = 0; round < kRounds; ++round) {
                    work(thread, round);
                }
            } catch (...) {
                const std::lock_guard lock(failureMutex);
                failure = failure ? failure : std::current_exception();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

void FramesOnThreads(Plugin& plugin)
{
    const Clip clip(plugin);
    clip.RequireVideo();
    const Clip other(plugin);
    // The host lets the first frame request of a process run alone; these are the first ones.
    std::vector<Picture> expected;
    for (int frame = 0; frame < kThreads; ++frame) {
        expected.push_back(RequirePicture(plugin, clip, frame * clip.TicksPerFrame()));
    }
    OnThreads([&](int thread, int round) {
        const int frame = (thread + round) % kThreads;
        const Clip& which = (thread + round) % 3 == 0 ? other : clip;
        Expect(RequirePicture(plugin, which, frame * clip.TicksPerFrame()) ==
                   expected[static_cast<std::size_t>(frame)],
               "frame " + std::to_string(frame) + " differs when eight threads ask for frames");
    });
}

void SoundOnThreads(Plugin& plugin)
{
    const Clip clip(plugin);
    clip.RequireAudio();
    const Clip other(plugin);
    constexpr std::uint32_t kSamples = 2'400;
    std::vector<Sound> expected;
    for (int part = 0; part < kThreads; ++part) {
        expected.push_back(RequireSound(plugin, clip, part * std::int64_t{kSamples}, kSamples));
    }
    OnThreads([&](int thread, int round) {
        const int part = (thread + round) % kThreads;
        const Clip& which = (thread + round) % 3 == 0 ? other : clip;
        Expect(RequireSound(plugin, which, part * std::int64_t{kSamples}, kSamples) ==
                   expected[static_cast<std::size_t>(part)],
               "part " + std::to_string(part) + " of the sound differs when eight threads ask for sound");
    });
}

void InstancesOnThreads(Plugin& plugin)
{
    const Clip clip(plugin); // the host serialises start-up
    const std::u16string path = Wide(plugin.Document());
    OnThreads([&](int, int) {
        ksInstance instance = nullptr;
        ExpectEqual(Open(plugin, path.c_str(), instance), ksResultServed, "the open request on a thread");
        GuardedRecord info;
        ExpectEqual(Describe(plugin, instance, info), ksResultServed, "the description on a thread");
        ExpectEqual(InfoOf(info).frameWidth, clip.Info().frameWidth, "the width described on a thread");
        ExpectEqual(plugin.Request(ksSelectorDeleteInstance, ForeignStdParms(), nullptr, instance),
                    ksResultServed, "the delete request on a thread");
    });
}

} // namespace

std::vector<Check> ThreadChecks()
{
    return {
        {"threads.frames", "Eight threads get the same frames as one, from one instance and from two",
         FramesOnThreads},
        {"threads.sound", "Eight threads get the same sound as one, from one instance and from two",
         SoundOnThreads},
        {"threads.instances", "Eight threads can open, describe and delete instances of their own at once",
         InstancesOnThreads},
    };
}

} // namespace conformance
