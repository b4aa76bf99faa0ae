#include "Shim.h"

std::int32_t Wrong(std::int32_t selector, const ksStdParms* stdParms, void* param1, void* param2)
{
    const std::int32_t answer = Right(selector, stdParms, param1, param2);
    if (selector == 73 && answer == 0) {
        // 1 is Rec. 709 and 2 unspecified, each in all three lists of ITU-T H.273.
        ksSEIColorCodesRec& codes = static_cast<ksColorRec*>(param2)->codes;
        if (codes.primaries == 2) {
            codes = {1, 1, 1, 0};
        }
    }
    return answer;
}

void WrongIdentity(void* hostContext, ksPluginDataCallback callback)
{
    RightIdentity(hostContext, callback);
}
