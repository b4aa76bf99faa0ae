#include "KeptLayout.h"

#include "DocumentEditor.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/qelcore/serialization/Json.h>

namespace tessel::document {
namespace {

using qelcore::serialization::AsObject;
using qelcore::serialization::GetVariantInObject;
using qelcore::serialization::IsNumber;
using qelcore::serialization::JSONParse;
using qelcore::serialization::ObjectHasProperty;
using qelcore::serialization::Value;

/// Whether a reader sees the same. Numbers that are not whole are held as 32-bit floats, so 0.1 and 0.100000001
/// are one number, as are 1 and 1.0.
bool AreSame(const Value& a, const Value& b)
{
    if (IsNumber(a) && IsNumber(b) &&
        (a.GetKind() == Value::Kind::Number || b.GetKind() == Value::Kind::Number)) {
        return qelcore::serialization::AsFloat(a, "") == qelcore::serialization::AsFloat(b, "");
    }
    if (a.IsArray() && b.IsArray()) {
        const qelcore::serialization::Elements left(a);
        const qelcore::serialization::Elements right(b);
        bool isSame = left.size() == right.size();
        for (std::size_t index = 0; isSame && index < left.size(); ++index) {
            isSame = AreSame(left[index], right[index]);
        }
        return isSame;
    }
    if (a.IsObject() && b.IsObject()) {
        for (const auto& [key, value] : AsObject(a, "")) {
            if (!ObjectHasProperty(b, key) || !AreSame(value, GetVariantInObject(b, key))) {
                return false;
            }
        }
        return CopyMembers(a).size() == CopyMembers(b).size();
    }
    return a.GetKind() == b.GetKind() && GetJSONUTF8String(a, false) == GetJSONUTF8String(b, false);
}

/// Makes the object at `path`, which ends in a point unless it is empty, hold what `after` holds.
void Change(DocumentEditor& document, const std::string& path, const Value& before, const Value& after)
{
    for (const auto& [key, value] : AsObject(after, path)) {
        const std::string member = path + std::string(key);
        const Value old = GetVariantInObject(before, key);
        if (old.IsObject() && value.IsObject()) {
            Change(document, member + '.', old, value);
        } else if (!ObjectHasProperty(before, key) || !AreSame(old, value)) {
            document.Set(member, value);
        }
    }
    for (const auto& [key, value] : AsObject(before, path)) {
        if (!ObjectHasProperty(after, key)) {
            document.Remove(path + std::string(key));
        }
    }
}

} // namespace

std::string InLayoutOf(const std::string& before, const std::string& after)
{
    const Value wanted = JSONParse(after);
    if (!wanted.IsObject() || before.find('\0') != std::string::npos) {
        return after;
    }
    try {
        DocumentEditor document(before);
        Change(document, "", document.Find(""), wanted);
        // Keys with points in their names, for instance, cannot be named by a path.
        return AreSame(document.Find(""), wanted) ? document.Text() : after;
    } catch (const importhost::HostError&) {
        return after;
    }
}

} // namespace tessel::document
