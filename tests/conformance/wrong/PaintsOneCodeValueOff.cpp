#include "Shim.h"

#include <kestrel/importabi/Suites.h>

std::int32_t Wrong(std::int32_t selector, const ksStdParms* stdParms, void* param1, void* param2)
{
    const std::int32_t answer = Right(selector, stdParms, param1, param2);
    if (selector == 47 && answer == 0) {
        const auto* request = static_cast<ksFrameRec*>(param2);
        static const void* suite = nullptr;
        if (suite == nullptr) {
            stdParms->services->utility->getSuiteAccess()->acquireSuite(kFrameSuiteName, kFrameSuiteVersion,
                                                                        &suite);
        }
        void* pixels = nullptr;
        static_cast<const ksFrameSuite1*>(suite)->getPixels(*request->frame, ksFrameAccessReadWrite, &pixels);
        // The first pixel, its red: one off, but only where something was painted over 0x77.
        auto* red = static_cast<std::uint8_t*>(pixels) + 2;
        if (*red != 0x77) {
            *red = static_cast<std::uint8_t>(*red ^ 1U);
        }
    }
    return answer;
}

void WrongIdentity(void* hostContext, ksPluginDataCallback callback)
{
    RightIdentity(hostContext, callback);
}
