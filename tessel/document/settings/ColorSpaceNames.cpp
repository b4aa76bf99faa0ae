#include "ColorSpaceNames.h"

#include <kestrel/brindle/ColorSpaces.h>
#include <kestrel/qelcore/text/LetterCase.h>

#include <algorithm>

namespace tessel::document {
namespace {

using qelcore::text::LowerCase;

bool IsLetterOrDigit(char letter) noexcept
{
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
           (letter >= '0' && letter <= '9');
}

/// "Rec. 2020 (10-bit)" gives "rec2020-10-bit".
std::string NameOf(std::string_view title)
{
    constexpr std::string_view kRecommendation = "Rec. ";
    std::string name;
    if (title.starts_with(kRecommendation)) {
        name = "rec";
        title.remove_prefix(kRecommendation.size());
    }
    bool isApart = false;
    for (const char letter : title) {
        if (!IsLetterOrDigit(letter) && letter != '.') {
            isApart = true;
            continue;
        }
        name += isApart && !name.empty() ? "-" : "";
        isApart = false;
        name += LowerCase(letter);
    }
    return name;
}

/// Letters and digits alone; "BT" counts as "Rec".
std::string Bare(std::string_view text)
{
    std::string bare;
    for (const char letter : text) {
        if (IsLetterOrDigit(letter)) {
            bare += LowerCase(letter);
        }
    }
    constexpr std::string_view kSeries = "bt";
    return bare.starts_with(kSeries) ? "rec" + bare.substr(kSeries.size()) : bare;
}

} // namespace

std::vector<NamedColorSpace> AllColorSpaces()
{
    std::vector<NamedColorSpace> spaces;
    for (const auto& space : BR::ColorSpaces::GetSupportedOverridableMediaColorSpaces()) {
        ksSEIColorCodesRec codes{};
        BR::QELColorSpaceToSEIColorCodes(space, codes, /*fallBackToRec709=*/false);
        const std::string title = BR::ColorSpaceUtils::QELColorSpaceToString(space, BR::kDescriptiveName);
        spaces.push_back(
            {NameOf(title), title, codes.primaries, codes.transfer, codes.matrix, codes.fullRange != 0, space});
    }
    return spaces;
}

std::optional<NamedColorSpace> ColorSpaceNamed(std::string_view text)
{
    const std::string wanted = Bare(text);
    std::optional<NamedColorSpace> begun;
    int count = 0;
    for (const NamedColorSpace& space : AllColorSpaces()) {
        const std::string name = Bare(space.name);
        if (name == wanted) {
            return space;
        }
        if (!wanted.empty() && name.starts_with(wanted)) {
            begun = space;
            ++count;
        }
    }
    if (count == 1) {
        return begun;
    }
    // "rec2020": older documents' name says which of several is meant.
    constexpr std::string_view kRec = "rec";
    if (!wanted.starts_with(kRec)) {
        return std::nullopt;
    }
    const auto predefined = BR::QELColorSpaceFromSDKPredefinedColorSpace("BT" + wanted.substr(kRec.size()));
    if (count < 2 || predefined == BR::ColorSpaces::Rec709()) {
        return std::nullopt; // The host answers unknown names, "BT70" too, with Rec. 709.
    }
    return ColorSpaceNamed(BR::ColorSpaceUtils::QELColorSpaceToString(predefined, BR::kDescriptiveName));
}

} // namespace tessel::document
