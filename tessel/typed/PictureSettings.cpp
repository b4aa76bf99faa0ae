#include "PictureSettings.h"

#include "DocumentValues.h"
#include "NearMisses.h"
#include "RequiredRow.h"
#include "ValueReaders.h"

#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/qelcore/serialization/Json.h>
#include <kestrel/qelcore/text/FourCharacterText.h>
#include <tessel/document/settings/ColorSpaceNames.h>
#include <tessel/document/settings/DocumentRules.h>
#include <tessel/document/settings/KeyTable.h>
#include <tessel/document/settings/PixelLayouts.h>
#include <tessel/export/plan/Names.h>

#include <algorithm>
#include <cstdint>
#include <utility>

namespace tessel::typed {
namespace {

using document::DocumentEditor;
using exporting::IsSameName;
using qelcore::serialization::AddToObject;
using qelcore::serialization::Object;
using qelcore::serialization::Value;

/// The layout whose name is `text` but for upper case and `_` in place of `-`. Empty where no layout is.
std::string NameOfLayoutLike(std::string text)
{
    std::replace(text.begin(), text.end(), '_', '-');
    for (const document::PixelLayout& layout : document::AllPixelLayouts()) {
        if (IsSameName(layout.name, text)) {
            return layout.name;
        }
    }
    return {};
}

/// A layout's name takes the matrix from the colour space: 601 for 601's, else 709. The host's own names and
/// codes say the matrix themselves.
std::uint32_t PixelFormatCode(const std::string& text, const DocumentEditor& document)
{
    for (const document::PixelLayout& layout : document::AllPixelLayouts()) {
        if (layout.name == text) {
            const auto matrix = document::MatrixOfColorSpace(document);
            const bool is601 = matrix && document::MatrixOfSpace(*matrix) == document::PixelMatrix::Bt601;
            return BR::BEToSDKPixelFormat(is601 ? layout.with601 : layout.with709);
        }
    }
    constexpr std::string_view kPrefix = "KsPixelFormat_";
    for (const BR::PixelFormatInfo& info : BR::AllPixelFormats()) {
        // Codes differ by case alone: "vuya" and "VUYA".
        if (qelcore::text::TextOfFourBytes(info.sdkCode) == text || IsSameName(info.constant, text) ||
            IsSameName(info.constant.substr(kPrefix.size()), text)) {
            return info.sdkCode;
        }
    }
    // Elsewhere layouts are written UYVY and bgra_float, too.
    if (const std::string layout = NameOfLayoutLike(text); !layout.empty()) {
        return PixelFormatCode(layout, document);
    }
    RefuseWord(text, "a pixel format such as v210 or bgra-float; tessel list pixel-formats names all",
               PixelLayoutChoices());
}

} // namespace

void ApplySize(const TypedValues& values, DocumentEditor& document)
{
    const auto [width, height] = ReadSize(values.front());
    document.Set("mFrameWidth", IntegerValue(width));
    document.Set("mFrameHeight", IntegerValue(height));
}

void ApplyPixelAspect(const TypedValues& values, DocumentEditor& document)
{
    const auto [numerator, denominator] = ReadPixelAspect(values.front());
    document.Set("mFramePAR.numerator", IntegerValue(numerator));
    document.Set("mFramePAR.denominator", IntegerValue(denominator));
}

void ApplyFields(const TypedValues& values, DocumentEditor& document)
{
    document.Set("mFieldType", IntegerValue(RequiredRow(document::FieldTypes(), values.front()).value));
}

std::vector<std::string> ColorSpaceChoices()
{
    return NamesOfRows(document::AllColorSpaces());
}

void ApplyColorSpace(const TypedValues& values, DocumentEditor& document)
{
    const auto named = document::ColorSpaceNamed(values.front());
    if (!named) {
        RefuseWord(values.front(), "a colour space such as rec709; tessel list color-spaces names all",
                   ColorSpaceChoices());
    }
    const auto& space = named->space;
    Object profile;
    AddToObject(profile, "colorProfileName", Value(space.baseColorProfile.name));
    AddToObject(profile, "colorProfileData",
                Value(qelcore::serialization::EncodeBinaryDataToUTF8String(space.baseColorProfile.data)));
    Object metadata;
    AddToObject(metadata, "metadataVersion", IntegerValue(space.colorSpaceMetadata.metadataVersion));
    AddToObject(metadata, "peakLuminance", FloatValue(space.colorSpaceMetadata.peakLuminance));
    AddToObject(metadata, "dataRangeInfoValid", Value(space.colorSpaceMetadata.dataRangeInfoValid));
    Object object;
    AddToObject(object, "baseColorProfile", Value(std::move(profile)));
    AddToObject(object, "baseProfileType", IntegerValue(space.baseProfileType));
    AddToObject(object, "colorSpaceLinearized", Value(space.colorSpaceLinearized));
    AddToObject(object, "colorSpaceMetadata", Value(std::move(metadata)));
    document.Set("mColorSpace", Value(std::move(object)));
}

std::vector<std::string> PixelLayoutChoices()
{
    return NamesOfRows(document::AllPixelLayouts());
}

void ApplyPixelFormat(const TypedValues& values, DocumentEditor& document)
{
    document.Set("mPixelFormat", IntegerValue(PixelFormatCode(values.front(), document)));
}

} // namespace tessel::typed
