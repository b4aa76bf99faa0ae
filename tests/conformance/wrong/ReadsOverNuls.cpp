#include "Shim.h"

#include <algorithm>
#include <string>

namespace {

std::string Spoil(std::string document)
{
    std::replace(document.begin(), document.end(), '\0', ' ');
    return document;
}

} // namespace

std::int32_t Wrong(std::int32_t selector, const ksStdParms* stdParms, void* param1, void* param2)
{
    return RightWithDocument(Spoil, selector, stdParms, param1, param2);
}

void WrongIdentity(void* hostContext, ksPluginDataCallback callback)
{
    RightIdentity(hostContext, callback);
}
