#include "SettingsExchange.h"

#include "HostError.h"
#include "PathText.h"
#include "StandardParameters.h"

#include <kestrel/importabi/Records.h>
#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/importabi/Selectors.h>
#include <kestrel/qelcore/logging/Log.h>
#include <kestrel/qelcore/text/PathText.h>
#include <kestrel/qelcore/text/Unicode.h>

#include <memory>
#include <string_view>
#include <vector>

namespace importhost {
namespace {

struct FreeBlock {
    void operator()(ksUTF16* block) const noexcept { FreeHostBlock(block); }
};

[[noreturn]] void Fail(const std::string& subject, std::int32_t result, std::string_view lastMessage)
{
    if (result == ksResultFileUnreadable) {
        throw HostError(subject + ": the plug-in cannot read this file");
    }
    throw PluginFailure(subject + ": the settings dialog failed (result " + std::to_string(result) + ')',
                        OneLine(lastMessage));
}

EditedSettings Exchange(const Importer& importer, ksFileAccessRec& access, ksSettingsExchangeRec& exchange,
                        const std::string& subject, const MessageHandler& onMessage)
{
    if (importer.Request(ksSelectorSettingsExchange, &access, &exchange) != ksResultServed) {
        Fail(subject, ksResultFailed, "it did not say how large its settings are");
    }
    std::vector<char> buffer(static_cast<std::size_t>(exchange.bufferSize) + 1, '\0');
    exchange.text = buffer.data();
    // The plug-in writes the size only together with a text. A size of 0 afterwards means: no text.
    exchange.bufferSize = 0;

    EditedSettings edited;
    std::string lastMessage;
    const qelcore::logging::ScopedListener listener([&](const qelcore::logging::Message& message) {
        lastMessage = message.text;
        onMessage(message);
    });
    const std::int32_t result = importer.Request(ksSelectorSettingsExchange, &access, &exchange);
    const std::unique_ptr<ksUTF16, FreeBlock> newPath(access.newPath);
    switch (result) {
    case ksResultServed:
        edited.decision = SettingsDecision::Accepted;
        break;
    case ksResultCancelled:
        edited.decision = SettingsDecision::Cancelled;
        break;
    case ksResultUseSavedFile:
        if (newPath == nullptr) {
            Fail(subject, result, "it named no file");
        }
        edited.decision = SettingsDecision::UseFile;
        edited.newFile = qelcore::text::PathOf(qelcore::text::ToUTF8(newPath.get()));
        break;
    default:
        Fail(subject, result, lastMessage);
    }
    if (exchange.bufferSize != 0) {
        edited.text = buffer.data();
    }
    return edited;
}

} // namespace

EditedSettings EditClipSettings(const Importer& importer, const std::filesystem::path& file,
                                const MessageHandler& onMessage)
{
    RequireUTF8Name(file);
    const std::u16string path = UTF16Path(file);
    ksFileAccessRec access{};
    access.path = path.c_str();
    ksSettingsExchangeRec exchange{};
    return Exchange(importer, access, exchange, DisplayName(file), onMessage);
}

EditedSettings EditNewClipSettings(const Importer& importer, const SequenceValues& sequence,
                                   const MessageHandler& onMessage)
{
    ksFileAccessRec access{};
    ksSettingsExchangeRec exchange{};
    exchange.newClip = 1;
    exchange.frameWidth = sequence.width;
    exchange.frameHeight = sequence.height;
    exchange.parNumerator = sequence.parNumerator;
    exchange.parDenominator = sequence.parDenominator;
    exchange.timeScale = sequence.timeScale;
    exchange.sampleSize = sequence.sampleSize;
    return Exchange(importer, access, exchange, "new clip", onMessage);
}

} // namespace importhost
