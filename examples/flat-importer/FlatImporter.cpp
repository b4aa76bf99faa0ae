/// An importer whose clips show one colour and are silent. docs/write-an-importer.md builds it step by step.

#include "FlatClip.h"

#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/importabi/Entries.h>
#include <kestrel/importabi/Records.h>
#include <kestrel/importabi/Resources.h>
#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/importabi/Selectors.h>
#include <kestrel/importabi/Suites.h>
#include <kestrel/pixmill/Fill.h>
#include <kestrel/pixmill/PixelFormatCodes.h>
#include <kestrel/qelcore/FourCharacterCode.h>
#include <kestrel/qelcore/logging/Log.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>

#define FLAT_NAME_KEY "$$$/Examples/Importers/FlatImporter/Name=Flat Color"
#define FLAT_MATCH_NAME "EXAMPLE Flat Color"
KS_IMPORTER_RESOURCES(FLAT_NAME_KEY, FLAT_MATCH_NAME);

namespace {

constexpr std::uint32_t kImporterCode = qelcore::FourCharacterCode("IMPT");
constexpr std::uint32_t kFileTypeCode = qelcore::FourCharacterCode("FLAT");
constexpr std::int32_t kChannels = 2;
constexpr std::uint32_t kSettingsBytes = 4096; // a longer text is not handed to the host

std::filesystem::path PathFrom(const ksUTF16* path)
{
    return path == nullptr ? std::filesystem::path() : std::filesystem::path(path);
}

/// A record, instance or buffer that a request needs. `xImportEntry` answers the exception with
/// `ksResultFailed`.
template <class Type>
Type* Needed(void* pointer)
{
    return pointer != nullptr ? static_cast<Type*>(pointer) : throw std::invalid_argument("null pointer");
}

/// The host's table of functions for one subject.
template <class Suite>
const Suite& AcquireSuite(const ksStdParms* stdParms, const char* name, std::int32_t version)
{
    const void* suite = nullptr;
    const ksSuiteAccess* const access = stdParms->services->utility->getSuiteAccess();
    if (access->acquireSuite(name, version, &suite) < 0) {
        throw std::runtime_error(std::string("the host has no ") + name);
    }
    return *static_cast<const Suite*>(suite);
}

std::int32_t StartUp(ksStartUpRec& record)
{
    record.fileTypeCode = kFileTypeCode;
    record.flag28 = record.flag32 = record.flag36 = record.flag44 = 1;
    record.flag52 = record.flag60 = record.flag72 = 1;
    return ksResultServed;
}

std::int32_t DescribeFileType(ksFileTypeRec& record)
{
    record.fileTypeCode = kFileTypeCode;
    record.flags = 0xE008;
    record.zero8 = record.zero760 = 0;
    std::strncpy(record.displayName, "Flat Color", sizeof record.displayName); // pads with NULs
    std::memcpy(record.extensions, "flat\0", 6); // the list's one entry, then the empty one that ends it
    return ksResultServed;
}

std::int32_t OpenFile(ksOpenRec& record)
{
    const auto text = ReadText(PathFrom(record.path));
    if (!text) {
        return ksResultFileUnreadable;
    }
    const FlatClip clip = ParseClip(*text);
    if (record.instance == nullptr) {
        record.instance = new FlatClip;
    }
    *static_cast<FlatClip*>(record.instance) = clip;
    return ksResultServed;
}

std::int32_t DescribeClip(const ksFileAccessRec& file, ksFileInfoRec& record)
{
    record.hasVideo = record.hasAudio = 1;
    if (record.instance == nullptr) {
        record.instance = new FlatClip;
    }
    auto& clip = *Needed<FlatClip>(record.instance);
    if (!std::filesystem::exists(PathFrom(file.path))) { // a clip without a file: the host kept its settings
        if (record.settingsText == nullptr) {
            return ksResultFileUnreadable;
        }
        clip = ParseClip(record.settingsText);
    }
    record.frameWidth = clip.width;
    record.frameHeight = clip.height;
    record.depth = 32;
    record.fieldType = 0;
    record.flag22 = 1;
    record.flag54 = 1;
    record.parNumerator = record.parDenominator = 1;
    record.supportsColorManagement = 1;
    record.videoTimeScale = clip.timeScale;
    record.videoSampleSize = clip.sampleSize;
    record.videoDuration = clip.frameCount * clip.sampleSize;
    record.audioChannelCount = kChannels;
    record.audioSampleRate = 48000;
    record.audioValue182 = 6;
    return ksResultServed;
}

std::int32_t GiveSettingsText(const ksFileAccessRec& file, ksSettingsExchangeRec& record)
{
    if (record.text == nullptr) {
        record.bufferSize = kSettingsBytes;
        return ksResultServed;
    }
    const std::filesystem::path path = PathFrom(file.path);
    if (record.newClip == 0 || !std::filesystem::exists(path)) {
        return ksResultUnsupported; // a dialog is due, and this importer has none
    }
    const auto text = ReadText(path);
    if (!text) {
        return ksResultFileUnreadable;
    }
    if (text->size() < kSettingsBytes) {
        std::memcpy(record.text, text->c_str(), text->size() + 1);
        record.bufferSize = kSettingsBytes;
    }
    return ksResultServed;
}

std::int32_t RenderFrame(ksFrameRec& record, const ksStdParms* stdParms)
{
    const auto& clip = *Needed<FlatClip>(record.instance);
    const auto& creator =
        AcquireSuite<ksFrameCreatorSuite4>(stdParms, kFrameCreatorSuiteName, kFrameCreatorSuiteVersion);
    const auto& frames = AcquireSuite<ksFrameSuite1>(stdParms, kFrameSuiteName, kFrameSuiteVersion);
    auto& frame = *Needed<ksFrameHandle>(record.frame);
    void* pixels = nullptr;
    std::int32_t rowBytes = 0;
    if (creator.createFrame(&frame, ksFrameAccessReadWrite,
                            BR::BEToSDKPixelFormat(BR::PixelFormat::BGRA_4444_8u), clip.width, clip.height,
                            false, 0, 1, 1, record.extra16) < 0 ||
        frames.getPixels(frame, ksFrameAccessReadWrite, &pixels) < 0 ||
        frames.getRowBytes(frame, &rowBytes) < 0 ||
        PM_FillWithColor(pixels, rowBytes, static_cast<std::uint32_t>(clip.width),
                         static_cast<std::uint32_t>(clip.height), pixmill::kBGRA8, clip.color.data(),
                         pixmill::kBGRAFloat) < 0) {
        return ksResultFailed;
    }
    return ksResultServed;
}

std::int32_t RenderSilence(const ksAudioRec& record)
{
    Needed<FlatClip>(record.instance);
    for (std::int32_t channel = 0; channel < kChannels && record.sampleCount > 0; ++channel) {
        std::fill_n(Needed<float*>(record.channels)[channel], record.sampleCount, 0.0F);
    }
    return ksResultServed;
}

std::int32_t GiveColorCodes(ksColorRec& record)
{
    Needed<FlatClip>(record.instance);
    record.kind = 3;
    record.codes = {1, 13, 0, 1}; // sRGB in the codes of ITU-T H.273: full-range R'G'B'
    return ksResultServed;
}

std::int32_t Serve(std::int32_t selector, const ksStdParms* stdParms, void* param1, void* param2)
{
    // Selectors 14 and 73 have an index in place of their first record.
    const bool isFirstIndex = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(param1)) == 0;
    switch (selector) {
    case ksSelectorStartUp:
        return StartUp(*Needed<ksStartUpRec>(param1));
    case ksSelectorShutDown:
    case ksSelectorCloseFile:
        return ksResultServed;
    case ksSelectorDeleteInstance:
        delete static_cast<FlatClip*>(param2);
        return param2 != nullptr ? ksResultServed : ksResultUnsupported;
    case ksSelectorFileType:
        if (!isFirstIndex) {
            return ksResultNoMoreEntries;
        }
        return DescribeFileType(*Needed<ksFileTypeRec>(param2));
    case ksSelectorAudio:
        return RenderSilence(*Needed<ksAudioRec>(param2));
    case ksSelectorClipDescription:
        return DescribeClip(*Needed<ksFileAccessRec>(param1), *Needed<ksFileInfoRec>(param2));
    case ksSelectorSettingsExchange:
        return GiveSettingsText(*Needed<ksFileAccessRec>(param1), *Needed<ksSettingsExchangeRec>(param2));
    case ksSelectorOpenFile:
        return OpenFile(*Needed<ksOpenRec>(param2));
    case ksSelectorFrame:
        return RenderFrame(*Needed<ksFrameRec>(param2), stdParms);
    case ksSelectorColorInformation:
        if (!isFirstIndex) {
            return ksResultNoSuchColorIndex;
        }
        return GiveColorCodes(*Needed<ksColorRec>(param2));
    default:
        return ksResultUnsupported;
    }
}

} // namespace

KS_IMPORTER_ENTRY std::int32_t xImportEntry(std::int32_t selector, const ksStdParms* stdParms, void* param1,
                                            void* param2)
{
    try {
        return Serve(selector, stdParms, param1, param2);
    } catch (const std::bad_alloc&) {
        return ksResultOutOfMemory;
    } catch (...) { // no exception may reach the host
        qelcore::logging::LogCurrentException("FlatImporter");
        return ksResultFailed;
    }
}

KS_IMPORTER_ENTRY void PluginDataEntryFunction(void* hostContext, ksPluginDataCallback callback)
{
    if (callback != nullptr) {
        callback(hostContext, FLAT_NAME_KEY, FLAT_MATCH_NAME, "Importer", "", kImporterCode, 13, 29, 0);
    }
}
