/// A host that is not ours: tables that may have holes, suites that may be missing, an allocator that may
/// fail, frames with padded or backward rows in guarded memory.
#pragma once

#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/importabi/StandardParameters.h>
#include <kestrel/importabi/Suites.h>

#include <support/PaintableFormats.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace testsupport {

/// A test changes what it wants to be different: a table, a suite, the behaviour. One host at a time, because
/// the wire format's functions carry no context: they belong to the host that was made last.
class ForeignHost {
public:
    static constexpr std::byte kUnpainted{0xC3};
    static constexpr std::byte kGuard{0xA7};

    struct Behaviour {
        std::size_t guardBytes = 256; ///< before and after a frame's rows
        std::size_t rowPadding = 24;
        bool backwards = false; ///< row 0 is the last in memory and the step negative
        std::int32_t largestSide =
            0x7FFFFFFF; ///< a wider or higher frame is refused, and so is a negative size
        bool creatorReportsFailure = false;
        bool creatorGivesNull = false;
        bool boundsFail = false, rowBytesFail = false, pixelsFail = false, pixelsAreNull = false;
        bool allocatorFails = false;
        std::int32_t legacyStatus = 0;
    };

    /// The arguments of the last `createFrame`, and how many there were.
    struct Creation {
        std::int32_t count = 0;
        void** frameSlot = nullptr;
        std::int32_t access = 0;
        std::uint32_t pixelFormat = 0;
        std::int32_t width = 0, height = 0;
        bool reserved5 = true;
        std::int32_t reserved6 = -1;
        std::uint32_t parNumerator = 0, parDenominator = 0;
        void* extra16 = nullptr;
    };

    using SuiteName = std::pair<std::string_view, std::int32_t>;

    /// Memory of one frame: guard bytes, rows that are painted or not, guard bytes.
    class Frame {
    public:
        Frame(const Behaviour& behaviour, std::uint32_t sdkCode, std::uint32_t width, std::uint32_t height)
            : mGuardBytes(behaviour.guardBytes), mLength(RowLengthOf(sdkCode, width)),
              mStep(mLength + behaviour.rowPadding), mWidth(width), mHeight(height),
              mBackwards(behaviour.backwards), mMemory(mGuardBytes * 2 + mStep * height, kGuard)
        {
            for (std::uint32_t row = 0; row < height; ++row) {
                std::memset(mMemory.data() + mGuardBytes + mStep * row, std::to_integer<int>(kUnpainted),
                            mLength);
            }
        }

        /// The row at the address that the host gives plus `row` steps.
        [[nodiscard]] const std::byte* Row(std::uint32_t row) const
        {
            return First() + static_cast<std::ptrdiff_t>(row) * StepBytes();
        }
        [[nodiscard]] std::uint32_t Width() const { return mWidth; }
        [[nodiscard]] std::uint32_t Height() const { return mHeight; }
        /// Bytes of a row that may be painted.
        [[nodiscard]] std::size_t Length() const { return mLength; }
        [[nodiscard]] std::ptrdiff_t StepBytes() const
        {
            const auto step = static_cast<std::ptrdiff_t>(mStep);
            return mBackwards ? -step : step;
        }
        [[nodiscard]] const std::byte* First() const
        {
            const std::size_t rowsBefore = mBackwards && mHeight > 0 ? mHeight - 1 : 0;
            return mMemory.data() + mGuardBytes + mStep * rowsBefore;
        }
        [[nodiscard]] bool IsUnpainted(std::uint32_t row) const
        {
            return std::all_of(Row(row), Row(row) + mLength, [](std::byte b) { return b == kUnpainted; });
        }
        /// Whether everything outside the rows' own bytes is as it was.
        [[nodiscard]] bool GuardsAreIntact() const
        {
            const auto isGuard = [](std::byte b) { return b == kGuard; };
            auto at = mMemory.begin();
            const auto areGuards = [&](std::size_t count) {
                const auto end = at + static_cast<std::ptrdiff_t>(count);
                return std::all_of(std::exchange(at, end), end, isGuard);
            };
            if (!areGuards(mGuardBytes)) {
                return false;
            }
            for (std::uint32_t row = 0; row < mHeight; ++row) {
                at += static_cast<std::ptrdiff_t>(mLength);
                if (!areGuards(mStep - mLength)) {
                    return false;
                }
            }
            return areGuards(mGuardBytes);
        }

