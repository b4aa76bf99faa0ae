#include "StandardParameters.h"

#include "FrameSuites.h"
#include "LegacySuite.h"

#include <cstdint>
#include <new>
#include <string_view>

namespace importhost {
namespace {

void DoNothing() {}

void* NewBlock(std::uint32_t bytes)
{
    return ::operator new(bytes, std::nothrow);
}

struct SuiteEntry {
    std::string_view name;
    std::int32_t version;
    const void* table;
};

std::int32_t AcquireSuite(const char* name, std::int32_t version, const void** suite)
{
    if (name == nullptr || suite == nullptr) {
        return -1;
    }
    static const SuiteEntry kSuites[] = {
        {kLegacySuiteName, kLegacySuiteVersion1, &LegacySuite1()},
        {kLegacySuiteName, kLegacySuiteVersion2, &LegacySuite2()},
        {kFrameCreatorSuiteName, kFrameCreatorSuiteVersion, &FrameCreatorSuite4()},
        {kFrameSuiteName, kFrameSuiteVersion, &FrameSuite1()},
        {kPixelFormatSuiteName, kPixelFormatSuiteVersion, PixelFormatSuite1()},
    };
    for (const SuiteEntry& entry : kSuites) {
        if (entry.name == name && entry.version == version) {
            *suite = entry.table;
            return 0;
        }
    }
    return -2;
}

ksSuiteAccess* GetSuiteAccess()
{
    static ksSuiteAccess access = {&AcquireSuite};
    return &access;
}

/// The whole block, its parts pointing at each other.
struct Block {
    Block() noexcept
    {
        for (ksUnknownFunction& slot : memory.slots0To7) {
            slot = &DoNothing;
        }
        for (ksUnknownFunction& slot : utility.slots0To6) {
            slot = &DoNothing;
        }
        memory.newBlock = &NewBlock;
        utility.getSuiteAccess = &GetSuiteAccess;
        services.memory = &memory;
        services.utility = &utility;
        parameters.services = &services;
    }

    ksMemoryFunctions memory{};
    ksUtilityFunctions utility{};
    ksServiceTables services{};
    ksStdParms parameters{};
};

} // namespace

const ksStdParms& HostStandardParameters() noexcept
{
    static const Block kBlock;
    return kBlock.parameters;
}

void FreeHostBlock(void* block) noexcept
{
    ::operator delete(block);
}

} // namespace importhost
