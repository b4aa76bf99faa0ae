#include "DialogAdvice.h"

#include "DocumentFacts.h"
#include "SwatchRules.h"

#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/pixmill/PixelFormatCodes.h>

#include <algorithm>
#include <array>

namespace tessel::document {
namespace {

constexpr std::int32_t kToneSteady = 0;
constexpr std::int32_t kToneIdentifyChannels = 1;

/// What the sentences depend on.
struct Settings {
    DocumentFacts facts;
    importhost::ClipDescription description; ///< width and height alone

    [[nodiscard]] bool IsProgressive() const { return facts.fieldType == 0; }
    [[nodiscard]] bool Renders(std::int32_t format) const { return facts.renderFormat == format; }
};

bool IsAnyOf(std::string_view control, std::initializer_list<std::string_view> controls)
{
    return std::find(controls.begin(), controls.end(), control) != controls.end();
}

bool IsSwatchButton(std::string_view control)
{
    return IsAnyOf(control, {"swatchCoordinatesFileButtonID", "swatchColorsFileButtonID"});
}

/// The colour's button and channels: "chooseColorButtonID1", "chooseColorRedTextID1".
bool IsOfColor(std::string_view control, char column)
{
    return control.starts_with("chooseColor") && control != "chooseColorPopupID" && control.ends_with(column);
}

std::optional<Settings> Read(std::string_view settingsText)
{
    const std::optional<DocumentFacts> facts = ReadFacts(settingsText);
    if (!facts) {
        return std::nullopt;
    }
    Settings settings;
    settings.facts = *facts;
    settings.description.width = facts->frameWidth;
    settings.description.height = facts->frameHeight;
    return settings;
}

bool HasChart(const DocumentFacts& facts)
{
    return std::any_of(facts.swatchBands.begin(), facts.swatchBands.end(), [](const SwatchBand& band) {
        return band.xCount + band.yCount + band.colorPartCount > 0;
    });
}

/// "/a/chart.json: line 3: ..." as "chart.json was not loaded: line 3: ...; the earlier chart stays".
std::string NotLoaded(std::string_view complaint, bool hasChart)
{
    constexpr std::string_view kEnd = ".json: ";
    std::size_t colon = complaint.find(kEnd);
    colon = colon == std::string_view::npos ? complaint.find(": ") : colon + kEnd.size() - 2;
    if (colon == std::string_view::npos) {
        return {};
    }
    const std::string_view path = complaint.substr(0, colon);
    const std::string name(path.substr(path.rfind('/') + 1));
    return name + " was not loaded: " + std::string(complaint.substr(colon + 2)) +
           (hasChart ? "; the earlier chart stays" : "; there is no chart yet");
}

/// Why the frames of a clip that is to show a chart show none; empty where they do.
std::string MissingChart(const Settings& settings)
{
    const BR::PixelFormat format = BR::SDKToBEPixelFormat(settings.facts.pixelFormatCode);
    if (PM_QELPixelFormatToPMPixelFormat(format) != pixmill::kBGRAFloat) {
        return "The chart is not shown: it is painted in KsPixelFormat_BGRA_4444_32f only.";
    }
    const std::optional<std::string> rule = BrokenSwatchRule(settings.description, settings.facts);
    return rule ? "The chart is not shown: " + *rule + '.' : std::string();
}

std::string UnusedByRenderType(const Settings& settings)
{
    switch (settings.facts.renderFormat) {
    case kRenderFieldColors:
        return settings.IsProgressive()
                   ? "Not used: the second color, the gradient colors and the swatch files."
                   : "Not used: the gradient colors and the swatch files.";
    case kRenderGradient:
        return "Not used: the field colors and the swatch files.";
    case kRenderSwatches: {
        const std::string missing = MissingChart(settings);
        return missing.empty() ? "Not used: all colors but those of the swatch files." : missing;
    }
    default:
        return {};
    }
}

} // namespace

std::string DialogAdvice(std::string_view control, std::string_view settingsText, std::string_view complaint)
{
    const std::optional<Settings> settings = Read(settingsText);
    if (!settings) {
        return {};
    }
    if (!complaint.empty()) {
        return IsSwatchButton(control) ? NotLoaded(complaint, HasChart(settings->facts)) : std::string();
    }
    const bool isChart = settings->Renders(kRenderSwatches);
    if (control == "colorRenderingTypePopupID") {
        return UnusedByRenderType(*settings);
    }
    if (IsAnyOf(control, {"pixelFormatPopupID", "frameWidthID", "frameHeightID"})) {
        return isChart ? MissingChart(*settings) : std::string();
    }
    if (IsSwatchButton(control)) {
        return isChart ? MissingChart(*settings) : "Not used: the render type is no chart.";
    }
    if (control == "fieldTypePopupID") {
        return settings->Renders(kRenderFieldColors) ? std::string()
                                                     : "The clip announces it; this picture has no fields.";
    }
    if (control == "chooseColorPopupID" || IsOfColor(control, '0') || IsOfColor(control, '1')) {
        if (isChart) {
            return "Not used: the chart has the colors of its file.";
        }
        const bool isSecond = IsOfColor(control, '1');
        return isSecond && settings->Renders(kRenderFieldColors) && settings->IsProgressive()
                   ? "Not used: progressive frames have the first color."
                   : std::string();
    }
    if (control == "steadyTonesBtn" && settings->facts.toneFormat == kToneSteady) {
        return "Not used: the identification's format.";
    }
    if (control == "identifyChannelsBtn" && settings->facts.toneFormat == kToneIdentifyChannels) {
        return "Not used: frequency and amplitude.";
    }
    return {};
}

} // namespace tessel::document
