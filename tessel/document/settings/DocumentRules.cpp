#include "DocumentRules.h"

#include "Idents.h"
#include "PixelLayouts.h"

#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/importhost/ClipFailure.h>
#include <kestrel/importhost/FrameRefusal.h>
#include <kestrel/pixmill/PixelFormatCodes.h>
#include <kestrel/qelcore/serialization/Json.h>
#include <kestrel/qelmediatypes/TickTime.h>
#include <tessel/document/DocumentFacts.h>
#include <tessel/document/SwatchRules.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <numeric>
#include <system_error>
#include <utility>

namespace tessel::document {
namespace {

using qelcore::serialization::Elements;
using qelcore::serialization::IsNumber;
using qelcore::serialization::Value;

bool IsBase64(std::string_view text)
{
    try {
        static_cast<void>(qelcore::serialization::DecodeBinaryDataFromUTF8String(text));
        return true;
    } catch (const std::runtime_error&) {
        return false;
    }
}

template <class Fits>
bool IsListOf(const Value& value, Fits fits)
{
    if (!value.IsArray()) {
        return false;
    }
    const Elements elements(value);
    return std::all_of(elements.begin(), elements.end(), fits);
}

/// The low 32 bits, as the reader takes them; `standard` where the key is absent.
std::int32_t Integer32(const DocumentEditor& document, std::string_view path, std::int32_t standard)
{
    const auto integer = qelcore::serialization::FindInteger(document.Find(path));
    return integer ? static_cast<std::int32_t>(*integer) : standard;
}

std::string SizeText(std::int32_t width, std::int32_t height)
{
    return std::to_string(width) + "x" + std::to_string(height);
}

std::optional<std::string> PictureProblem(const DocumentEditor& document, std::uint32_t code)
{
    const std::int32_t width = Integer32(document, "mFrameWidth", 0);
    const std::int32_t height = Integer32(document, "mFrameHeight", 0);
    constexpr std::int32_t kMost = importhost::kLargestFrameSide;
    if (width < 1 || width > kMost || height < 1 || height > kMost) {
        return "a frame of " + SizeText(width, height) + " cannot be made: width and height are 1 to " +
               std::to_string(kMost);
    }
    const BR::PixelFormat format = BR::SDKToBEPixelFormat(code);
    if (format == BR::PixelFormat::Unknown) {
        return std::to_string(code) + " is no pixel format; tessel list pixel-formats names all";
    }
    // Planar and DV formats are painted in formats of four bytes a pixel.
    const std::uint32_t painted = PM_QELPixelFormatToPMPixelFormat(format);
    const std::uint64_t rowBytes = pixmill::IsPaintable(painted)
                                       ? pixmill::BytesPerRow(painted, static_cast<std::uint32_t>(width))
                                       : std::uint64_t{4} * static_cast<std::uint32_t>(width);
    if (rowBytes * static_cast<std::uint32_t>(height) > std::numeric_limits<std::int32_t>::max()) {
        return "a frame of " + SizeText(width, height) + " in this pixel format has more than 2 GiB";
    }
    return std::nullopt;
}

/// Frames of the rate that the host's records can count: time units of the whole clip in 31 bits.
std::optional<std::string> LengthProblem(const DocumentEditor& document)
{
    const std::int64_t perFrame =
        qelcore::serialization::FindInteger(document.Find("mVideoFrameRate.ticksperframe")).value_or(0);
    const std::int64_t ticks =
        qelcore::serialization::FindInteger(document.Find("mVideoDuration.ticks")).value_or(0);
    if (perFrame <= 0 || perFrame == qelmediatypes::FrameRate::kUnusableTicks) {
        return "the clip has no frame rate; give one, such as 25 or 29.97";
    }
    const std::int64_t frames = ticks / perFrame;
    if (ticks < perFrame) {
        return "the clip has no frames: its duration is shorter than one";
    }
    const std::int64_t unit = perFrame / std::gcd(perFrame, qelmediatypes::kTicksPerSecond);
    const std::int64_t most = std::numeric_limits<std::int32_t>::max() / unit;
    if (frames > most && unit < std::numeric_limits<std::int32_t>::max()) {
        return "the clip has " + std::to_string(frames) + " frames, and with " + std::to_string(perFrame) +
               " ticks a frame at most " + std::to_string(most) +
               " can be counted; choose a shorter duration or a rate of tessel list frame-rates";
    }
    return std::nullopt;
}

std::optional<std::string> SoundProblem(const DocumentEditor& document)
{
    const std::int32_t channels = Integer32(document, "mNumChannels", 2);
    if (channels < 1 || channels > importhost::kMostChannels) {
        return std::to_string(channels) + " channels cannot be played: there are 1 to " +
               std::to_string(importhost::kMostChannels);
    }
    const Value rate = document.Find("mSampleRate");
    if (!rate.IsNothing() && !(qelcore::serialization::AsFloat(rate, "mSampleRate") > 0.0F)) {
        return "the sample rate must be greater than 0";
    }
    if (Integer32(document, "mToneFormat", 0) != 1) {
        return std::nullopt;
    }
    const std::int32_t format = Integer32(document, "mIdentifierFormat", 0);
    for (const Ident& ident : AllIdents()) {
        if (ident.format == format && channels < ident.channelCount) {
            return std::string(ident.title) + " needs " + std::to_string(ident.channelCount) +
                   " channels, the clip has " + std::to_string(channels);
        }
    }
    return std::nullopt;
}

std::optional<std::string> ChartProblem(const DocumentEditor& document, std::uint32_t code)
{
    if (Integer32(document, "mRenderFormat", kRenderGradient) != kRenderSwatches) {
        return std::nullopt;
    }
    const BR::PixelFormat format = BR::SDKToBEPixelFormat(code);
    if (PM_QELPixelFormatToPMPixelFormat(format) != pixmill::kBGRAFloat) {
        return "a swatch chart is painted in 32-bit float BGRA only: choose pixel format bgra-float";
    }
    importhost::ClipDescription description;
    description.width = Integer32(document, "mFrameWidth", 0);
    description.height = Integer32(document, "mFrameHeight", 0);
    const auto facts = ReadFacts(document.Text());
    return facts ? BrokenSwatchRule(description, *facts) : std::nullopt;
}

/// The shortest decimal that reads back as the same float.
std::string Shortest(float number)
{
    std::array<char, 64> text{};
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc{} ? std::string(text.data(), end) : std::string();
}

/// A tone at or above half the sample rate comes out as another one.
std::optional<std::string> ToneWarning(const DocumentEditor& document)
{
    const auto number = [&document](const char* key, float standard) {
        const Value value = document.Find(key);
        return value.IsNothing() ? standard : qelcore::serialization::AsFloat(value, key);
    };
    const float rate = number("mSampleRate", 48000.0F);
    const float frequency = number("mSteadyToneFrequency", 1000.0F);
    if (Integer32(document, "mToneFormat", 0) == 1 || !(frequency >= rate / 2)) {
        return std::nullopt;
    }
    return Shortest(rate) + " samples a second hold no tone of " + Shortest(frequency) +
           " Hz, only its alias: choose one below " + Shortest(rate / 2) + " Hz";
}

} // namespace

bool TypeFits(KeyType type, const Value& value)
{
    const auto isInteger = [](const Value& part) {
        return qelcore::serialization::FindInteger(part).has_value();
    };
    const auto text = qelcore::serialization::FindText(value);
    switch (type) {
    case KeyType::Object:
        return value.IsObject();
    case KeyType::Integer32:
    case KeyType::Integer64:
        return isInteger(value);
    case KeyType::Number:
        return IsNumber(value);
    case KeyType::Boolean:
        return value.GetKind() == Value::Kind::Boolean || isInteger(value) ||
               (text && (*text == "true" || *text == "false"));
    case KeyType::Text:
        return text.has_value();
    case KeyType::Base64:
        return text && IsBase64(*text);
    case KeyType::Integers:
        return IsListOf(value, isInteger);
    case KeyType::Numbers:
        return IsListOf(value, IsNumber);
    }
    return false;
}

std::string TypeText(KeyType type)
{
    switch (type) {
    case KeyType::Object:
        return "an object";
    case KeyType::Integer32:
    case KeyType::Integer64:
        return "an integer";
    case KeyType::Number:
        return "a number";
    case KeyType::Boolean:
        return "true or false";
    case KeyType::Text:
        return "text";
    case KeyType::Base64:
        return "bytes in base64";
    case KeyType::Integers:
        return "an array of integers";
    case KeyType::Numbers:
        return "an array of numbers";
    }
    return {};
}

std::optional<std::string> ReadingProblem(const DocumentEditor& document)
{
    for (const KeyInfo& key : AllKeys()) {
        const std::size_t point = key.path.rfind('.');
        if (point != std::string::npos && document.Find(key.path.substr(0, point)).IsNothing()) {
            continue; // its object is absent, which was judged before
        }
        const Value value = document.Find(key.path);
        if (value.IsNothing()) {
            if (key.isRequired) {
                return '"' + key.path + "\" is missing";
            }
            continue;
        }
        if (key.path == "mPredefinedColorSpace" && Integer32(document, "mVersion", 0) != 0) {
            continue; // read in documents of version 0 alone
        }
        if (!TypeFits(key.type, value)) {
            return '"' + key.path + "\": expected " + TypeText(key.type);
        }
    }
    return std::nullopt;
}

std::optional<std::string> PlayingProblem(const DocumentEditor& document)
{
    const auto code = static_cast<std::uint32_t>(Integer32(document, "mPixelFormat", 0));
    if (auto problem = PictureProblem(document, code)) {
        return problem;
    }
    if (auto problem = LengthProblem(document)) {
        return problem;
    }
    if (auto problem = ChartProblem(document, code)) {
        return problem;
    }
    return SoundProblem(document);
}

std::optional<std::int32_t> MatrixOfColorSpace(const DocumentEditor& document)
{
    constexpr std::size_t kMatrixByte = 2; // primaries, transfer, matrix, full range
    constexpr std::int32_t kRec709 = 1;
    const Value value = document.Find("mColorSpace.baseColorProfile.colorProfileData");
    const auto data = qelcore::serialization::FindText(value);
    if (!data) {
        return kRec709;
    }
    const auto codes = qelcore::serialization::DecodeBinaryDataFromUTF8String(*data);
    return codes.size() > kMatrixByte ? std::optional<std::int32_t>(codes[kMatrixByte]) : std::nullopt;
}

std::vector<std::string> DocumentWarnings(const DocumentEditor& document)
{
    const auto code = static_cast<std::uint32_t>(Integer32(document, "mPixelFormat", 0));
    const PixelMatrix painted = MatrixOf(BR::SDKToBEPixelFormat(code));
    constexpr std::int32_t kRgb = 0; // such spaces name no matrix
    constexpr std::int32_t kUnspecified = 2;
    const std::int32_t matrix = MatrixOfColorSpace(document).value_or(kUnspecified);
    std::vector<std::string> warnings;
    if (auto warning = ToneWarning(document)) {
        warnings.push_back(*std::move(warning));
    }
    if (painted == PixelMatrix::None || matrix == kRgb || matrix == kUnspecified ||
        MatrixOfSpace(matrix) == painted) {
        return warnings;
    }
    const Value nameValue = document.Find("mColorSpace.baseColorProfile.colorProfileName");
    const auto name = qelcore::serialization::FindText(nameValue);
    warnings.push_back(std::string("the pixels are painted with the ") +
                       (painted == PixelMatrix::Bt709 ? "BT.709" : "BT.601") + " matrix, the colour space is " +
                       std::string(name.value_or("Rec. 709")) + ": players that believe it show other colours");
    return warnings;
}

} // namespace tessel::document
