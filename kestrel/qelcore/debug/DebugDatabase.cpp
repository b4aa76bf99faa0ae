#include "DebugDatabase.h"

#include "DebugDatabaseFile.h"

#include <kestrel/qelcore/logging/Log.h>
#include <kestrel/qelcore/serialization/Json.h>

#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <mutex>
#include <optional>
#include <system_error>

namespace qelcore::debug {
namespace {

using serialization::Value;

constexpr std::string_view kLogContext = "qelcore.DebugDatabase";

struct Overrides {
    std::mutex mutex;
    std::map<std::string, std::string, std::less<>> texts;
};

Overrides& TheOverrides()
{
    static Overrides overrides;
    return overrides;
}

std::optional<std::string> OverrideOf(std::string_view key)
{
    Overrides& overrides = TheOverrides();
    const std::lock_guard lock(overrides.mutex);
    const auto entry = overrides.texts.find(key);
    if (entry == overrides.texts.end()) {
        return std::nullopt;
    }
    return entry->second;
}

/// The file's object; nothing where there is none.
Value ReadDatabase()
{
    const std::filesystem::path file = DebugDatabaseFile();
    std::error_code error;
    if (file.empty() || !std::filesystem::exists(file, error)) {
        return {};
    }
    std::string text;
    std::ifstream stream;
    // Opening a pipe would wait for its writer.
    if (std::filesystem::is_regular_file(file, error)) {
        stream.open(file, std::ios::binary);
        text.assign(std::istreambuf_iterator<char>(stream), {});
    }
    if (!stream.is_open() || stream.bad()) {
        logging::Log(kLogContext, file.string() + ": cannot be read; it counts as empty");
        return {};
    }
    std::string reason;
    const Value database = serialization::JSONParse(text, &reason);
    if (database.IsNothing()) {
        logging::Log(kLogContext, file.string() + ": " + reason + "; it counts as empty");
    } else if (!database.IsObject()) {
        logging::Log(kLogContext, file.string() + ": is not a JSON object of texts; it counts as empty");
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
    if (std::optional<std::string> text = OverrideOf(key)) {
        return *std::move(text);
    }
    const Value value = serialization::GetVariantInObject(ReadDatabase(), key);
    return std::string(serialization::FindText(value).value_or(defaultText));
}

void DebugDatabase::SetOverride(std::string_view key, std::string_view text)
{
    Overrides& overrides = TheOverrides();
    const std::lock_guard lock(overrides.mutex);
    overrides.texts.insert_or_assign(std::string(key), std::string(text));
}

void DebugDatabase::ClearOverride(std::string_view key)
{
    Overrides& overrides = TheOverrides();
    const std::lock_guard lock(overrides.mutex);
    if (const auto entry = overrides.texts.find(key); entry != overrides.texts.end()) {
        overrides.texts.erase(entry);
    }
}

} // namespace qelcore::debug
