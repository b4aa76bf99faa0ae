/// A clip's settings by the names that people use for them: `tessel new --rate 25` and `tessel set rate=25`.
#pragma once

#include <tessel/document/settings/DocumentEditor.h>

#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessel::typed {

/// A setting's values as typed; at least one, most settings have one.
using TypedValues = std::vector<std::string>;

/// Settings as typed, by name.
using TypedSettings = std::map<std::string, TypedValues, std::less<>>;

/// One of them.
struct Setting {
    std::string_view name; ///< "rate"
    std::string_view group;
    std::string_view value; ///< what help calls its value: "RATE"
    std::string_view text;
    std::vector<std::string> (*choices)() = nullptr; ///< the words it takes; null: no list says them
    bool namesFiles = false;                         ///< its value is a file
    bool takesSeveral = false;
    /// Changes the document. @throws SettingError  for an invalid value; its text does not repeat the setting's
    /// name
    void (*apply)(const TypedValues& values, document::DocumentEditor& document) = nullptr;
    /// A warning about a value that was applied; may be null.
    std::optional<std::string> (*remark)(const TypedValues& values) = nullptr;
};

/// All, in the order in which they are applied: a duration in frames comes after the rate.
[[nodiscard]] std::span<const Setting> AllSettings();

/// What is to change in a document.
struct Changes {
    TypedSettings settings;
    std::vector<std::pair<std::string, std::string>> keys; ///< of the document itself, with their values
};

/// "KEY=VALUE" texts, where a key is a setting's name or one of the document's own.
/// @throws SettingError  for a text of another form, an unknown key, and a setting that is given twice
[[nodiscard]] Changes ReadChanges(std::span<const std::string> assignments);

/// Applies settings in the order of the table, however they were typed, and then the keys.
/// @param prefix  what stands before a setting's name in messages: "--"; with one, keys are those of its option
/// "set"
/// @return warnings about the result, a line each
/// @throws SettingError  for unknown keys, invalid values, and for settings that exclude each other
[[nodiscard]] std::vector<std::string> ApplyChanges(const Changes& changes, std::string_view prefix,
                                                    document::DocumentEditor& document);

/// `settings` as a template has them: "size=1920x1080 rate=25".
[[nodiscard]] TypedSettings ParseSettings(std::string_view settings);

/// What was typed over what a template says. A tone takes the place of an identification and the other way
/// round, with the channels that go with it.
[[nodiscard]] TypedSettings Merged(const TypedSettings& base, const TypedSettings& typed);

/// "KEY=VALUE" at its first equals sign. @throws SettingError  where there is none
[[nodiscard]] std::pair<std::string, std::string> SplitAssignment(const std::string& text);

} // namespace tessel::typed
