#include "Settings.h"

#include "ContentSettings.h"
#include "KeySettings.h"
#include "Names.h"
#include "NearMisses.h"
#include "PictureSettings.h"
#include "SettingError.h"
#include "SoundSettings.h"
#include "TimeSettings.h"

#include <tessel/document/settings/Idents.h>
#include <tessel/document/settings/KeyTable.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>

namespace tessel::typed {
namespace {

using document::DocumentEditor;

constexpr char kPicture[] = "Picture";
constexpr char kTime[] = "Time";
constexpr char kSound[] = "Sound";

constexpr std::array<Setting, 15> kSettings{{
    {.name = "size", .group = kPicture, .value = "WIDTHxHEIGHT", .text = "Frame size", .apply = ApplySize},
    {.name = "pixel-aspect",
     .group = kPicture,
     .value = "RATIO",
     .text = "Pixel aspect ratio: 10/11, or a name",
     .choices = PixelAspectChoices,
     .apply = ApplyPixelAspect},
    {.name = "fields",
     .group = kPicture,
     .value = "ORDER",
     .text = "Field order",
     .choices = [] { return NamesOfRows(document::FieldTypes()); },
     .apply = ApplyFields},
    {.name = "color-space",
     .group = kPicture,
     .value = "NAME",
     .text = "What the clip announces, without changing a sample",
     .choices = ColorSpaceChoices,
     .apply = ApplyColorSpace},
    {.name = "pixel-format",
     .group = kPicture,
     .value = "NAME",
     .text = "A layout, which takes its matrix from the colour space, or one of the host's names and codes, "
             "which say it themselves",
     .choices = PixelLayoutChoices,
     .apply = ApplyPixelFormat},
    {.name = "rate",
     .group = kTime,
     .value = "RATE",
     .text = "Frames a second: 25, 29.97, 30000/1001",
     .choices = RateChoices,
     .apply = ApplyRate,
     .remark = RemarkOnRate},
    {.name = "duration",
     .group = kTime,
     .value = "DURATION",
     .text = "250f, 10s, 500ms, 2m, 1h, 00:00:10:00; times are rounded to whole frames",
     .apply = ApplyDuration},
    {.name = "swatches",
     .group = kPicture,
     .value = "FILE",
     .text = "A swatch chart: its coordinates and its colours, given one after the other; or bars",
     .namesFiles = true,
     .takesSeveral = true,
     .apply = ApplySwatches},
    {.name = "picture",
     .group = kPicture,
     .value = "KIND",
     .text = "What is shown",
     .choices = [] { return NamesOfRows(document::RenderFormats()); },
     .apply = ApplyPicture},
    {.name = "colors",
     .group = kPicture,
     .value = "COLORS",
     .text = "With / between: upper and lower field, or top start, top end, bottom start, bottom end of the "
             "gradient; each as 1,0.5,0.25 or #ff8000 or red",
     .apply = ApplyColors},
    {.name = "number",
     .group = kPicture,
     .value = "on|off",
     .text = "Print the frame number into the picture",
     .apply = ApplyNumber},
    {.name = "tone",
     .group = kSound,
     .value = "HERTZ:DBFS",
     .text = "A steady tone on all channels: 1000:-18, or silence",
     .apply = ApplyTone,
     .remark = RemarkOnTone},
    {.name = "ident",
     .group = kSound,
     .value = "NAME",
     .text = "Channel identification, which sets the channels that it needs",
     .choices = [] { return NamesOfRows(document::AllIdents()); },
     .apply = ApplyIdent},
    {.name = "channels",
     .group = kSound,
     .value = "COUNT",
     .text = "Audio channels; six are 5.1",
     .choices =
         [] {
             return std::vector<std::string>{"mono", "stereo", "5.1"};
         },
     .apply = ApplyChannels},
    {.name = "sample-rate",
     .group = kSound,
     .value = "HERTZ",
     .text = "Samples a second",
     .choices =
         [] {
             return std::vector<std::string>{"44100", "48000", "96000"};
         },
     .apply = ApplySampleRate},
}};

/// Null for an unknown name.
const Setting* SettingNamed(std::string_view name)
{
    const auto* found = std::find_if(kSettings.begin(), kSettings.end(),
                                     [name](const Setting& setting) { return setting.name == name; });
    return found != kSettings.end() ? found : nullptr;
}

[[noreturn]] void RefuseKey(const std::string& key)
{
    std::vector<std::string> names = NamesOfRows(AllSettings());
    const std::string known = fmt::format("{}", fmt::join(names, ", "));
    const std::vector<std::string> paths = KeyPaths();
    names.insert(names.end(), paths.begin(), paths.end());
    throw SettingError(fmt::format("\"{}\" is no setting; there are {}, and the document's own keys{}", key,
                                   known, DidYouMean(key, names)));
}

} // namespace

std::span<const Setting> AllSettings()
{
    return kSettings;
}

Changes ReadChanges(std::span<const std::string> assignments)
{
    Changes changes;
    for (const std::string& assignment : assignments) {
        auto [key, value] = SplitAssignment(assignment);
        if (const Setting* setting = SettingNamed(key)) {
            auto& values = changes.settings[key];
            if (!values.empty() && !setting->takesSeveral) {
                throw SettingError(fmt::format("{} is given twice", key));
            }
            values.push_back(std::move(value));
        } else if (document::FindKey(key) != nullptr) {
            changes.keys.emplace_back(std::move(key), std::move(value));
        } else {
            RefuseKey(key);
        }
    }
    return changes;
}

std::vector<std::string> ApplyChanges(const Changes& changes, std::string_view prefix, DocumentEditor& document)
{
    const TypedSettings& typed = changes.settings;
    if (typed.contains("tone") && typed.contains("ident")) {
        throw SettingError(fmt::format("{0}tone and {0}ident exclude each other", prefix));
    }
    std::vector<std::string> remarks;
    for (const Setting& setting : kSettings) {
        const auto found = typed.find(setting.name);
        if (found == typed.end()) {
            continue;
        }
        try {
            setting.apply(found->second, document);
        } catch (const SettingError& error) {
            throw SettingError(fmt::format("{}{}: {}", prefix, setting.name, error.what()));
        }
        if (auto remark = setting.remark != nullptr ? setting.remark(found->second) : std::nullopt) {
            remarks.push_back(*std::move(remark));
        }
    }
    for (const auto& [key, value] : changes.keys) {
        try {
            ApplyKey(key, value, document);
        } catch (const SettingError& error) {
            throw SettingError(prefix.empty() ? error.what() : fmt::format("{}set: {}", prefix, error.what()));
        }
    }
    return remarks;
}

TypedSettings ParseSettings(std::string_view settings)
{
    TypedSettings typed;
    while (!settings.empty()) {
        const std::size_t end = std::min(settings.find(' '), settings.size());
        auto [name, value] = SplitAssignment(std::string(settings.substr(0, end)));
        typed[name].push_back(std::move(value));
        settings.remove_prefix(std::min(end + 1, settings.size()));
    }
    return typed;
}

TypedSettings Merged(const TypedSettings& base, const TypedSettings& typed)
{
    TypedSettings merged = base;
    if (typed.contains("tone") || typed.contains("ident")) {
        merged.erase("tone");
        merged.erase("ident");
        merged.erase("channels");
    }
    if (typed.contains("picture")) {
        merged.erase("swatches");
    }
    if (typed.contains("swatches")) {
        merged.erase("picture");
    }
    for (const auto& [name, values] : typed) {
        merged[name] = values;
    }
    return merged;
}

std::pair<std::string, std::string> SplitAssignment(const std::string& text)
{
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0) {
        throw SettingError(fmt::format("\"{}\": expected KEY=VALUE, as in rate=25", text));
    }
    return {text.substr(0, equals), text.substr(equals + 1)};
}

} // namespace tessel::typed
