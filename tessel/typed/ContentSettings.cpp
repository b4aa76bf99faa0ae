#include "ContentSettings.h"

#include "DocumentValues.h"
#include "RequiredRow.h"
#include "SettingError.h"
#include "ValueReaders.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/PathText.h>
#include <kestrel/qelcore/text/PathText.h>
#include <tessel/document/DocumentFacts.h>
#include <tessel/document/settings/DocumentRules.h>
#include <tessel/document/settings/KeyTable.h>
#include <tessel/document/settings/NewDocument.h>

#include <fmt/format.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <utility>

namespace tessel::typed {
namespace {

using document::DocumentEditor;
using document::KeyInfo;
using qelcore::serialization::AddToObject;
using qelcore::serialization::Object;
using qelcore::serialization::Value;

Value ColorValue(const Color& color)
{
    Object object;
    AddToObject(object, "mRedPart", FloatValue(color[0]));
    AddToObject(object, "mGreenPart", FloatValue(color[1]));
    AddToObject(object, "mBluePart", FloatValue(color[2]));
    AddToObject(object, "mAlphaPart", FloatValue(color[3]));
    return Value(std::move(object));
}

/// Puts one list of a chart into the document.
void SetChartPart(bool isCoordinates, const Value& list, const std::string& place, DocumentEditor& document)
{
    const std::string key = isCoordinates ? "mSwatchCoordinates" : "mSwatchColors";
    document.Set(key, list);
    document.Set(key + "FilePath", Value(place));
}

void LoadSwatchFile(const std::string& name, DocumentEditor& document)
{
    const std::filesystem::path file = qelcore::text::PathOf(name);
    std::optional<DocumentEditor> swatches;
    try {
        swatches = DocumentEditor::Open(file);
    } catch (const importhost::HostError& error) {
        throw SettingError(error.what());
    }
    const Value list = swatches->Find("");
    const bool isCoordinates = swatches->Find("colorSwatches").IsObject();
    SetChartPart(isCoordinates, list, name, document);
    const std::string key = isCoordinates ? "mSwatchCoordinates" : "mSwatchColors";
    for (const KeyInfo& info : document::AllKeys()) {
        if (!info.path.starts_with(key + '.')) {
            continue;
        }
        const Value part = document.Find(info.path);
        if (part.IsNothing() || !document::TypeFits(info.type, part)) {
            throw SettingError(fmt::format("{}: \"{}\": expected {}", importhost::DisplayName(file),
                                           info.path.substr(key.size() + 1), document::TypeText(info.type)));
        }
    }
}

} // namespace

void ApplyPicture(const TypedValues& values, DocumentEditor& document)
{
    document.Set("mRenderFormat", IntegerValue(RequiredRow(document::RenderFormats(), values.front()).value));
}

void ApplyColors(const TypedValues& values, DocumentEditor& document)
{
    const std::vector<Color> colors = ReadColors(values.front());
    const std::int64_t picture = IntegerAt(document, "mRenderFormat", document::kRenderGradient);
    if (picture == document::kRenderFieldColors && (colors.size() == 1 || colors.size() == 2)) {
        document.Set("mUpperFieldColor", ColorValue(colors.front()));
        document.Set("mLowerFieldColor", ColorValue(colors.back()));
        return;
    }
    if (picture == document::kRenderGradient && (colors.size() == 2 || colors.size() == 4)) {
        document.Set("mTopGradiantColorStart", ColorValue(colors[0]));
        document.Set("mTopGradiantColorEnd", ColorValue(colors[1]));
        document.Set("mBottomGradiantColorStart", ColorValue(colors[colors.size() - 2]));
        document.Set("mBottomGradiantColorEnd", ColorValue(colors.back()));
        return;
    }
    if (picture == document::kRenderSwatches) {
        throw SettingError("has no effect on a swatch chart, whose colours are in its files: give swatches");
    }
    throw SettingError(
        fmt::format("{} given; field colours have 1 or 2 (upper, lower), a gradient 2 or 4 (top start, top "
                    "end, bottom start, bottom end)",
                    colors.size() == 1 ? "one colour was" : fmt::format("{} colours were", colors.size())));
}

void ApplySwatches(const TypedValues& values, DocumentEditor& document)
{
    if (values.size() == 1 && values.front() == "bars") {
        const document::Chart bars = document::ColorBars();
        SetChartPart(/*isCoordinates=*/true, bars.coordinates, "", document);
        SetChartPart(/*isCoordinates=*/false, bars.colors, "", document);
    } else {
        for (const std::string& file : values) {
            LoadSwatchFile(file, document);
        }
    }
    document.Set("mRenderFormat", IntegerValue(document::kRenderSwatches));
}

void ApplyNumber(const TypedValues& values, DocumentEditor& document)
{
    document.Set("mDrawFrameFieldNumber", Value(ReadSwitch(values.front())));
}

} // namespace tessel::typed
