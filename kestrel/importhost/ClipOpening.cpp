/// Opening a clip: from a file name to a described instance, with a reason for every refusal.

#include "ClipState.h"
#include "FrameCount.h"
#include "HostError.h"
#include "LegacySuite.h"
#include "PathText.h"

#include <kestrel/brindle/ColorSpaces.h>
#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/importabi/Selectors.h>
#include <kestrel/qelcore/logging/Log.h>
#include <kestrel/qelcore/text/LetterCase.h>
#include <kestrel/qelcore/text/PathText.h>
#include <kestrel/qelcore/text/ReasonText.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <limits>
#include <string_view>
#include <system_error>
#include <vector>

namespace importhost {
namespace {

using qelcore::text::LowerCase;
using qelcore::text::ReasonText;

[[noreturn]] void Refuse(const std::filesystem::path& file, const std::string& why)
{
    throw HostError(DisplayName(file) + ": " + why);
}

/// Looks at the file's kind only; whether it can be read shows when the plug-in opens it.
void RequireOrdinaryFile(const std::filesystem::path& file)
{
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(file, error);
    switch (status.type()) {
    case std::filesystem::file_type::not_found:
        Refuse(file, "no such file");
    case std::filesystem::file_type::directory:
        Refuse(file, "is a directory, a clip's file was expected");
    case std::filesystem::file_type::regular:
        break;
    case std::filesystem::file_type::none:
        Refuse(file, "cannot be read: " + ReasonText(error));
    default:
        Refuse(file, "is not an ordinary file");
    }
}

/// The system's reason for a file that the plug-in could not read; empty where the host can open it.
std::string ReadFailure(const std::filesystem::path& file)
{
    errno = 0;
    if (std::ifstream(file, std::ios::binary).is_open()) {
        return {};
    }
    return ": " + ReasonText(std::error_code(errno != 0 ? errno : EIO, std::generic_category()));
}

/// Collects what the plug-in logs.
class MessageCollector {
public:
    explicit MessageCollector(std::vector<std::string>& lines)
        : mListener(
              [&lines](const qelcore::logging::Message& message) { lines.push_back(OneLine(message.text)); })
    {
    }

private:
    qelcore::logging::ScopedListener mListener;
};

void Describe(const ksFileInfoRec& record, ClipDescription& description)
{
    description.width = record.frameWidth;
    description.height = record.frameHeight;
    description.pixelAspect = {record.parNumerator, record.parDenominator};
    description.fieldType = record.fieldType;
    description.timeScale = record.videoTimeScale;
    description.sampleSize = record.videoSampleSize;
    const std::int64_t ticks = TicksFromTimeScale({record.videoTimeScale, record.videoSampleSize});
    description.rate = ticks > 0 ? qelmediatypes::FrameRate{ticks} : qelmediatypes::FrameRate{};
    description.frameCount = FramesFromDuration(record.videoDuration, record.videoSampleSize);
    description.sampleRate = record.audioSampleRate;
    description.channelCount = record.audioChannelCount;
    description.supportsColorManagement = record.supportsColorManagement != 0;
}

std::string ColorSpaceName(const ksSEIColorCodesRec& wanted)
{
    for (const auto& space : BR::ColorSpaces::GetSupportedOverridableMediaColorSpaces()) {
        ksSEIColorCodesRec codes{};
        if (BR::QELColorSpaceToSEIColorCodes(space, codes, /*fallBackToRec709=*/false) &&
            codes.primaries == wanted.primaries && codes.transfer == wanted.transfer &&
            codes.matrix == wanted.matrix && codes.fullRange == wanted.fullRange) {
            return BR::ColorSpaceUtils::QELColorSpaceToString(space, BR::kDescriptiveName);
        }
    }
    return "Unlisted";
}

/// The clip's colors; a plug-in that does not serve the request leaves them unspecified.
/// @return the plug-in's answer.
[[nodiscard]] std::int32_t DescribeColor(const Importer& importer, ksInstance instance,
                                         ClipDescription& description)
{
    ksColorRec color{};
    color.instance = instance;
    color.codes = description.colorCodes; // unspecified, for codes that the plug-in leaves alone
    const std::int32_t result = importer.Request(ksSelectorColorInformation, nullptr, &color);
    if (result == ksResultServed) {
        description.colorCodes = color.codes;
    }
    description.colorSpaceName = ColorSpaceName(description.colorCodes);
    return result;
}

} // namespace

const FileType& FileTypeOf(const Importer& importer, const std::filesystem::path& file)
{
    const std::string extension = LowerCase(qelcore::text::UTF8Text(file.extension()));
    std::string known;
    for (const FileType& type : importer.FileTypes()) {
        for (const std::string& own : type.extensions) {
            if (extension.substr(std::min<std::size_t>(extension.size(), 1)) == LowerCase(own)) {
                return type;
            }
            known += (known.empty() ? "." : ", .") + own;
        }
    }
    Refuse(file, (extension.empty() ? std::string("no file extension")
                                    : "unknown file extension " + OneLine(extension)) +
                     ", " + known + " was expected");
}

Clip Clip::Open(std::shared_ptr<const Importer> importer, const std::filesystem::path& file,
                FrameFilling filling)
{
    RequireUTF8Name(file);
    RequireOrdinaryFile(file);
    static_cast<void>(FileTypeOf(*importer, file));

    auto state = std::make_unique<State>(std::move(importer), file, filling);
    const Importer& plugin = *state->importer;
    const std::u16string path = UTF16Path(file);
    const MessageCollector collector(state->messages);
    // The last message of the plug-in is most likely the cause; the messages are destroyed with the state.
    const auto refuse = [&file, &messages = state->messages](const std::string& why) {
        throw PluginFailure(DisplayName(file) + ": " + why, messages.empty() ? "" : messages.back());
    };
    const auto failed = [](const char* what, std::int32_t result) {
        return "the plug-in " + std::string(what) + " (result " + std::to_string(result) + ")";
    };

    ksOpenRec open{};
    open.path = path.c_str();
    std::int32_t result = plugin.Request(ksSelectorOpenFile, nullptr, &open);
    state->instance = open.instance;
    if (result != ksResultServed || state->instance == nullptr) {
        refuse(result == ksResultFileUnreadable ? "cannot be read" + ReadFailure(file)
                                                : failed("cannot open it", result));
    }

    ksFileAccessRec access{};
    access.path = path.c_str();
    ksFileInfoRec info{};
    info.instance = state->instance;
    result = plugin.Request(ksSelectorClipDescription, &access, &info);
    if (result != ksResultServed) {
        refuse(failed("cannot describe it", result));
    }
    Describe(info, state->description);
    result = DescribeColor(plugin, state->instance, state->description);
    if (result != ksResultServed && result != ksResultUnsupported) {
        refuse(failed("gives no color information", result));
    }
    state->rate = state->description.rate;
    return Clip(std::move(state));
}

std::optional<std::string> Clip::AskSettingsText() const
{
    const Importer& importer = *mState->importer;
    const std::u16string path = UTF16Path(mState->file);
    ksFileAccessRec access{};
    access.path = path.c_str();
    const auto ask = [&](ksSettingsExchangeRec& exchange) {
        const std::int32_t result = importer.Request(ksSelectorSettingsExchange, &access, &exchange);
        if (result != ksResultServed && result != ksResultUnsupported) {
            Refuse(mState->file, "the plug-in gives no settings (result " + std::to_string(result) + ")");
        }
        return result == ksResultServed;
    };
    // The plug-in logs here what it has already logged when the clip opened.
    const qelcore::logging::ScopedListener quiet([](const qelcore::logging::Message&) {});
    ksSettingsExchangeRec sizeQuestion{};
    if (!ask(sizeQuestion) || sizeQuestion.bufferSize == 0) {
        return std::nullopt;
    }
    std::string text(sizeQuestion.bufferSize, '\0');
    ksSettingsExchangeRec exchange{};
    exchange.text = text.data();
    exchange.newClip = 1;
    if (!ask(exchange)) {
        return std::nullopt;
    }
    text.resize(std::min(text.find('\0'), text.size()));
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

} // namespace importhost
