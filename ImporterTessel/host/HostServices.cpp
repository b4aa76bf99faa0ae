#include "HostServices.h"

#include <new>

namespace ImporterTessel {

namespace {

const ksServiceTables* ServicesOf(const ksStdParms* stdParms) noexcept
{
    return stdParms == nullptr ? nullptr : stdParms->services;
}

const ksSuiteAccess* SuiteAccessOf(const ksStdParms* stdParms)
{
    const ksServiceTables* const services = ServicesOf(stdParms);
    const ksUtilityFunctions* const utility = services == nullptr ? nullptr : services->utility;
    if (utility == nullptr || utility->getSuiteAccess == nullptr) {
        return nullptr;
    }
    return utility->getSuiteAccess();
}

} // namespace

const void* AcquireSuite(const ksStdParms* stdParms, const char* name, std::int32_t version)
{
    const ksSuiteAccess* const access = SuiteAccessOf(stdParms);
    if (access == nullptr || access->acquireSuite == nullptr) {
        return nullptr;
    }
    const void* suite = nullptr;
    return access->acquireSuite(name, version, &suite) < 0 ? nullptr : suite;
}

void* AllocateHostBlock(const ksStdParms* stdParms, std::uint32_t bytes)
{
    const ksServiceTables* const services = ServicesOf(stdParms);
    const ksMemoryFunctions* const memory = services == nullptr ? nullptr : services->memory;
    void* const block = memory == nullptr || memory->newBlock == nullptr ? nullptr : memory->newBlock(bytes);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

} // namespace ImporterTessel
