#include "LevelReport.h"

#include <fmt/format.h>

#include <cmath>
#include <string_view>
#include <utility>

namespace tessel::verify::judge {
namespace {

/// A picture whose chroma is multiplied by less than this counts as grey.
constexpr double kNoChroma = 0.02;

/// A change that the codes are explained without is not reported, whatever its uncertainty.
void TellLevel(Findings& findings, std::string_view check, bool isVisible, const Measured& value,
               std::string message)
{
    if (!isVisible) {
        findings.NotVisible(check);
    } else if (value.found == value.expected) {
        findings.AsExpected(check);
    } else {
        static_cast<void>(findings.Judge(check, value, std::move(message)));
    }
}

} // namespace

bool IsBeyond(const LevelFit& fit, const Tolerances& limits)
{
    return std::abs(fit.gain - 1) > limits.Of(id::kColorGain) ||
           std::abs(fit.offset) > limits.Of(id::kColorOffset) ||
           std::abs(fit.saturation - 1) > limits.Of(id::kColorSaturation) ||
           std::abs(fit.hueDegrees) > limits.Of(id::kColorHue);
}

std::vector<std::string> LevelMessages(const LevelFit& fit)
{
    std::vector<std::string> messages;
    if (fit.gain != 1) {
        messages.push_back(fmt::format("levels are multiplied by {:.3f}", fit.gain));
    }
    if (fit.offset != 0) {
        messages.push_back(fmt::format("{:+.1f} codes are added to the levels", fit.offset));
    }
    if (OwnSaturation(fit) != 1) {
        messages.push_back(fmt::format("chroma is multiplied by {:.3f}", fit.saturation));
    }
    if (fit.hueDegrees != 0) {
        messages.push_back(fmt::format("hues are turned by {:.1f} degrees", fit.hueDegrees));
    }
    return messages;
}

void TellLevels(const LevelFit& fit, Findings& findings)
{
    const double saturation = OwnSaturation(fit);
    if (fit.hasChroma && std::abs(saturation) < kNoChroma) {
        Finding& finding = findings.Fault(
            id::kColorSubsampling, "no chroma is left, one of: it was not kept (4:0:0), or saturation is 0");
        finding.expected = std::string("chroma");
        finding.found = std::string("4:0:0");
    }
    std::string offsetMessage = fmt::format("{:+.1f} codes are added to the levels", fit.offset);
    if (!fit.hasLuma || fit.isGainOrOffset) {
        offsetMessage = fmt::format("one of: {}, or levels are multiplied", offsetMessage);
    }
    std::string gainMessage = fmt::format("levels are multiplied by {:.3f}", fit.gain);
    if (fit.isGainOrOffset) {
        gainMessage = fmt::format("one of: {}, or something is added to them", gainMessage);
    }
    TellLevel(findings, id::kColorGain, fit.hasLuma, {1, fit.gain, fit.gainUncertainty},
              std::move(gainMessage));
    TellLevel(findings, id::kColorOffset, true, {0, fit.offset, fit.offsetUncertainty},
              std::move(offsetMessage));
    TellLevel(findings, id::kColorSaturation, fit.hasChroma, {1, saturation, fit.saturationUncertainty},
              fmt::format("chroma is multiplied by {:.3f}", saturation));
    TellLevel(findings, id::kColorHue, fit.hasChroma, {0, fit.hueDegrees, fit.hueUncertainty},
              fmt::format("hues are turned by {:.1f} degrees", fit.hueDegrees));
}

} // namespace tessel::verify::judge
