#include "Shim.h"

#include <kestrel/importabi/ResultCodes.h>

std::int32_t Wrong(std::int32_t selector, const ksStdParms* stdParms, void* param1, void* param2)
{
    if (selector == 39 && param2 != nullptr && static_cast<ksOpenRec*>(param2)->instance != nullptr) {
        return ksResultServed;
    }
    return Right(selector, stdParms, param1, param2);
}

void WrongIdentity(void* hostContext, ksPluginDataCallback callback)
{
    RightIdentity(hostContext, callback);
}
