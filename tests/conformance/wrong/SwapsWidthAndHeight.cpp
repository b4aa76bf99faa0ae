#include "Shim.h"

std::int32_t Wrong(std::int32_t selector, const ksStdParms* stdParms, void* param1, void* param2)
{
    const std::int32_t answer = Right(selector, stdParms, param1, param2);
    if (selector == 45 && answer == 0) {
        auto* size = static_cast<ksFrameSizeRec*>(param1);
        const std::int32_t width = size->width;
        size->width = size->height;
        size->height = width;
    }
    return answer;
}

void WrongIdentity(void* hostContext, ksPluginDataCallback callback)
{
    RightIdentity(hostContext, callback);
}
