#include "FrameSuites.h"

#include "HostServices.h"

namespace ImporterTessel {

const FrameSuites* AcquireFrameSuites(const ksStdParms* stdParms)
{
    // Intended: no lock. The host runs its first frame request alone.
    static constinit FrameSuites sSuites;
    if (sSuites.creator != nullptr) {
        return &sSuites;
    }
    const FrameSuites acquired{
        .creator =
            AcquireSuite<ksFrameCreatorSuite4>(stdParms, kFrameCreatorSuiteName, kFrameCreatorSuiteVersion),
        .frame = AcquireSuite<ksFrameSuite1>(stdParms, kFrameSuiteName, kFrameSuiteVersion),
        .pixelFormat = AcquireSuite(stdParms, kPixelFormatSuiteName, kPixelFormatSuiteVersion)};
    if (acquired.creator == nullptr || acquired.frame == nullptr || acquired.pixelFormat == nullptr) {
        return nullptr;
    }
    sSuites = acquired;
    return &sSuites;
}

} // namespace ImporterTessel
