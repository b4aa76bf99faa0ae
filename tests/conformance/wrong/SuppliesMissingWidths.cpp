#include "Shim.h"

#include <string>

namespace {

std::string Spoil(std::string document)
{
    if (!document.empty() && document.front() == '{' && document.find("\"mFrameWidth\"") == std::string::npos) {
        document.insert(1, "\"mFrameWidth\": 32,");
    }
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
