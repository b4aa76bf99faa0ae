#include "Shim.h"

#include <kestrel/importabi/ResultCodes.h>

#include <string>

std::int32_t Wrong(std::int32_t selector, const ksStdParms* stdParms, void* param1, void* param2)
{
    auto* exchange = static_cast<ksSettingsExchangeRec*>(param2);
    // The settings as they came, where there is a dialog that may change them.
    const bool isEdit =
        selector == 38 && exchange != nullptr && exchange->text != nullptr && exchange->newClip == 0;
    const std::string text = isEdit ? std::string(exchange->text, 10240) : std::string();
    const std::int32_t answer = Right(selector, stdParms, param1, param2);
    if (isEdit && answer == ksResultServed) {
        text.copy(exchange->text, text.size());
    }
    return answer;
}

void WrongIdentity(void* hostContext, ksPluginDataCallback callback)
{
    RightIdentity(hostContext, callback);
}
