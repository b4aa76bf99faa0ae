#include "Shim.h"

#include <string>

namespace {

std::string Spoil(std::string document)
{
    const std::string key = "SerializerWrappedObject";
    if (const std::size_t at = document.find(key); at != std::string::npos) {
        document.replace(at, key.size(), "somethingElse");
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
