#include "DebugDatabase.h"

#include "DebugDatabaseFile.h"

#include <kestrel/qelcore/files/WholeFile.h>
#include <kestrel/qelcore/logging/Log.h>
#include <kestrel/qelcore/serialization/Json.h>
#include <kestrel/qelcore/text/PathText.h>

#include <optional>
#include <system_error>
#include <utility>

namespace qelcore::debug {
namespace {

using serialization::Value;

constexpr std::string_view kLogContext = "qelcore.DebugDatabase";

/// The newest override of this thread; the others hang behind it.
thread_local ScopedOverride* tNewestOverride = nullptr;

/// The JSON object that the file holds; nothing if the file is absent or holds no object.
Value ReadDatabase()
{
    const std::filesystem::path file = DebugDatabaseFile();
    std::error_code error;
    if (file.empty() || !std::filesystem::exists(file, error)) {
        return {};
    }
    const std::optional<std::string> text = files::ReadWholeFile(file);
    if (!text) {
        logging::Log(kLogContext, text::UTF8Text(file) + ": cannot be read; it counts as empty");
        return {};
    }
    std::string reason;
    Value database = serialization::JSONParse(*text, &reason);
    if (database.IsNothing()) {
        logging::Log(kLogContext, text::UTF8Text(file) + ": " + reason + "; it counts as empty");
    } else if (!database.IsObject()) {
        logging::Log(kLogContext, text::UTF8Text(file) + ": is not a JSON object of texts; it counts as empty");
    }
    return database;
}

} // namespace

DebugDatabase& DebugDatabase::Instance()
{
    static DebugDatabase instance;
    return instance;
}

std::string DebugDatabase::GetEntry(std::string_view key, std::string_view defaultText) const
{
    for (const ScopedOverride* entry = tNewestOverride; entry != nullptr; entry = entry->mPrevious) {
        if (entry->mKey == key) {
            return entry->mText;
        }
    }
    const Value value = serialization::GetVariantInObject(ReadDatabase(), key);
    return std::string(serialization::FindText(value).value_or(defaultText));
}

ScopedOverride::ScopedOverride(std::string_view key, std::string_view text)
    : mKey(key), mText(text), mPrevious(std::exchange(tNewestOverride, this))
{
}

ScopedOverride::~ScopedOverride()
{
    tNewestOverride = mPrevious;
}

} // namespace qelcore::debug
