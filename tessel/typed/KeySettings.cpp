#include "KeySettings.h"

#include "DocumentValues.h"
#include "NearMisses.h"
#include "SettingError.h"

#include <kestrel/qelcore/serialization/Json.h>
#include <tessel/document/settings/DocumentRules.h>
#include <tessel/document/settings/KeyTable.h>
#include <tessel/export/plan/Names.h>

#include <fmt/format.h>

namespace tessel::typed {

using document::DocumentEditor;
using document::KeyInfo;
using exporting::IsSameName;
using qelcore::serialization::Value;

void ApplyKey(std::string_view key, std::string_view value, DocumentEditor& document)
{
    const KeyInfo* info = document::FindKey(key);
    if (info == nullptr) {
        throw SettingError(fmt::format("\"{}\" is no key of a document; tessel schema names all{}", key,
                                       DidYouMean(key, KeyPaths())));
    }
    for (const document::KeyValue& known : info->values) {
        if (IsSameName(known.name, value)) {
            document.Set(key, IntegerValue(known.value));
            return;
        }
    }
    const Value parsed = qelcore::serialization::JSONParse(value);
    if (document::TypeFits(info->type, parsed)) {
        document.Set(key, parsed);
        return;
    }
    const Value text{std::string(value)};
    if ((info->type == document::KeyType::Text || info->type == document::KeyType::Base64) &&
        document::TypeFits(info->type, text)) {
        document.Set(key, text);
        return;
    }
    throw SettingError(
        fmt::format(R"("{}": expected {}, not "{}")", key, document::TypeText(info->type), value));
}

std::vector<std::string> KeyPaths()
{
    std::vector<std::string> paths;
    paths.reserve(document::AllKeys().size());
    for (const KeyInfo& info : document::AllKeys()) {
        paths.push_back(info.path);
    }
    return paths;
}

} // namespace tessel::typed
