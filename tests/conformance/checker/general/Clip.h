/// A clip in the state in which a host uses it: importer started, document opened and described.
#pragma once

#include "../host/ForeignHost.h"
#include "../host/GuardedRecord.h"
#include "../host/TemporaryFolder.h"
#include "GeneralChecks.h"

#include <kestrel/importabi/Records.h>
#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/importabi/Selectors.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

namespace conformance {

/// Sends the start-up request, with a debug database that lets test plug-ins load.
/// @return the answer, and what was written in `record`.
[[nodiscard]] std::int32_t StartUp(const Plugin& plugin, GuardedRecord& record);

/// Starts the importer. @throws Violation where it does not start.
void RequireStartUp(const Plugin& plugin);

/// Sends the open request (39) for `path`, which may be null, with `instance` as its slot.
/// @return the answer. @throws Violation where anything but the slot was written.
[[nodiscard]] std::int32_t Open(const Plugin& plugin, const char16_t* path, ksInstance& instance);

/// Sends the description request (37) for the opened document. @return the answer, the record in `info`.
[[nodiscard]] std::int32_t Describe(const Plugin& plugin, ksInstance instance, GuardedRecord& info);

/// The description of a clip, as its record holds it. Fields are unaligned: read them by value.
[[nodiscard]] ksFileInfoRec InfoOf(const GuardedRecord& info);

/// The document's clip, opened and described in the constructor and deleted in the destructor.
class Clip {
public:
    /// @throws Violation where a request fails; Skipped where there is no document.
    explicit Clip(const Plugin& plugin);
    ~Clip();
    Clip(const Clip&) = delete;
    Clip& operator=(const Clip&) = delete;

    [[nodiscard]] ksInstance Instance() const noexcept { return mInstance; }
    [[nodiscard]] const ksFileInfoRec& Info() const noexcept { return mInfo; }

    /// @throws Skipped where the clip has no pictures, or no sound. @{
    void RequireVideo() const;
    void RequireAudio() const;
    /// @}

    /// About an hour: a clip of longer frames is not asked for times within it.
    static constexpr std::int64_t kLongestFrame = 1'000'000'000'000'000;

    /// Ticks of one frame; 0 where the description gives no whole number of them, or more than `kLongestFrame`.
    [[nodiscard]] std::int64_t TicksPerFrame() const;
    /// Frames of the clip, at least one, and as many as `kLongestFrame` leaves below 2^63 ticks.
    [[nodiscard]] std::int64_t FrameCount() const;

private:
    const Plugin& mPlugin;
    ksInstance mInstance = nullptr;
    ksFileInfoRec mInfo{};
};

/// What a frame request gave.
struct Picture {
    std::int32_t answer = 0;
    std::vector<std::uint8_t> bytes; ///< of the rows, in the order of the row step, without padding

    [[nodiscard]] bool operator==(const Picture&) const = default;
};

/// Requests the frame at `ticks`, and frees it. Threads: [any-thread].
/// @throws Violation where it is served without a frame of ours, or bytes outside the picture were written.
[[nodiscard]] Picture RequestPicture(const Plugin& plugin, ksInstance instance, std::int64_t ticks);

/// The picture at `ticks`. @throws Violation where the answer is not 0.
[[nodiscard]] Picture RequirePicture(const Plugin& plugin, const Clip& clip, std::int64_t ticks);

/// Buffers for a request for sound: at least six, as a host gives, each with guard samples on both sides.
class SoundBuffers {
public:
    static constexpr float kUntouched = 7.0F;
    static constexpr std::size_t kGuard = 64;

    SoundBuffers(int channels, std::uint32_t sampleCount);

    [[nodiscard]] float** Pointers() noexcept { return mPointers.data(); }
    /// The samples of a channel, without its guards.
    [[nodiscard]] std::vector<float> Channel(std::size_t channel) const;
    [[nodiscard]] bool GuardsIntact() const;

private:
    std::vector<std::vector<float>> mSamples;
    std::vector<float*> mPointers;
};

/// What a request for sound gave.
struct Sound {
    std::int32_t answer = 0;
    std::vector<std::vector<float>> channels; ///< of the clip

    /// Bit for bit: a NaN equals itself.
    [[nodiscard]] bool operator==(const Sound& other) const;
};

/// Requests `sampleCount` samples from `position` on. Threads: [any-thread].
/// @throws Violation where anything outside the request was written.
[[nodiscard]] Sound RequestSound(const Plugin& plugin, const Clip& clip, std::int64_t position,
                                 std::uint32_t sampleCount);

/// The same. @throws Violation where the answer is not 0.
[[nodiscard]] Sound RequireSound(const Plugin& plugin, const Clip& clip, std::int64_t position,
                                 std::uint32_t sampleCount);

} // namespace conformance
