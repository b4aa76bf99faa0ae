#include "Shim.h"

#include <string>

namespace {

std::string Spoil(std::string document)
{
    int depth = 0;
    for (std::size_t at = 0; at < document.size() && document.front() == '{'; ++at) {
        depth += document[at] == '{' ? 1 : 0;
        depth -= document[at] == '}' ? 1 : 0;
        if (depth == 0) {
            return document.substr(0, at + 1);
        }
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
