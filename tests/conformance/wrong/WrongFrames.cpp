#include "WrongPlugin.h"

#include <kestrel/importabi/Suites.h>

#include <cstring>
#include <set>

namespace wrong {

namespace {

constexpr std::uint32_t kBGRA8 = 0x61726762; // "bgra" read little-endian

/// The host's suite, asked for once.
template <class Suite>
const Suite& HostSuite(const Request& request, const char* name, std::int32_t version)
{
    static const void* suite = nullptr;
    if (suite == nullptr) {
        request.stdParms->services->utility->getSuiteAccess()->acquireSuite(name, version, &suite);
    }
    return *static_cast<const Suite*>(suite);
}

std::uint8_t* PixelsOf(const Request& request)
{
    void* pixels = nullptr;
    HostSuite<ksFrameSuite1>(request, kFrameSuiteName, kFrameSuiteVersion)
        .getPixels(*request.Second<ksFrameRec>()->frame, ksFrameAccessReadWrite, &pixels);
    return static_cast<std::uint8_t*>(pixels);
}

/// Changes a served picture, given the address of its pixels.
template <class Change>
Serve Paints(const Change& change)
{
    return [=](const Request& request) {
        const std::int32_t answer = Right(request);
        if (request.Is(ksSelectorFrame) && answer == ksResultServed) {
            change(request, PixelsOf(request));
        }
        return answer;
    };
}

/// Red of the first pixel, where something was painted over the 0x77 of the checker's frames.
void OneCodeValueOff(const Request&, std::uint8_t* pixels)
{
    if (pixels[2] != 0x77) {
        pixels[2] = static_cast<std::uint8_t>(pixels[2] ^ 1U);
    }
}

void AByteBehindTheRow(const Request&, std::uint8_t* pixels)
{
    pixels[96 * 4] = pixels[0]; // the general suite's frames have 96 pixels of four bytes
}

void WithTheTimesLastBit(const Request& request, std::uint8_t* pixels)
{
    pixels[0] = static_cast<std::uint8_t>(pixels[0] ^ (request.Second<ksFrameRec>()->time & 1));
}

void WithTheInstancesNumber(const Request& request, std::uint8_t* pixels)
{
    static std::set<void*> instances;
    instances.insert(request.Second<ksFrameRec>()->instance);
    pixels[0] = static_cast<std::uint8_t>(pixels[0] ^ (instances.size() - 1));
}

/// A host in front of the host, which changes what frames are made of.
struct Between {
    static void Change(std::uint32_t& pixelFormat, std::int32_t& height)
    {
        pixelFormat = makesBGRA ? kBGRA8 : pixelFormat;
        height = makesTwice ? 2 * height : height;
    }

    static std::int32_t Create(ksFrameHandle* frame, std::int32_t access, std::uint32_t pixelFormat,
                               std::int32_t width, std::int32_t height, bool reserved5, std::int32_t reserved6,
                               std::uint32_t parNumerator, std::uint32_t parDenominator, void* extra16)
    {
        Change(pixelFormat, height);
        const std::int32_t status = creator->createFrame(frame, access, pixelFormat, width, height, reserved5,
                                                         reserved6, parNumerator, parDenominator, extra16);
        if (mixes && *frame != nullptr) {
            const void* frames = nullptr;
            access1->acquireSuite(kFrameSuiteName, kFrameSuiteVersion, &frames);
            void* pixels = nullptr;
            static_cast<const ksFrameSuite1*>(frames)->getPixels(*frame, ksFrameAccessReadWrite, &pixels);
            oldByte = pixels != nullptr ? *static_cast<std::uint8_t*>(pixels) : std::uint8_t{0};
        }
        return status;
    }

    static std::int32_t Acquire(const char* name, std::int32_t version, const void** suite)
    {
        static const ksFrameCreatorSuite4 kCreator{{}, Create};
        const std::int32_t status = access1->acquireSuite(name, version, suite);
        if (status >= 0 && std::strcmp(name, kFrameCreatorSuiteName) == 0) {
            creator = static_cast<const ksFrameCreatorSuite4*>(*suite);
            *suite = &kCreator;
        }
        return status;
    }

    static ksSuiteAccess* Access()
    {
        static ksSuiteAccess access{Acquire};
        return &access;
    }

