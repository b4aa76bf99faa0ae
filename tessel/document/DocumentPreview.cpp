#include "DocumentPreview.h"

#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/qelcore/serialization/Json.h>

#include <cstdint>
#include <utility>

namespace tessel::document {

std::string InPreviewFormat(const std::string& settingsText)
{
    using qelcore::serialization::Value;
    constexpr char kKey[] = "mPixelFormat";
    const std::int64_t preview = BR::BEToSDKPixelFormat(BR::PixelFormat::BGRA_4444_8u);
    const std::int64_t floats = BR::BEToSDKPixelFormat(BR::PixelFormat::BGRA_4444_32f);

    const auto document = qelcore::serialization::JSONParse(settingsText);
    if (!document.IsObject()) {
        return settingsText;
    }
    const auto format = qelcore::serialization::GetVariantInObject(document, kKey);
    if (qelcore::serialization::FindInteger(format) == floats) {
        return settingsText;
    }
    qelcore::serialization::Object object = qelcore::serialization::CopyMembers(document);
    AddToObject(object, kKey, Value(preview));
    return GetJSONUTF8String(Value(std::move(object)), /*formatted=*/false);
}

} // namespace tessel::document
