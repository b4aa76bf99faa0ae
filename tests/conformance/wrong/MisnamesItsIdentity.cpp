#include "Shim.h"

std::int32_t Wrong(std::int32_t selector, const ksStdParms* stdParms, void* param1, void* param2)
{
    return Right(selector, stdParms, param1, param2);
}

void WrongIdentity(void* hostContext, ksPluginDataCallback callback)
{
    callback(hostContext, "Name=Something Else", "ZOKE Tessel", "Importer", "", 0x494D5054, 13, 29, 0);
}
