#include "Shim.h"

std::int32_t Wrong(std::int32_t selector, const ksStdParms* stdParms, void* param1, void* param2)
{
    const std::int32_t answer = Right(selector, stdParms, param1, param2);
    if (selector == 37 && answer == 0) {
        auto* info = static_cast<ksFileInfoRec*>(param2);
        if (info->videoDuration != 0) {
            info->videoDuration = info->videoDuration + 1;
        }
    }
    return answer;
}

void WrongIdentity(void* hostContext, ksPluginDataCallback callback)
{
    RightIdentity(hostContext, callback);
}
