#include "KeySettings.h"

#include "DocumentValues.h"
#include "NearMisses.h"
#include "SettingError.h"

#include <kestrel/qelcore/serialization/Json.h>
#include <tessel/document/settings/DocumentRules.h>
#include <tessel/document/settings/KeyTable.h>
#include <tessel/export/plan/Names.h>

#include <fmt/format.h>

#include <cstdint>
#include <limits>

namespace tessel::typed {

using document::DocumentEditor;
using document::KeyInfo;
using exporting::IsSameName;
using qelcore::serialization::Value;

namespace {

/// Readers of documents keep the low 32 bits of such a key: 4294967297 would be 1. @throws SettingError
void RequireRange(const KeyInfo& info, const Value& value)
{
    const auto integer = qelcore::serialization::FindInteger(value);
    if (info.type != document::KeyType::Integer32 || !integer) {
        return;
    }
    // Codes of pixel formats are unsigned, and are written either way.
    constexpr std::int64_t kLeast = std::numeric_limits<std::int32_t>::min();
    constexpr std::int64_t kMost = std::numeric_limits<std::uint32_t>::max();
    if (*integer < kLeast || *integer > kMost) {
        throw SettingError(fmt::format(R"("{}": expected an integer of 32 bits, not {})", info.path, *integer));
    }
}

} // namespace

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
        RequireRange(*info, parsed);
        document.Set(key, parsed);
        return;
    }
    const Value text{std::string(value)};
    if ((info->type == document::KeyType::Text || info->type == document::KeyType::Base64) &&
        document::TypeFits(info->type, text)) {
        document.Set(key, text);
        return;
    }
    const std::vector<std::string> words = NamesOfRows(info->values);
    throw SettingError(fmt::format(R"("{}": expected {}{}, not "{}"{})", key, document::TypeText(info->type),
                                   words.empty() ? "" : fmt::format(" or one of {}", fmt::join(words, ", ")),
                                   value, DidYouMean(value, words)));
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
