#include "Shim.h"

#include <regex>
#include <string>

namespace {

std::string Spoil(std::string document)
{
    static const std::regex kWholeNumber("([0-9])\\.0+([^0-9])");
    document = std::regex_replace(document, kWholeNumber, "$1$2");
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
