#include "ColorEvidence.h"

#include "RightCodings.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tessel::verify::judge {
namespace {

/// In resampled pictures a spot's place is known to so many pixels.
constexpr double kPlaceUncertainty = 0.35;

/// How far codes may differ at spots where colours change from row to row.
double PlaceNoise(const ColorCase& given)
{
    const ColorSampler& sampler = given.sampler;
    const double pixels = given.chromaOff + (sampler.IsResampled() ? kPlaceUncertainty : 0);
    if (pixels == 0 || sampler.Spots().empty()) {
        return 0;
    }
    double squares = 0;
    for (const ColorSampler::Spot& spot : sampler.Spots()) {
        squares += spot.slope * spot.slope;
    }
    return 255 * pixels * std::sqrt(squares / static_cast<double>(sampler.Spots().size()));
}

/// A planar frame picture has one chroma for both fields, by its format.
bool KeepsChromaOfFrames(const ColorCase& given)
{
    const exporting::PixelKind& kind = given.clip.fileKind;
    return kind.storage == exporting::Storage::Planar420 && !kind.fieldPicture &&
           given.movie.format.chromaShiftY > 0;
}

void MixChromaOfFields(std::vector<ColorPair>& pairs, const Coding& coding)
{
    for (ColorPair& pair : pairs) {
        Triple own = Encode(coding, pair.rgb);
        Triple other = Encode(coding, pair.otherField);
        for (const std::size_t part : {1U, 2U}) {
            own[part] = other[part] = (own[part] + other[part]) / 2;
        }
        pair.rgb = Decode(coding, own);
        pair.otherField = Decode(coding, other);
    }
}

bool IsOf(const Hypothesis& hypothesis, std::string_view check)
{
    return hypothesis.ids.size() == 1 && hypothesis.ids.front() == check;
}

} // namespace

double NoiseOf(CodecClass codec) noexcept
{
    return codec == CodecClass::Lossless ? 0.25 : codec == CodecClass::Mezzanine ? 0.4 : 0.8;
}

ColorEvidence::ColorEvidence(const ColorCase& given, const Tolerances& limits)
    : noise(NoiseOf(limits.picture) + PlaceNoise(given)),
      tolerance(limits.Of(id::kColorMatrix) + given.lostStep / 2 + 2 * PlaceNoise(given))
{
    double best = 1e300;
    for (const Coding& candidate : RightCodings(given.clip, given.movie)) {
        std::vector<ColorPair> found = PairsOf(given.sampler.Spots(), candidate);
        if (KeepsChromaOfFrames(given)) {
            MixChromaOfFields(found, candidate);
        }
        std::vector<Hypothesis> hypotheses = Hypotheses(candidate);
        const double residual = ResidualOf(hypotheses.front(), found);
        if (residual < best - 0.2) {
            best = residual;
            coding = candidate;
            pairs = std::move(found);
            list = std::move(hypotheses);
        }
    }
    clipping = FitClipping(coding, pairs, tolerance + noise);
    if (clipping) {
        list.push_back(clipping->hypothesis);
    }
    for (const Hypothesis& hypothesis : list) {
        residuals.push_back(ResidualOf(hypothesis, pairs));
    }
}

bool ColorEvidence::IsVisible(const Hypothesis& hypothesis) const
{
    return DistanceOf(list.front(), hypothesis, pairs) > tolerance + noise;
}

bool ColorEvidence::ChangesColors(const Hypothesis& hypothesis) const
{
    constexpr double kNothing = 0.1; // codes
    return DistanceOf(list.front(), hypothesis, pairs) > kNothing;
}

bool ColorEvidence::ShowsFaultOf(std::string_view check) const
{
    return std::any_of(list.begin() + 1, list.end(), [&](const Hypothesis& hypothesis) {
        return IsOf(hypothesis, check) && IsVisible(hypothesis);
    });
}

bool ColorEvidence::ShowsFaultBeside(std::string_view check, std::size_t winner) const
{
    return std::any_of(list.begin() + 1, list.end(), [&](const Hypothesis& hypothesis) {
        return IsOf(hypothesis, check) && IsVisible(hypothesis) &&
               DistanceOf(list[winner], hypothesis, pairs) > tolerance + noise;
    });
}

bool ColorEvidence::IsCutOff() const
{
    return clipping && clipping->plainDistance > tolerance + noise &&
           clipping->residual < clipping->plainDistance / 2;
}

std::optional<std::size_t> ColorEvidence::FaintMatrix() const
{
    constexpr double kLeast = 0.5; // codes
    constexpr double kFarAlong = 0.8;
    std::optional<std::size_t> best;
    for (std::size_t i = 1; i < list.size(); ++i) {
        const double distance = IsOf(list[i], id::kColorMatrix) ? DistanceOf(list.front(), list[i], pairs) : 0;
        if (distance < kLeast) {
            continue;
        }
        // 1 where the codes are the explanation's, -1 where they are the clip's.
        const double along = (Off() * Off() - residuals[i] * residuals[i]) / (distance * distance);
        if (along > kFarAlong && along < 2 - kFarAlong && (!best || residuals[i] < residuals[*best])) {
            best = i;
        }
    }
    const bool isBest = best && residuals[*best] <= *std::min_element(residuals.begin() + 1, residuals.end());
    return isBest ? best : std::nullopt;
}

} // namespace tessel::verify::judge
