/// Opening a clip: from a file name to a described instance, with a reason for every refusal.

#include "ClipState.h"
#include "HostError.h"
#include "LegacySuite.h"
#include "PathText.h"

#include <kestrel/brindle/ColorSpaces.h>
#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/importabi/Selectors.h>
#include <kestrel/qelcore/logging/Log.h>
#include <kestrel/qelcore/text/Unicode.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <limits>
#include <string_view>
#include <system_error>
#include <vector>

namespace importhost {
namespace {

[[noreturn]] void Refuse(const std::filesystem::path& file, const std::string& why)
{
    throw HostError(DisplayName(file) + ": " + why);
}

std::string LowerASCII(std::string text)
{
    for (char& character : text) {
        if (character >= 'A' && character <= 'Z') {
            character = static_cast<char>(character - 'A' + 'a');
        }
    }
    return text;
}

void RequireReadableFile(const std::filesystem::path& file)
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
        Refuse(file, "cannot be read: " + error.message());
    default:
        Refuse(file, "is not an ordinary file");
    }
    errno = 0;
    if (!std::ifstream(file, std::ios::binary).is_open()) {
        Refuse(file, "cannot be read: " + std::generic_category().message(errno != 0 ? errno : EIO));
    }
}

} // namespace

void RequireExtension(const Importer& importer, const std::filesystem::path& file)
{
    const std::string extension = LowerASCII(file.extension().string());
    std::string known;
    for (const FileType& type : importer.FileTypes()) {
        for (const std::string& own : type.extensions) {
            if (extension.substr(std::min<std::size_t>(extension.size(), 1)) == LowerASCII(own)) {
                return;
            }
            known += (known.empty() ? "." : ", .") + own;
        }
    }
    Refuse(file, (extension.empty() ? std::string("no file extension")
                                    : "unknown file extension " + OneLine(extension)) +
                     ", " + known + " was expected");
}

namespace {

/// The name as plug-ins take it: absolute where that can be said in UTF-16.
std::u16string PluginPath(const std::filesystem::path& file)
{
    std::error_code ignored;
    const std::filesystem::path absolute = std::filesystem::absolute(file, ignored);
    if (auto path = qelcore::text::ToUTF16Strict(absolute.native()); path && !path->empty()) {
        return *std::move(path);
    }
    return qelcore::text::ToUTF16(file.native());
}

/// Collects what the plug-in logs; a clip's reader answers a broken document with a default clip and says
/// so only there.
class Complaints {
public:
    Complaints() : mListener([this](const qelcore::logging::Message& message) { Add(message.text); }) {}

    [[nodiscard]] const std::string& Lines() const noexcept { return mLines; }
    [[nodiscard]] const std::string& First() const noexcept { return mFirst; }

private:
    void Add(const std::string& text)
    {
        const std::string line = OneLine(text);
        if (mFirst.empty()) {
            mFirst = line.empty() ? "cannot be read" : line;
        }
        mLines += (mLines.empty() ? "" : "\n") + line;
    }

