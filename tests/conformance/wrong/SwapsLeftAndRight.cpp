#include "Shim.h"

std::int32_t Wrong(std::int32_t selector, const ksStdParms* stdParms, void* param1, void* param2)
{
    if (selector != 25 || param2 == nullptr) {
        return Right(selector, stdParms, param1, param2);
    }
    ksAudioRec request = *static_cast<ksAudioRec*>(param2);
    float* swapped[6];
    for (int channel = 0; channel < 6; ++channel) {
        swapped[channel] = request.channels[channel < 2 ? 1 - channel : channel];
    }
    request.channels = swapped;
    return Right(selector, stdParms, param1, &request);
}

void WrongIdentity(void* hostContext, ksPluginDataCallback callback)
{
    RightIdentity(hostContext, callback);
}
