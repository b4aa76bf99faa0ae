#include "Shim.h"

#include <chrono>
#include <thread>

std::int32_t Wrong(std::int32_t selector, const ksStdParms* stdParms, void* param1, void* param2)
{
    while (selector == 27) {
        std::this_thread::sleep_for(std::chrono::seconds(1));
    }
    return Right(selector, stdParms, param1, param2);
}

void WrongIdentity(void* hostContext, ksPluginDataCallback callback)
{
    RightIdentity(hostContext, callback);
}
