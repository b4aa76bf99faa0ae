#include "Shim.h"

std::int32_t Wrong(std::int32_t selector, const ksStdParms* stdParms, void* param1, void* param2)
{
    if (selector == 81 && param2 != nullptr) {
        static_cast<ksFileInfoRec*>(param2)->instance = nullptr;
    }
    return Right(selector, stdParms, param1, param2);
}

void WrongIdentity(void* hostContext, ksPluginDataCallback callback)
{
    RightIdentity(hostContext, callback);
}
