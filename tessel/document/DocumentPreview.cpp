#include "DocumentPreview.h"

#include "DocumentFacts.h"

#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/qelcore/serialization/Json.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

namespace tessel::document {
namespace {

using qelcore::serialization::FindInteger;
using qelcore::serialization::GetVariantInObject;
using qelcore::serialization::Object;
using qelcore::serialization::Value;

constexpr std::string_view kPixelFormatKey = "mPixelFormat";
constexpr std::string_view kWidthKey = "mFrameWidth";
constexpr std::string_view kHeightKey = "mFrameHeight";

/// Keys that may be absent and that change no picture.
constexpr std::array<std::string_view, 10> kInvisible = {
    "mColorSpace",          "mIdentifierFormat",     "mKsAudioChannelType",
    "mNumChannels",         "mSampleRate",           "mSteadyToneAmplitude",
    "mSteadyToneFrequency", "mSwatchColorsFilePath", "mSwatchCoordinatesFilePath",
    "mToneFormat"};

/// The smallest whole number that reduces the frame to 4 megapixels.
std::int64_t Reduction(std::int64_t width, std::int64_t height)
{
    constexpr std::int64_t kMostPixels = 4'000'000;
    std::int64_t reduction = 1;
    while ((width / reduction) * (height / reduction) > kMostPixels) {
        ++reduction;
    }
    return reduction;
}

void Reduce(Object& object, const Value& document)
{
    constexpr std::int64_t kLargest = 100'000; // of the dialog; what is beyond is not painted anyway
    const std::int64_t width = FindInteger(GetVariantInObject(document, kWidthKey)).value_or(0);
    const std::int64_t height = FindInteger(GetVariantInObject(document, kHeightKey)).value_or(0);
    if (width < 1 || height < 1 || width > kLargest || height > kLargest) {
        return;
    }
    const std::int64_t reduction = Reduction(width, height);
    object.insert_or_assign(std::string(kWidthKey), Value(std::max<std::int64_t>(width / reduction, 1)));
    object.insert_or_assign(std::string(kHeightKey), Value(std::max<std::int64_t>(height / reduction, 1)));
}

} // namespace

std::string PreviewDocument(const std::string& settingsText)
{
    const std::int64_t preview = BR::BEToSDKPixelFormat(BR::PixelFormat::BGRA_4444_8u);
    const std::int64_t floats = BR::BEToSDKPixelFormat(BR::PixelFormat::BGRA_4444_32f);

    const Value document = qelcore::serialization::JSONParse(settingsText);
    if (!document.IsObject()) {
        return settingsText;
    }
    Object object = qelcore::serialization::CopyMembers(document);
    for (const std::string_view key : kInvisible) {
        object.erase(std::string(key));
    }
    if (FindInteger(GetVariantInObject(document, kPixelFormatKey)) != floats) {
        object.insert_or_assign(std::string(kPixelFormatKey), Value(preview));
    }
    if (FindInteger(GetVariantInObject(document, "mRenderFormat")) != kRenderSwatches) {
        Reduce(object, document);
    }
    return GetJSONUTF8String(Value(std::move(object)), /*formatted=*/false);
}

} // namespace tessel::document
