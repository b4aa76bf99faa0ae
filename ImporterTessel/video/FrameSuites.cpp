#include "FrameSuites.h"

#include <cstdint>

namespace ImporterTessel {

namespace {

[[nodiscard]] const ksSuiteAccess* SuiteAccessOf(const ksStdParms* stdParms) noexcept
{
    if (stdParms == nullptr || stdParms->services == nullptr) {
        return nullptr;
    }
    const ksUtilityFunctions* utility = stdParms->services->utility;
    if (utility == nullptr || utility->getSuiteAccess == nullptr) {
        return nullptr;
    }
    const ksSuiteAccess* access = utility->getSuiteAccess();
    return access != nullptr && access->acquireSuite != nullptr ? access : nullptr;
}

[[nodiscard]] const void* Acquire(const ksSuiteAccess& access, const char* name, std::int32_t version) noexcept
{
    const void* suite = nullptr;
    return access.acquireSuite(name, version, &suite) < 0 ? nullptr : suite;
}

} // namespace

const FrameSuites* AcquireFrameSuites(const ksStdParms* stdParms) noexcept
{
    // Intended: no lock. The host runs its first frame request alone.
    static constinit FrameSuites sSuites;
    if (sSuites.creator != nullptr) {
        return &sSuites;
    }
    const ksSuiteAccess* access = SuiteAccessOf(stdParms);
    if (access == nullptr) {
        return nullptr;
    }
    const FrameSuites acquired{
        .creator = static_cast<const ksFrameCreatorSuite4*>(
            Acquire(*access, kFrameCreatorSuiteName, kFrameCreatorSuiteVersion)),
        .frame = static_cast<const ksFrameSuite1*>(Acquire(*access, kFrameSuiteName, kFrameSuiteVersion)),
        .pixelFormat = Acquire(*access, kPixelFormatSuiteName, kPixelFormatSuiteVersion)};
    if (acquired.creator == nullptr || acquired.frame == nullptr || acquired.pixelFormat == nullptr) {
        return nullptr;
    }
    sSuites = acquired;
    return &sSuites;
}

} // namespace ImporterTessel
