#include "Catalogue.h"

#include <kestrel/qelcore/serialization/Json.h>

#include <utility>

namespace tessel::verify {
namespace {

using qelcore::serialization::AddToObject;
using qelcore::serialization::Array;
using qelcore::serialization::Object;
using qelcore::serialization::Value;

/// Null where the check is exact.
Value ToleranceOf(const CheckInfo& check)
{
    if (!check.tolerance) {
        return {};
    }
    Object object;
    for (const CodecClass codec : {CodecClass::Lossless, CodecClass::Mezzanine, CodecClass::Delivery}) {
        AddToObject(object, std::string(NameOf(codec)), Value(check.tolerance->For(codec)));
    }
    return Value(std::move(object));
}

} // namespace

std::string CatalogueAsJson()
{
    Array checks;
    for (const CheckInfo& check : Catalogue()) {
        Array consequences;
        for (const std::string_view consequence : ConsequencesOf(check.id)) {
            consequences.push_back(Value(consequence));
        }
        Object object;
        AddToObject(object, "id", Value(check.id));
        AddToObject(object, "severity", Value(NameOf(check.severity)));
        AddToObject(object, "sentence", Value(check.sentence));
        AddToObject(object, "seenWith", Value(check.visibleBy));
        AddToObject(object, "use", Value(check.use));
        AddToObject(object, "unit", Value(check.unit));
        AddToObject(object, "tolerance", ToleranceOf(check));
        AddToObject(object, "consequences", Value(std::move(consequences)));
        checks.push_back(Value(std::move(object)));
    }
    return qelcore::serialization::GetJSONUTF8String(Value(std::move(checks)), /*formatted=*/true) + "\n";
}

} // namespace tessel::verify
