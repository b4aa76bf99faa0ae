#include "SettingsExchange.h"

#include "ClipDescription.h"

#include <ImporterTessel/dialog/DataExchange.h>
#include <ImporterTessel/dialog/ImporterTesselPrefsDialogImpl.h>
#include <ImporterTessel/host/HostServices.h>
#include <ImporterTessel/settings/DataFile.h>
#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/importabi/Suites.h>
#include <kestrel/qelcore/files/FileUtils.h>
#include <kestrel/qellumenfactory/UI_NodeManager.h>

#include <cstring>
#include <memory>
#include <string>

namespace ImporterTessel {

namespace {

/// The NUL-terminated text in the host's buffer; without a NUL it ends with the buffer.
std::string_view TextIn(const ksSettingsExchangeRec& exchange) noexcept
{
    const char* const text = exchange.text;
    const auto* const end = static_cast<const char*>(std::memchr(text, '\0', kSettingsBufferSize));
    return {text, end == nullptr ? kSettingsBufferSize : static_cast<std::size_t>(end - text)};
}

/// Settings of a new clip: the defaults in the host's frame and rate.
/// @return whether the host could convert its rate, with `info` untouched otherwise.
[[nodiscard]] bool TakeSequenceValues(const ksStdParms* stdParms, const ksSettingsExchangeRec& exchange,
                                      TesselInfo& info)
{
    const auto* const suite = AcquireSuite<ksLegacySuite1>(stdParms, kLegacySuiteName, kLegacySuiteVersion1);
    if (suite == nullptr || suite->timeScaleToTicks == nullptr) {
        return false;
    }
    std::int64_t ticksPerFrame = 0;
    static_cast<void>(suite->timeScaleToTicks(exchange.timeScale, exchange.sampleSize, &ticksPerFrame));
    info.mFrameWidth = exchange.frameWidth;
    info.mFrameHeight = exchange.frameHeight;
    info.mFramePAR = {exchange.parNumerator, exchange.parDenominator};
    info.mVideoFrameRate = {ticksPerFrame == 0 ? qelmediatypes::FrameRate::kUnusableTicks : ticksPerFrame};
    return true;
}

/// Fills `info`, which comes with the defaults, from the clip's one source. @return a `ksResult`.
[[nodiscard]] std::int32_t LoadSettings(const ksStdParms* stdParms, std::u16string_view path, bool fileExists,
                                        const ksSettingsExchangeRec& exchange, TesselInfo& info)
{
    if (fileExists) {
        return ReadTesselFile(path, info) < 0 ? ksResultFileUnreadable : ksResultServed;
    }
    if (exchange.newClip == 0) {
        info = TesselFromUTF8String(TextIn(exchange));
        return ksResultServed;
    }
    return TakeSequenceValues(stdParms, exchange, info) ? ksResultServed : ksResultFailed;
}

/// Lets the person edit `info`.
/// @return `ksResultServed` with what was edited; `ksResultCancelled` with `info` as it was;
///         `ksResultUseSavedFile` where the clip is to use the file `info.mSavePath`.
[[nodiscard]] std::int32_t EditSettings(TesselInfo& info)
{
    const auto dataExchange = std::make_shared<ImporterTesselPrefsDialogDataExchange>();
    dataExchange->SetPrefs(info);
    CreatePrefsDialog(*dataExchange, qellumenfactory::UI_NodeManager::Get().GetDefaultDrawSupplier(),
                      FindHostMainWindow());
    if (dataExchange->IsCancelled()) {
        return ksResultCancelled;
    }
    dataExchange->GetPrefs(info);
    return dataExchange->UsesFileAsCustomImporter() ? ksResultUseSavedFile : ksResultServed;
}

/// Hands the saved file's path to the host, in a block of the host's memory.
void ReturnSavedPath(const ksStdParms* stdParms, const std::u16string& path, ksFileAccessRec& file)
{
    const std::size_t bytes = (path.size() + 1) * sizeof(ksUTF16);
    void* const block = AllocateHostBlock(stdParms, static_cast<std::uint32_t>(bytes));
    std::memcpy(block, path.c_str(), bytes);
    file.newPath = static_cast<ksUTF16*>(block);
}

/// Copies the settings' text into the host's buffer.
void ReturnText(const TesselInfo& info, ksSettingsExchangeRec& exchange)
{
    const std::string text = TesselToUTF8String(info);
    // Intended: a text that fills the buffer to its last byte counts as too long, and too long a text is
    // dropped without a report.
    if (text.size() + 1 < kSettingsBufferSize) {
        std::memcpy(exchange.text, text.c_str(), text.size() + 1);
        exchange.bufferSize = kSettingsBufferSize;
    }
}

} // namespace

std::int32_t ExchangeSettings(const ksStdParms* stdParms, ksFileAccessRec& file,
                              ksSettingsExchangeRec& exchange)
{
    const std::u16string_view path = PathFrom(file.path);
    const bool fileExists = qelcore::utility::FileUtils::FileOrDirExists(path);
    const bool dialogIsDue = !fileExists || exchange.newClip == 0;

    if (exchange.text == nullptr) {
        exchange.bufferSize = kSettingsBufferSize;
        return ksResultServed;
    }
    TesselInfo info;
    std::int32_t result = LoadSettings(stdParms, path, fileExists, exchange, info);
    if (result != ksResultServed) {
        return result;
    }
    if (dialogIsDue) {
        result = EditSettings(info);
    }
    if (result == ksResultUseSavedFile) {
        ReturnSavedPath(stdParms, info.mSavePath, file);
        return result;
    }
    ReturnText(info, exchange);
    return result;
}

} // namespace ImporterTessel