    std::string mLines;
    std::string mFirst;
    qelcore::logging::ScopedListener mListener;
};

/// What is wrong with the document in one line: its syntax with a place where that is it, else what the
/// plug-in said.
std::string Diagnosis(const std::filesystem::path& file, const std::string& complaint)
{
    std::error_code ignored;
    if (std::filesystem::file_size(file, ignored) == 0) {
        return "is empty, a JSON document with a clip's settings was expected";
    }
    return DocumentProblem(file).value_or(complaint);
}

/// Whole frames from the record's duration, frames × sampleSize cut to 32 bits.
///
/// Clips longer than 2^31 units wrap. Multiplication by an odd number can be undone modulo 2^32, so the
/// count is found all the same; an even sample size of 2^k × odd leaves the count modulo 2^(32-k), of
/// which the smallest is taken.
std::int64_t FramesFromDuration(std::int32_t duration, std::int32_t sampleSize) noexcept
{
    if (sampleSize <= 0) {
        return 0;
    }
    auto odd = static_cast<std::uint32_t>(sampleSize);
    unsigned twos = 0;
    while (odd % 2 == 0) {
        odd /= 2;
        ++twos;
    }
    // Newton's iteration doubles the right low bits of the inverse: 3, 6, 12, 24, 48.
    std::uint32_t inverse = odd;
    for (int i = 0; i < 4; ++i) {
        inverse *= 2U - odd * inverse;
    }
    std::uint32_t frames = (static_cast<std::uint32_t>(duration) >> twos) * inverse;
    if (twos > 0) {
        frames &= std::numeric_limits<std::uint32_t>::max() >> twos;
        // The top bit of what is known is the sign: a negative duration must not turn into a long one.
        const std::uint32_t sign = 1U << (31U - twos);
        return (frames & sign) != 0 ? 0 : frames;
    }
    return std::max<std::int64_t>(static_cast<std::int32_t>(frames), 0);
}

void Describe(const ksFileInfoRec& record, ClipDescription& description)
{
    description.width = record.frameWidth;
    description.height = record.frameHeight;
    description.pixelAspect = {record.parNumerator, record.parDenominator};
    description.fieldType = record.fieldType;
    description.timeScale = record.videoTimeScale;
    description.sampleSize = record.videoSampleSize;
    description.frameCount = FramesFromDuration(record.videoDuration, record.videoSampleSize);
    description.sampleRate = record.audioSampleRate;
    description.channelCount = record.audioChannelCount;
    description.supportsColorManagement = record.supportsColorManagement != 0;
}

/// The settings' own ticks per frame where the record's pair stands for them. Few rates are no fraction of
/// 32-bit numbers; but times counted in frames of the rounded pair come to lie before the frame they mean.
qelmediatypes::FrameRate RateOf(const ClipDescription& description, std::int64_t settingsTicks)
{
    const TimeScalePair pair{description.timeScale, description.sampleSize};
    const std::int64_t ticks = TicksFromTimeScale(pair);
    if (ticks <= 0) {
        return {};
    }
    return {TimeScaleFromTicks(settingsTicks) == pair ? settingsTicks : ticks};
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

/// The settings text that selector 38 gives for an existing file without a dialog; nothing where it does not
/// fit the buffer that the plug-in asked for.
std::optional<std::string> AskSettingsText(const Importer& importer, const std::filesystem::path& file,
                                           ksFileAccessRec& access)
{
    ksSettingsExchangeRec exchange{};
    std::int32_t result = importer.Request(ksSelectorSettingsExchange, &access, &exchange);
    if (result != ksResultServed) {
        Refuse(file, "the plug-in gives no settings (result " + std::to_string(result) + ")");
    }
    std::string text(exchange.bufferSize, '\0');
    if (text.empty()) {
        return std::nullopt;
    }
    exchange = {};
    exchange.text = text.data();
    exchange.newClip = 1;
    result = importer.Request(ksSelectorSettingsExchange, &access, &exchange);
    if (result != ksResultServed) {
        Refuse(file, "the plug-in gives no settings (result " + std::to_string(result) + ")");
    }
    text.resize(std::min(text.find('\0'), text.size()));
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

} // namespace

Clip Clip::Open(std::shared_ptr<const Importer> importer, const std::filesystem::path& file,
                const OpenOptions& options)
{
    RequireUTF8Name(file);
    RequireReadableFile(file);
    RequireExtension(*importer, file);

    auto state = std::make_unique<State>(std::move(importer), file, options.filling);
    const Importer& plugin = *state->importer;
    const std::u16string path = PluginPath(file);
    const Complaints complaints;

    ksOpenRec open{};
    open.path = path.c_str();
    std::int32_t result = plugin.Request(ksSelectorOpenFile, nullptr, &open);
    state->instance = open.instance;
    if (result != ksResultServed || state->instance == nullptr) {
        Refuse(file, result == ksResultFileUnreadable
                         ? "cannot be read"
                         : "the plug-in cannot open it (result " + std::to_string(result) + ")");
    }

    ksFileAccessRec access{};
    access.path = path.c_str();
    ksFileInfoRec info{};
    info.instance = state->instance;
    result = plugin.Request(ksSelectorClipDescription, &access, &info);
    if (result != ksResultServed) {
        Refuse(file, "the plug-in cannot describe it (result " + std::to_string(result) + ")");
    }
    Describe(info, state->description);

    if (!options.allowDefault) {
        if (!complaints.First().empty()) {
            Refuse(file, Diagnosis(file, complaints.First()));
        }
        // A document that is no object is no error to the plug-in, which reads nothing from it.
        if (const auto problem = DocumentProblem(file)) {
            Refuse(file, *problem);
        }
    }
    state->warning = complaints.Lines();

    ksColorRec color{};
    color.instance = state->instance;
    result = plugin.Request(ksSelectorColorInformation, nullptr, &color);
    if (result != ksResultServed) {
        Refuse(file, "the plug-in gives no color information (result " + std::to_string(result) + ")");
    }
    state->description.colorCodes = color.codes;
    state->description.colorSpaceName = ColorSpaceName(state->description.colorCodes);

    state->settingsText = AskSettingsText(plugin, file, access);
    const auto keys =
        state->settingsText ? SettingsKeysFromText(*state->settingsText) : SettingsKeysFromFile(file);
    if (!keys) {
        Refuse(file, "its settings cannot be read");
    }
    state->keys = *keys;
    state->description.rate = RateOf(state->description, keys->ticksPerFrame);
    state->description.pixelFormatCode = keys->pixelFormat;
    state->description.pixelFormat = BR::SDKToBEPixelFormat(keys->pixelFormat);
    state->description.channelType = keys->channelType;
    return Clip(std::move(state));
}

} // namespace importhost