    private:
        static std::size_t RowLengthOf(std::uint32_t sdkCode, std::uint32_t width)
        {
            const std::uint32_t code = PM_QELPixelFormatToPMPixelFormat(BR::SDKToBEPixelFormat(sdkCode));
            return code == 0 ? std::size_t{width} * 4 : RowLength(code, width);
        }

        std::size_t mGuardBytes;
        std::size_t mLength;
        std::size_t mStep;
        std::uint32_t mWidth;
        std::uint32_t mHeight;
        bool mBackwards;
        std::vector<std::byte> mMemory;
    };

    ForeignHost() : ForeignHost(Behaviour{}) {}
    explicit ForeignHost(const Behaviour& itsBehaviour) : behaviour(itsBehaviour)
    {
        sCurrent = this;
        asked.reserve(16);
        memory.newBlock = &NewBlock;
        access.acquireSuite = &Acquire;
        utility.getSuiteAccess = [] { return &sCurrent->access; };
        services.memory = &memory;
        services.utility = &utility;
        stdParms.services = &services;
        legacy1.timeScaleToTicks = &TimeScaleToTicks;
        legacy2.ticksToTimeScale = &TicksToTimeScale;
        Creator() = {.slots0To3 = {}, .createFrame = &CreateFrame};
        FrameSuite() = {
            .slot0 = nullptr, .getPixels = &GetPixels, .getBounds = &GetBounds, .getRowBytes = &GetRowBytes};
        suites = {{{kLegacySuiteName, kLegacySuiteVersion1}, &legacy1},
                  {{kLegacySuiteName, kLegacySuiteVersion2}, &legacy2},
                  {{kFrameCreatorSuiteName, kFrameCreatorSuiteVersion}, &Creator()},
                  {{kFrameSuiteName, kFrameSuiteVersion}, &FrameSuite()},
                  {{kPixelFormatSuiteName, kPixelFormatSuiteVersion}, &sPixelFormatSuite}};
    }
    ~ForeignHost() { sCurrent = nullptr; }
    ForeignHost(const ForeignHost&) = delete;
    ForeignHost& operator=(const ForeignHost&) = delete;

    Behaviour behaviour;

    // What a request is given, piece by piece.
    ksMemoryFunctions memory{};
    ksSuiteAccess access{};
    ksUtilityFunctions utility{};
    ksServiceTables services{};
    ksStdParms stdParms{};

    /// What `access` hands out. A plug-in keeps the frame suites for the process's life, so their tables are
    /// the process's, whole again with each new host.
    std::map<SuiteName, const void*> suites;
    ksLegacySuite1 legacy1{};
    ksLegacySuite2 legacy2{};
    static ksFrameCreatorSuite4& Creator()
    {
        static ksFrameCreatorSuite4 sTable;
        return sTable;
    }
    static ksFrameSuite1& FrameSuite()
    {
        static ksFrameSuite1 sTable;
        return sTable;
    }

    // What the legacy suites answer: frames last 254016000000 × 1001 / 30000 ticks.
    std::pair<std::int32_t, std::int32_t> timeScale{30000, 1001};
    std::int64_t ticksPerFrame = 8'475'667'200;

    // What was asked for.
    std::vector<SuiteName> asked;      ///< the first suites; recorded without allocating
    std::int64_t convertedTicks = 0;   ///< by the legacy suite's second version
    std::vector<std::uint32_t> blocks; ///< sizes
    Creation creation;
    std::int32_t frameQueries = 0;            ///< calls of the frame suite
    std::vector<std::string_view> frameCalls; ///< of the creator and the frame suite, in their order

    void RemoveSuite(std::string_view name)
    {
        std::erase_if(suites, [name](const auto& suite) { return suite.first.first == name; });
    }

    /// The frame made last. There must be one.
    [[nodiscard]] const Frame& LastFrame() const { return *mFrames.back(); }

    [[nodiscard]] bool GuardsAreIntact() const
    {
        return std::all_of(mFrames.begin(), mFrames.end(),
                           [](const auto& frame) { return frame->GuardsAreIntact(); });
    }

    /// Frames and blocks live as long as the host, or until this.
    void FreeFramesAndBlocks()
    {
        mFrames.clear();
        mBlocks.clear();
    }

private:
    static void* NewBlock(std::uint32_t bytes)
    {
        ForeignHost& host = *sCurrent;
        host.blocks.push_back(bytes);
        return host.behaviour.allocatorFails
                   ? nullptr
                   : host.mBlocks.emplace_back(std::make_unique<std::byte[]>(bytes)).get();
    }

