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
struct ForeignHostState {
    std::size_t rowPadding = 0;
    bool upwards = false;
    std::uint8_t filling = 0x77;
    std::int32_t pixelsStatus = 0;
    std::int32_t boundsStatus = 0;
    std::int32_t rowBytesStatus = 0;
    std::int32_t createStatus = 0;
    bool createNothing = false;
    std::int32_t legacyStatus = 0;
    std::int32_t legacyTimeScale = 30;
    std::int32_t legacySampleSize = 1;
    std::int64_t legacyTicks = 0;
    bool hasMemory = true;                  ///< false: the allocator gives null
    std::vector<std::string> refusedSuites; ///< by name

    std::vector<std::string> acquired; ///< "name/version"
    std::vector<CreateCall> creations;
    std::vector<std::int64_t> legacyTicksAsked;
    std::vector<std::unique_ptr<ForeignFrame>> frames;
    std::vector<ForeignBlock> blocks;
};

[[nodiscard]] ForeignHostState& Foreign();

/// The foreign host's standard parameters. Static storage; every reserved byte is 0xCC.
[[nodiscard]] const ksStdParms* ForeignStdParms();

/// A second set of tables, whose suites all refuse everything.
[[nodiscard]] const ksStdParms* RefusingStdParms();

/// A folder that is removed with the check's process; files in it.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& Path() const noexcept { return mPath; }
    [[nodiscard]] std::filesystem::path Write(const std::string& name, const std::string& bytes) const;

private:
    std::filesystem::path mPath;
};

/// A path as requests carry it.
[[nodiscard]] std::u16string Wide(const std::filesystem::path& asciiPath);

} // namespace conformance
