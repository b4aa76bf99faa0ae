#include "Shim.h"

#include <kestrel/importabi/ResultCodes.h>

std::int32_t Wrong(std::int32_t selector, const ksStdParms* stdParms, void* param1, void* param2)
{
    if (selector == 0 && Right(selector, stdParms, param1, param2) == ksResultUnsupported) {
        return ksResultServed;
    }
    return Right(selector, stdParms, param1, param2);
}

void WrongIdentity(void* hostContext, ksPluginDataCallback callback)
{
    RightIdentity(hostContext, callback);
}