    static std::int32_t Serve(const Request& request)
    {
        if (request.selector != ksSelectorFrame || request.stdParms == nullptr) {
            return Right(request);
        }
        access1 = request.stdParms->services->utility->getSuiteAccess();
        static ksUtilityFunctions utility{};
        utility.getSuiteAccess = Access;
        static ksServiceTables services;
        services = *request.stdParms->services;
        services.utility = &utility;
        static ksStdParms parameters;
        parameters = *request.stdParms;
        parameters.services = &services;
        return Right({request.selector, &parameters, request.param1, request.param2});
    }

    static inline ksSuiteAccess* access1 = nullptr;
    static inline const ksFrameCreatorSuite4* creator = nullptr;
    static inline std::uint8_t oldByte = 0;
    static inline bool makesBGRA = false;
    static inline bool makesTwice = false;
    static inline bool mixes = false;
};

std::int32_t MakesFramesTwiceAsHigh(const Request& request)
{
    Between::makesTwice = true;
    return Between::Serve(request);
}

std::int32_t MakesEveryFrameBGRA(const Request& request)
{
    Between::makesBGRA = true;
    return Between::Serve(request);
}

std::int32_t MixesWithOldPixels(const Request& request)
{
    Between::mixes = true;
    const std::int32_t answer = Between::Serve(request);
    if (request.Is(ksSelectorFrame) && answer == ksResultServed) {
        std::uint8_t* const pixels = PixelsOf(request);
        pixels[0] = static_cast<std::uint8_t>((pixels[0] + Between::oldByte) / 2);
    }
    return answer;
}

std::int32_t CrashesBeforeTheStart(const Request& request)
{
    if (request.Is(ksSelectorFrame) && request.Second<ksFrameRec>()->time < 0) {
        Crash();
    }
    return Right(request);
}

std::int32_t HidesFailedFrames(const Request& request)
{
    const std::int32_t answer = Right(request);
    const bool hasInstance = request.Is(ksSelectorFrame) && request.Second<ksFrameRec>()->instance != nullptr;
    return hasInstance && answer == ksResultFailed ? std::int32_t{ksResultServed} : answer;
}

std::int32_t AsksEachHostAnew(const Request& request)
{
    const void* suite = nullptr;
    if (request.Is(ksSelectorFrame) && request.stdParms != nullptr &&
        request.stdParms->services->utility->getSuiteAccess()->acquireSuite(
            kFrameCreatorSuiteName, kFrameCreatorSuiteVersion, &suite) < 0) {
        return ksResultFailed;
    }
    return Right(request);
}

/// Remembers the instances whose documents last no time.
std::int32_t RefusesClipsWithoutFrames(const Request& request)
{
    static std::set<void*> instances;
    const std::int32_t answer = Right(request);
    if (request.Is(ksSelectorOpenFile) && answer == ksResultServed) {
        const auto& open = *request.Second<ksOpenRec>();
        if (const auto document = ContentOf(open.path);
            document && document->find("\"ticks\": 0}") != std::string::npos) {
            instances.insert(open.instance);
        }
    }
    const bool isRefused =
        request.Is(ksSelectorFrame) && instances.count(request.Second<ksFrameRec>()->instance) != 0;
    return isRefused ? std::int32_t{ksResultFailed} : answer;
}

} // namespace

std::vector<WrongPlugin> WrongFrames()
{
    return {
        {"PaintsOneCodeValueOff", Paints(OneCodeValueOff)},
        {"PaintsBehindTheRow", Paints(AByteBehindTheRow)},
        {"PaintsTheTime", Paints(WithTheTimesLastBit)},
        {"PaintsTheInstance", Paints(WithTheInstancesNumber)},
        {"MixesWithOldPixels", MixesWithOldPixels},
        {"MakesFramesTwiceAsHigh", MakesFramesTwiceAsHigh},
        {"MakesEveryFrameBGRA", MakesEveryFrameBGRA},
        {"CrashesBeforeTheStart", CrashesBeforeTheStart},
        {"HidesFailedFrames", HidesFailedFrames},
        {"AsksEachHostAnew", AsksEachHostAnew},
        {"RefusesClipsWithoutFrames", RefusesClipsWithoutFrames},
        {"SpoilsConcurrentFrames", SpoilsConcurrent(ksSelectorFrame,
                                                    [](const Request& request) {
                                                        PixelsOf(request)[0] ^= 1U;
                                                        return std::int32_t{ksResultServed};
                                                    })},
    };
}

} // namespace wrong
