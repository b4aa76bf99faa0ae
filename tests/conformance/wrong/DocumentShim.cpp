#include "DocumentShim.h"

#include <filesystem>
#include <fstream>
#include <optional>

std::int32_t Wrong(std::int32_t selector, const ksStdParms* stdParms, void* param1, void* param2)
{
    const ksUTF16* path = nullptr;
    if (selector == 38 && param1 != nullptr) {
        path = static_cast<ksFileAccessRec*>(param1)->path;
    } else if (selector == 39 && param2 != nullptr) {
        path = static_cast<ksOpenRec*>(param2)->path;
    }
    const std::optional<std::string> content = ContentOf(path);
    if (!content) {
        return Right(selector, stdParms, param1, param2);
    }
    // Beside the file, in a folder that the check removes.
    const std::u16string changedPath = std::u16string(path) + u".changed";
    std::ofstream(std::filesystem::path(changedPath), std::ios::binary) << Spoil(*content);
    const auto setPath = [&](const ksUTF16* to) {
        if (selector == 38) {
            static_cast<ksFileAccessRec*>(param1)->path = to;
        } else {
            static_cast<ksOpenRec*>(param2)->path = to;
        }
    };
    setPath(changedPath.c_str());
    const std::int32_t answer = Right(selector, stdParms, param1, param2);
    setPath(path);
    return answer;
}

void WrongIdentity(void* hostContext, ksPluginDataCallback callback)
{
    RightIdentity(hostContext, callback);
}
