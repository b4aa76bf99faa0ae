#include "Shim.h"

#include <kestrel/importabi/ResultCodes.h>

std::int32_t Wrong(std::int32_t selector, const ksStdParms* stdParms, void* param1, void* param2)
{
    // Only what looks like a document is passed on.
    if (selector == 39 && param2 != nullptr) {
        const auto content = ContentOf(static_cast<ksOpenRec*>(param2)->path);
        if (content && content->find("\"mVideoFrameRate\"") == std::string::npos) {
            return ksResultFileUnreadable;
        }
    }
    return Right(selector, stdParms, param1, param2);
}

void WrongIdentity(void* hostContext, ksPluginDataCallback callback)
{
    RightIdentity(hostContext, callback);
}
