#include "Catalogue.h"

#include <kestrel/qelcore/serialization/Json.h>

#include <utility>

namespace tessel::verify {
namespace {

using qelcore::serialization::AddToObject;
using qelcore::serialization::Array;
using qelcore::serialization::Object;
using qelcore::serialization::Value;

Value Text(std::string_view text)
{
    return Value(std::string(text));
}

/// Null where the check is exact.
Value ToleranceOf(const CheckInfo& check)
{
    if (!check.tolerance) {
        return Value();
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
            consequences.push_back(Text(consequence));
        }
        Object object;
        AddToObject(object, "id", Text(check.id));
        AddToObject(object, "severity", Text(NameOf(check.severity)));
        AddToObject(object, "sentence", Text(check.sentence));
        AddToObject(object, "seenWith", Text(check.visibleBy));
        AddToObject(object, "use", Text(check.use));
        AddToObject(object, "unit", Text(check.unit));
        AddToObject(object, "tolerance", ToleranceOf(check));
        AddToObject(object, "consequences", Value(std::move(consequences)));
        checks.push_back(Value(std::move(object)));
    }
    return qelcore::serialization::GetJSONUTF8String(Value(std::move(checks)), /*formatted=*/true) + "\n";
}

} // namespace tessel::verify
