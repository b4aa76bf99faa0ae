/// A clip's settings by the names that people use for them: `tessel new --rate 25` and `tessel set rate=25`.
#pragma once

#include <tessel/cli/help/HelpText.h>
#include <tessel/document/settings/DocumentEditor.h>

#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tessel::cli {

/// Settings as typed, by name. Most have one value.
using TypedSettings = std::map<std::string, std::vector<std::string>, std::less<>>;

/// One of them.
struct Setting {
    std::string_view name; ///< "rate"
    std::string_view group;
    std::string_view value; ///< what help calls its value: "RATE"
    std::string_view text;
    std::vector<std::string> (*choices)() = nullptr; ///< the words it takes; null: no list says them
    FileKind file = FileKind::None;
    bool takesSeveral = false;
    /// Changes the document. @throws UsageError  for a value that is none, without the setting's name
    void (*apply)(const std::vector<std::string>& values, document::DocumentEditor& document) = nullptr;
};

/// All, in the order in which they are applied: a duration in frames comes after the rate.
[[nodiscard]] std::span<const Setting> AllSettings();

/// Null for what is none.
[[nodiscard]] const Setting* SettingNamed(std::string_view name);

/// Applies settings in the order of the table, however they were typed.
/// @param prefix  what stands before a setting's name in messages: "--"
/// @throws UsageError  for values that are none, and for settings that exclude each other
void ApplySettings(const TypedSettings& typed, std::string_view prefix, document::DocumentEditor& document);

/// `settings` as a template has them: "size=1920x1080 rate=25".
[[nodiscard]] TypedSettings ParseSettings(std::string_view settings);

/// What was typed over what a template says. A tone takes the place of an identification and the other way
/// round, with the channels that go with it.
[[nodiscard]] TypedSettings Merged(const TypedSettings& base, const TypedSettings& typed);

/// Sets a key of the document itself: "mFrameWidth=1920", "mFieldType=upper", "mFramePAR.numerator=10". The
/// value is JSON, one of the key's names, or for texts the text.
/// @throws UsageError  for what is no key, and for a value of another type
void ApplyKey(std::string_view key, std::string_view value, document::DocumentEditor& document);

/// "KEY=VALUE" at its first equals sign. @throws UsageError  where there is none
[[nodiscard]] std::pair<std::string, std::string> SplitAssignment(const std::string& text);

} // namespace tessel::cli
