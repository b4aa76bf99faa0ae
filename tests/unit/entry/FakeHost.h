/// A host of one test: tables that can be incomplete, suites that can be missing, an allocator that can fail.
#pragma once

#include <kestrel/importabi/StandardParameters.h>
#include <kestrel/importabi/Suites.h>

#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

/// One at a time, since the wire format's functions carry no context.
class FakeHost {
public:
    FakeHost()
    {
        sCurrent = this;
        mSuites.reserve(16);
        mMemory.newBlock = [](std::uint32_t bytes) {
            sCurrent->mBlocks.push_back(bytes);
            return sCurrent->mHasMemory ? std::malloc(bytes) : nullptr;
        };
        mAccess.acquireSuite = [](const char* name, std::int32_t version, const void** suite) {
            return sCurrent->Acquire(name, version, suite);
        };
        mUtility.getSuiteAccess = []() { return sCurrent->mHasSuiteAccess ? &sCurrent->mAccess : nullptr; };
        mLegacy1.timeScaleToTicks = [](std::int32_t timeScale, std::int32_t sampleSize, std::int64_t* ticks) {
            sCurrent->mTimeScale = {timeScale, sampleSize};
            *ticks = sCurrent->mTicksPerFrame;
            return 0;
        };
        mLegacy2.ticksToTimeScale = [](std::int64_t ticks, std::int32_t* timeScale, std::int32_t* sampleSize) {
            sCurrent->mConvertedTicks = ticks;
            if (sCurrent->mLegacyStatus >= 0) {
                *timeScale = sCurrent->mTimeScale.first;
                *sampleSize = sCurrent->mTimeScale.second;
            }
            return sCurrent->mLegacyStatus;
        };
        mServices.memory = &mMemory;
        mServices.utility = &mUtility;
        mStdParms.services = &mServices;
    }

    ~FakeHost() { sCurrent = nullptr; }
    FakeHost(const FakeHost&) = delete;
    FakeHost& operator=(const FakeHost&) = delete;

    bool mHasMemory = true;
    bool mHasSuiteAccess = true;
    bool mHasLegacySuite = true;
    std::int32_t mLegacyStatus = 0;
    std::pair<std::int32_t, std::int32_t> mTimeScale{30000, 1001};
    std::int64_t mTicksPerFrame = 8'475'667'200; // 254016000000 × 1001 / 30000
    std::int64_t mConvertedTicks = 0;
    std::vector<std::uint32_t> mBlocks;                             ///< sizes that were asked for
    std::vector<std::pair<std::string_view, std::int32_t>> mSuites; ///< the first that were asked for

    ksMemoryFunctions mMemory{};
    ksSuiteAccess mAccess{};
    ksUtilityFunctions mUtility{};
    ksServiceTables mServices{};
    ksStdParms mStdParms{};
    ksLegacySuite1 mLegacy1{};
    ksLegacySuite2 mLegacy2{};

private:
    std::int32_t Acquire(const char* name, std::int32_t version, const void** suite)
    {
        // Within what is reserved, so that a test may count blocks of memory.
        if (mSuites.size() < mSuites.capacity()) {
            mSuites.emplace_back(name, version);
        }
        if (!mHasLegacySuite || std::string_view(name) != "Kestrel Legacy Suite" || version < 1 ||
            version > 2) {
            return -1;
        }
        *suite = version == 1 ? static_cast<const void*>(&mLegacy1) : &mLegacy2;
        return 0;
    }

    static inline FakeHost* sCurrent = nullptr;
};
