#include "WrongPlugin.h"

#include <chrono>
#include <cstring>
#include <thread>

namespace wrong {

namespace {

std::int32_t ServesSelector87(const Request& request)
{
    return request.selector == 87 ? std::int32_t{ksResultServed} : Right(request);
}

std::int32_t WritesBetweenItsFlags(const Request& request)
{
    const std::int32_t answer = Right(request);
    if (request.selector == ksSelectorStartUp && answer == ksResultServed) {
        request.First<ksStartUpRec>()->reserved40[0] = 1;
    }
    return answer;
}

std::int32_t OpensItsGateAlways(const Request& request)
{
    const std::int32_t answer = Right(request);
    return request.selector == ksSelectorStartUp && answer == ksResultUnsupported ? std::int32_t{ksResultServed}
                                                                                  : answer;
}

std::int32_t WritesIntoReservedBytes(const Request& request)
{
    const std::int32_t answer = Right(request);
    if (request.Is(ksSelectorFileType) && answer == ksResultServed) {
        request.Second<ksFileTypeRec>()->reserved556[7] = 0;
    }
    return answer;
}

std::int32_t NamesAnotherExtension(const Request& request)
{
    const std::int32_t answer = Right(request);
    if (request.Is(ksSelectorFileType) && answer == ksResultServed) {
        request.Second<ksFileTypeRec>()->extensions[0] = 'l';
    }
    return answer;
}

std::int32_t RepeatsItsFileType(const Request& request)
{
    const bool isFileType = request.selector == ksSelectorFileType;
    return Right({request.selector, request.stdParms, isFileType ? nullptr : request.param1, request.param2});
}

std::int32_t WritesForSelector5(const Request& request)
{
    if (request.Is(5)) {
        *request.Second<char>() = 0;
    }
    return Right(request);
}

/// The pointer that selector 5 notes stands at byte 92, and it looks at byte 96.
std::int32_t NotesAnotherPointer(const Request& request)
{
    if (request.Is(5)) {
        [[maybe_unused]] const volatile char last = request.Second<const volatile char>()[96 + 7];
    }
    return Right(request);
}

std::int32_t DereferencesNullRecords(const Request& request)
{
    if (request.selector == ksSelectorFrameSize && request.param1 == nullptr) {
        Crash();
    }
    return Right(request);
}

std::int32_t DereferencesNullInstances(const Request& request)
{
    if (request.Is(ksSelectorAudio) && request.Second<ksAudioRec>()->instance == nullptr) {
        Crash();
    }
    return Right(request);
}

std::int32_t DeletesNothingGladly(const Request& request)
{
    const bool isNothing = request.selector == ksSelectorDeleteInstance && request.param2 == nullptr;
    return isNothing ? std::int32_t{ksResultServed} : Right(request);
}

std::int32_t ReadsBehindItsRecord(const Request& request)
{
    if (request.Is(ksSelectorAudio)) {
        [[maybe_unused]] const volatile char byte = request.Second<const volatile char>()[sizeof(ksAudioRec)];
    }
    return Right(request);
}

std::int32_t SwapsWidthAndHeight(const Request& request)
{
    const std::int32_t answer = Right(request);
    if (request.selector == ksSelectorFrameSize && answer == ksResultServed) {
        auto& size = *request.First<ksFrameSizeRec>();
        const std::int32_t width = size.width;
        size.width = size.height;
        size.height = width;
    }
    return answer;
}

std::int32_t GivesAnUnknownRange(const Request& request)
{
    const std::int32_t answer = Right(request);
    if (request.Is(ksSelectorColorInformation) && answer == ksResultServed) {
        request.Second<ksColorRec>()->codes.fullRange = 7;
    }
    return answer;
}

std::int32_t HasASecondColorSpace(const Request& request)
{
    const bool isColor = request.selector == ksSelectorColorInformation;
    return Right({request.selector, request.stdParms, isColor ? nullptr : request.param1, request.param2});
}

std::int32_t TakesUnspecifiedForRec709(const Request& request)
{
    const std::int32_t answer = Right(request);
    if (request.Is(ksSelectorColorInformation) && answer == ksResultServed) {
        // 1 is Rec. 709 and 2 unspecified, each in all three lists of ITU-T H.273.
        ksSEIColorCodesRec& codes = request.Second<ksColorRec>()->codes;
        if (codes.primaries == 2) {
            codes = {1, 1, 1, 0};
        }
    }
    return answer;
}

std::int32_t HangsOnSelector27(const Request& request)
{
    while (request.selector == 27) {
        std::this_thread::sleep_for(std::chrono::seconds(1));
    }
    return Right(request);
}

/// With exit status 0, as if all were well.
std::int32_t EndsTheProcess(const Request& request)
{
    if (request.selector == 87) {
        std::_Exit(0);
    }
    return Right(request);
}

std::int32_t IgnoresThePointerOf46(const Request& request)
{
    return request.selector == 46 ? std::int32_t{ksResultUnsupported} : Right(request);
}

std::int32_t TakesShortMemoryForAnyFailure(const Request& request)
{
    const std::int32_t answer = Right(request);
    return answer == ksResultOutOfMemory ? std::int32_t{ksResultFailed} : answer;
}

} // namespace

std::vector<WrongPlugin> WrongAnswers()
{
    return {
        {"MisnamesItsIdentity", Right}, // in its other entry
        {"ServesSelector87", ServesSelector87},
        {"EndsTheProcess", EndsTheProcess},
        {"WritesBetweenItsFlags", WritesBetweenItsFlags},
        {"OpensItsGateAlways", OpensItsGateAlways},
        {"StartsWithoutARecord", AnswersInstead(ksSelectorStartUp, ksResultFailed, ksResultServed)},
        {"WritesIntoReservedBytes", WritesIntoReservedBytes},
        {"NamesAnotherExtension", NamesAnotherExtension},
        {"RepeatsItsFileType", RepeatsItsFileType},
        {"WritesForSelector5", WritesForSelector5},
        {"NotesAnotherPointer", NotesAnotherPointer},
        {"DereferencesNullRecords", DereferencesNullRecords},
        {"DereferencesNullInstances", DereferencesNullInstances},
        {"DeletesNothingGladly", DeletesNothingGladly},
        {"ReadsBehindItsRecord", ReadsBehindItsRecord},
        {"SwapsWidthAndHeight", SwapsWidthAndHeight},
        {"GivesAnUnknownRange", GivesAnUnknownRange},
        {"HasASecondColorSpace", HasASecondColorSpace},
        {"TakesUnspecifiedForRec709", TakesUnspecifiedForRec709},
        {"HangsOnSelector27", HangsOnSelector27},
        {"ServesSelector4", AnswersInstead(4, ksResultUnsupported, ksResultServed)},
        {"IgnoresThePointerOf46", IgnoresThePointerOf46},
        {"ServesSelector28", AnswersInstead(28, ksResultSelector28, ksResultServed)},
        {"TakesCancelForConsent",
         AnswersInstead(ksSelectorSettingsExchange, ksResultCancelled, ksResultServed)},
        {"TakesFailureForShortMemory", AnswersInstead(ksSelectorFrame, ksResultFailed, ksResultOutOfMemory)},
        {"TakesFailureForUnsupported", AnswersInstead(ksSelectorFrame, ksResultFailed, ksResultUnsupported)},
        {"ShutsDownUnderProtest", AnswersInstead(ksSelectorShutDown, ksResultServed, ksResultFailed)},
        {"ClosesUnderProtest", AnswersInstead(ksSelectorCloseFile, ksResultServed, ksResultFailed)},
        {"TakesShortMemoryForAnyFailure", TakesShortMemoryForAnyFailure},
        {"HidesShortMemoryInFrames", MisreportsShortMemory(ksSelectorFrame)},
        {"HidesShortMemoryInSound", MisreportsShortMemory(ksSelectorAudio)},
        {"HidesShortMemoryInColors", MisreportsShortMemory(ksSelectorColorInformation)},
    };
}

} // namespace wrong
