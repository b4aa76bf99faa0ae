#include "Shim.h"

std::int32_t Wrong(std::int32_t selector, const ksStdParms* stdParms, void* param1, void* param2)
{
    const std::int32_t answer = Right(selector, stdParms, param1, param2);
    if (selector == 38 && param2 != nullptr) {
        static_cast<ksSettingsExchangeRec*>(param2)->bufferSize = 10240;
    }
    return answer;
}

void WrongIdentity(void* hostContext, ksPluginDataCallback callback)
{
    RightIdentity(hostContext, callback);
}