    static std::int32_t Acquire(const char* name, std::int32_t version, const void** suite)
    {
        ForeignHost& host = *sCurrent;
        if (host.asked.size() < host.asked.capacity()) {
            host.asked.emplace_back(name, version);
        }
        const auto found = host.suites.find({name, version});
        if (found == host.suites.end()) {
            return -1;
        }
        *suite = found->second;
        return 0;
    }

    static std::int32_t TimeScaleToTicks(std::int32_t scale, std::int32_t sampleSize, std::int64_t* ticks)
    {
        sCurrent->timeScale = {scale, sampleSize};
        *ticks = sCurrent->ticksPerFrame;
        return 0;
    }

    static std::int32_t TicksToTimeScale(std::int64_t ticks, std::int32_t* scale, std::int32_t* sampleSize)
    {
        ForeignHost& host = *sCurrent;
        host.convertedTicks = ticks;
        if (host.behaviour.legacyStatus >= 0) {
            *scale = host.timeScale.first;
            *sampleSize = host.timeScale.second;
        }
        return host.behaviour.legacyStatus;
    }

    static std::int32_t CreateFrame(ksFrameHandle* frame, std::int32_t access, std::uint32_t pixelFormat,
                                    std::int32_t width, std::int32_t height, bool reserved5,
                                    std::int32_t reserved6, std::uint32_t parNumerator,
                                    std::uint32_t parDenominator, void* extra16)
    {
        ForeignHost& host = *sCurrent;
        host.frameCalls.emplace_back("create");
        host.creation = {.count = host.creation.count + 1,
                         .frameSlot = frame,
                         .access = access,
                         .pixelFormat = pixelFormat,
                         .width = width,
                         .height = height,
                         .reserved5 = reserved5,
                         .reserved6 = reserved6,
                         .parNumerator = parNumerator,
                         .parDenominator = parDenominator,
                         .extra16 = extra16};
        const std::int32_t largest = host.behaviour.largestSide;
        if (host.behaviour.creatorGivesNull || width < 0 || height < 0 || width > largest || height > largest) {
            *frame = nullptr;
            return -1;
        }
        host.mFrames.push_back(std::make_unique<Frame>(host.behaviour, pixelFormat,
                                                       static_cast<std::uint32_t>(width),
                                                       static_cast<std::uint32_t>(height)));
        *frame = host.mFrames.back().get();
        return host.behaviour.creatorReportsFailure ? -1 : 0;
    }

    /// The frame of a handle that this host gave, else null.
    static const Frame* FrameOf(ksFrameHandle handle)
    {
        ForeignHost& host = *sCurrent;
        ++host.frameQueries;
        const auto found = std::find_if(host.mFrames.begin(), host.mFrames.end(),
                                        [handle](const auto& frame) { return frame.get() == handle; });
        return found == host.mFrames.end() ? nullptr : found->get();
    }

    static std::int32_t GetPixels(ksFrameHandle handle, std::int32_t access, void** pixels)
    {
        sCurrent->frameCalls.emplace_back("pixels");
        const Frame* const frame = FrameOf(handle);
        if (sCurrent->behaviour.pixelsFail || frame == nullptr || access != ksFrameAccessReadWrite) {
            return -1;
        }
        *pixels = sCurrent->behaviour.pixelsAreNull ? nullptr : const_cast<std::byte*>(frame->First());
        return 0;
    }
    static std::int32_t GetBounds(ksFrameHandle handle, std::int32_t bounds[4])
    {
        sCurrent->frameCalls.emplace_back("bounds");
        const Frame* const frame = FrameOf(handle);
        if (sCurrent->behaviour.boundsFail || frame == nullptr) {
            return -1;
        }
        std::fill_n(bounds, 4, -12345); // arbitrary: the settings say how large a frame is
        return 0;
    }
    static std::int32_t GetRowBytes(ksFrameHandle handle, std::int32_t* rowBytes)
    {
        sCurrent->frameCalls.emplace_back("row bytes");
        const Frame* const frame = FrameOf(handle);
        if (sCurrent->behaviour.rowBytesFail || frame == nullptr) {
            return -1;
        }
        *rowBytes = static_cast<std::int32_t>(frame->StepBytes());
        return 0;
    }

    static inline ForeignHost* sCurrent = nullptr;
    static constexpr int sPixelFormatSuite = 0; // plug-ins call nothing in this suite

    std::vector<std::unique_ptr<Frame>> mFrames;
    std::vector<std::unique_ptr<std::byte[]>> mBlocks;
};

} // namespace testsupport
