#include "Shim.h"

std::int32_t Wrong(std::int32_t selector, const ksStdParms* stdParms, void* param1, void* param2)
{
    const std::int32_t answer = Right(selector, stdParms, param1, param2);
    if (selector == 14 && answer == 0) {
        static_cast<ksFileTypeRec*>(param2)->reserved556[7] = 0;
    }
    return answer;
}

void WrongIdentity(void* hostContext, ksPluginDataCallback callback)
{
    RightIdentity(hostContext, callback);
}
