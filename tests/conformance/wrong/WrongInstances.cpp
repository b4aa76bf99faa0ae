#include "WrongPlugin.h"

#include <filesystem>
#include <string>

namespace wrong {

namespace {

std::int32_t TakesUnreadableForFailed(const Request& request)
{
    const std::int32_t answer = Right(request);
    return answer == ksResultFileUnreadable ? std::int32_t{ksResultFailed} : answer;
}

/// Refuses documents that do not end in a brace, with an instance in the slot all the same.
std::int32_t KeepsInstancesOfCutDocuments(const Request& request)
{
    const std::int32_t answer = Right(request);
    if (!request.Is(ksSelectorOpenFile) || answer != ksResultServed) {
        return answer;
    }
    const auto document = ContentOf(request.Second<ksOpenRec>()->path);
    return document && !document->empty() && document->back() != '}' ? std::int32_t{ksResultFailed} : answer;
}

bool IsHeld(const Request& request)
{
    return request.Is(ksSelectorOpenFile) && request.Second<ksOpenRec>()->instance != nullptr;
}

std::int32_t ForgetsHeldClips(const Request& request)
{
    const bool wasHeld = IsHeld(request);
    const std::int32_t answer = Right(request);
    if (wasHeld && answer == ksResultFileUnreadable) {
        request.Second<ksOpenRec>()->instance = nullptr;
    }
    return answer;
}

std::int32_t OpensOnce(const Request& request)
{
    return IsHeld(request) ? std::int32_t{ksResultServed} : Right(request);
}

std::int32_t RefusesASecondOpen(const Request& request)
{
    return IsHeld(request) ? std::int32_t{ksResultFailed} : Right(request);
}

std::int32_t OpensTwentyAtMost(const Request& request)
{
    static int opened = 0;
    const bool isNew = request.Is(ksSelectorOpenFile) && !IsHeld(request);
    if (isNew && opened == 20) {
        return ksResultFailed;
    }
    const std::int32_t answer = Right(request);
    opened += isNew && answer == ksResultServed ? 1 : 0;
    opened -= request.Is(ksSelectorDeleteInstance) ? 1 : 0;
    return answer;
}

std::int32_t KeepsDeletedClips(const Request& request)
{
    return request.Is(ksSelectorDeleteInstance) ? std::int32_t{ksResultServed} : Right(request);
}

std::int32_t MakesAnInstanceEachTime(const Request& request)
{
    if (request.Is(ksSelectorCreateInstance)) {
        request.Second<ksFileInfoRec>()->instance = nullptr;
    }
    return Right(request);
}

/// Changes a served description.
template <class Change>
Serve Describes(const Change& change)
{
    return [=](const Request& request) {
        const std::int32_t answer = Right(request);
        if (request.Is(ksSelectorClipDescription) && answer == ksResultServed) {
            change(*request.Second<ksFileInfoRec>());
        }
        return answer;
    };
}

void NoTimeScale(ksFileInfoRec& info)
{
    info.videoTimeScale = 0;
}

void AWidthThatGrows(ksFileInfoRec& info)
{
    static int times = 0;
    info.frameWidth = info.frameWidth + times++;
}

void OneUnitMore(ksFileInfoRec& info)
{
    if (info.videoDuration != 0) {
        info.videoDuration = info.videoDuration + 1;
    }
}

void AFrameAtLeast(ksFileInfoRec& info)
{
    if (info.videoDuration == 0) {
        info.videoDuration = info.videoSampleSize;
    }
}

bool Exists(const ksUTF16* path)
{
    std::error_code ignored;
    return path != nullptr && std::filesystem::exists(path, ignored);
}

bool IsDescription(const Request& request)
{
    return request.Is(ksSelectorClipDescription) && request.param1 != nullptr;
}

std::int32_t ReadsUnopenedFiles(const Request& request)
{
    if (IsDescription(request)) {
        auto& info = *request.Second<ksFileInfoRec>();
        ksOpenRec open{};
        open.path = request.First<ksFileAccessRec>()->path;
        if (info.instance == nullptr && Exists(open.path) &&
            Right({ksSelectorOpenFile, request.stdParms, nullptr, &open}) == ksResultServed) {
            info.instance = open.instance;
        }
    }
    return Right(request);
}

std::int32_t ForgetsOpenedFiles(const Request& request)
{
    if (IsDescription(request) && Exists(request.First<ksFileAccessRec>()->path)) {
        request.Second<ksFileInfoRec>()->instance = nullptr;
    }
    return Right(request);
}

std::int32_t KeepsSettingsOfMissingFiles(const Request& request)
{
    if (!IsDescription(request) || request.Second<ksFileInfoRec>()->instance == nullptr) {
        return Right(request);
    }
    auto& access = *request.First<ksFileAccessRec>();
    const ksUTF16* const path = access.path;
    access.path = u"/"; // exists, and is not read
    const std::int32_t answer = Right(request);
    access.path = path;
    return answer;
}

} // namespace

std::vector<WrongPlugin> WrongInstances()
{
    return {
        {"TakesUnreadableForFailed", TakesUnreadableForFailed},
        {"KeepsInstancesOfCutDocuments", KeepsInstancesOfCutDocuments},
        {"ForgetsHeldClips", ForgetsHeldClips},
        {"OpensOnce", OpensOnce},
        {"RefusesASecondOpen", RefusesASecondOpen},
        {"OpensTwentyAtMost", OpensTwentyAtMost},
        {"DeletesUnderProtest", AnswersInstead(ksSelectorDeleteInstance, ksResultServed, ksResultFailed)},
        {"KeepsDeletedClips", KeepsDeletedClips},
        {"MakesAnInstanceEachTime", MakesAnInstanceEachTime},
        {"RefusesConcurrentOpens",
         SpoilsConcurrent(ksSelectorOpenFile, [](const Request&) { return std::int32_t{ksResultFailed}; })},
        {"DescribesNoTimeScale", Describes(NoTimeScale)},
        {"DescribesAWidthThatGrows", Describes(AWidthThatGrows)},
        {"MiscountsDurations", Describes(OneUnitMore)},
        {"CountsAFrameAtLeast", Describes(AFrameAtLeast)},
        {"DescribesNothing", AnswersInstead(ksSelectorClipDescription, ksResultFileUnreadable, ksResultServed)},
        {"HidesFailedDescriptions", AnswersInstead(ksSelectorClipDescription, ksResultFailed, ksResultServed)},
        {"ReadsUnopenedFiles", ReadsUnopenedFiles},
        {"ForgetsOpenedFiles", ForgetsOpenedFiles},
        {"KeepsSettingsOfMissingFiles", KeepsSettingsOfMissingFiles},
    };
}

} // namespace wrong
