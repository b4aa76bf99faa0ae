/// A host that shares nothing with ours but the wire format: its own tables, frames and suites.
#pragma once

#include <kestrel/importabi/StandardParameters.h>
#include <kestrel/importabi/Suites.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace conformance {

/// A frame of the foreign host: rows with padding, and guard bytes around everything.
struct ForeignFrame {
    static constexpr std::uint8_t kGuard = 0xA5;
    static constexpr std::size_t kGuardBytes = 4096;

    ForeignFrame(std::size_t rowBytesUsed, std::size_t padding, int rows, bool upwards, std::uint8_t filling);

    /// Row `row` counted in the order in which memory addresses step, from the address given out.
    [[nodiscard]] const std::uint8_t* Row(int row) const;
    /// Whether paddings and the bytes before and after all rows are as they were.
    [[nodiscard]] bool GuardsIntact() const;

    std::size_t usedBytes;
    int rows;
    std::ptrdiff_t step; ///< what the suite reports
    std::uint8_t* first; ///< what the suite gives as the pixels
    std::vector<std::uint8_t> memory;
};

/// A block of the foreign host's memory, with guard bytes behind it.
struct ForeignBlock {
    static constexpr std::uint8_t kGuard = 0xA5;
    static constexpr std::size_t kGuardBytes = 64;

    explicit ForeignBlock(std::uint32_t bytes);

    [[nodiscard]] void* Data() const noexcept { return memory.get(); }
    /// Whether the bytes behind it are as they were.
    [[nodiscard]] bool IsGuardIntact() const;

    std::uint32_t size; ///< as it was asked for
    std::unique_ptr<std::uint8_t[]> memory;
};

/// What a frame creation was called with.
struct CreateCall {
    std::int32_t access;
    std::uint32_t pixelFormat;
    std::int32_t width;
    std::int32_t height;
    bool reserved5;
    std::int32_t reserved6;
    std::uint32_t parNumerator;
    std::uint32_t parDenominator;
    void* extra16;
};

/// How the foreign host behaves, and what it has seen. One per process: C function tables carry no context.
/// Its functions may be called on many threads; how it behaves is set while none runs.
struct ForeignHostState {
    std::size_t rowPadding = 0;
    bool upwards = false;
    std::uint8_t filling = 0x77;
    std::int32_t pixelsStatus = 0;
    std::int32_t boundsStatus = 0;
    std::int32_t rowBytesStatus = 0;
    std::int32_t createStatus = 0;
    std::int64_t mostPixels = 40'000'000; ///< larger frames are refused
    bool createNothing = false;
    std::int32_t legacyStatus = 0;
    std::int32_t legacyTimeScale = -1; ///< with the next: given for every rate; -1: the rate's own pair
    std::int32_t legacySampleSize = 1;
    std::int64_t legacyTicks = -1;          ///< given for every pair; -1: the pair's own ticks
    bool hasMemory = true;                  ///< false: the allocator gives null
    std::vector<std::string> refusedSuites; ///< by name
    void (*beforeCreation)() = nullptr;     ///< called first by every frame creation; may throw

    std::vector<std::string> acquired; ///< "name/version"
    std::vector<CreateCall> creations;
    std::vector<std::int64_t> legacyTicksAsked;
    std::vector<std::unique_ptr<ForeignFrame>> frames;
    std::vector<ForeignBlock> blocks;
};

[[nodiscard]] ForeignHostState& Foreign();

/// The frame that a request stored as `handle`; null where the host made no such frame.
[[nodiscard]] ForeignFrame* FindFrame(const void* handle);

/// Frees a frame. Null is no frame.
void FreeFrame(const ForeignFrame* frame);

/// The foreign host's standard parameters. Static storage; every reserved byte is 0xCC.
[[nodiscard]] const ksStdParms* ForeignStdParms();

/// The first index that an enumeration does not have, as it travels in param1.
inline void* const kIndexOne = reinterpret_cast<void*>(1);

/// A second set of tables, whose suites all refuse everything.
[[nodiscard]] const ksStdParms* RefusingStdParms();

/// A path as requests carry it.
[[nodiscard]] std::u16string Wide(const std::filesystem::path& path);

} // namespace conformance
