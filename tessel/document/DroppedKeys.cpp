#include "DroppedKeys.h"

#include "Wrapper.h"

#include <kestrel/qelcore/serialization/Json.h>

namespace tessel::document {
namespace {

using qelcore::serialization::AsObject;
using qelcore::serialization::GetVariantInObject;
using qelcore::serialization::Value;

/// Read from documents of version 0 and written as "mColorSpace".
constexpr std::string_view kOldColorSpace = "mPredefinedColorSpace";

void AddDropped(const Value& before, const Value& after, const std::string& path,
                std::vector<std::string>& dropped)
{
    for (const auto& [key, value] : AsObject(before, path)) {
        const std::string name = path + std::string(key);
        const Value kept = GetVariantInObject(after, key);
        if (kept.IsNothing() && name != kOldColorSpace) {
            dropped.push_back(name);
        } else if (value.IsObject() && kept.IsObject()) {
            AddDropped(value, kept, name + '.', dropped);
        }
    }
}

} // namespace

std::vector<std::string> DroppedKeys(std::string_view before, std::string_view after)
{
    const Value old = Unwrapped(qelcore::serialization::JSONParse(before));
    const Value now = Unwrapped(qelcore::serialization::JSONParse(after));
    std::vector<std::string> dropped;
    if (old.IsObject() && now.IsObject()) {
        AddDropped(old, now, /*path=*/"", dropped);
    }
    return dropped;
}

} // namespace tessel::document
