#include "Shim.h"

#include <kestrel/importabi/ResultCodes.h>

#include <string>

std::int32_t Wrong(std::int32_t selector, const ksStdParms* stdParms, void* param1, void* param2)
{
    const std::int32_t answer = Right(selector, stdParms, param1, param2);
    if (answer == ksResultUseSavedFile) {
        char16_t* path = static_cast<ksFileAccessRec*>(param1)->newPath;
        path[std::char_traits<char16_t>::length(path)] = u'x';
    }
    return answer;
}

void WrongIdentity(void* hostContext, ksPluginDataCallback callback)
{
    RightIdentity(hostContext, callback);
}
