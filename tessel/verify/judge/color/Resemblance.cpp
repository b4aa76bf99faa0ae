#include "Resemblance.h"

#include "RightCodings.h"
#include "hypotheses/Levels.h"

#include <algorithm>
#include <cmath>

namespace tessel::verify::judge {
namespace {

/// Colours this far from every explanation are those of something else, in 8-bit codes.
constexpr double kOtherColors = 18;
/// A clip whose colours differ by less is of one colour, likewise.
constexpr double kOneColor = 8;
/// So much of the variance has to be explained.
constexpr double kLeastExplained = 0.5;

/// Faults of fields exchange the colours of the two fields, or mix them: the nearest of these.
Hypothesis WithEitherField(const Hypothesis& hypothesis)
{
    Hypothesis either = hypothesis;
    either.predict = [predict = hypothesis.predict](const ColorPair& pair) {
        Triple best = predict(pair);
        if (pair.otherField == pair.rgb) {
            return best;
        }
        ColorPair other = pair;
        for (const double share : {0.5, 1.0}) {
            for (std::size_t part = 0; part < 3; ++part) {
                other.rgb[part] = pair.rgb[part] + share * (pair.otherField[part] - pair.rgb[part]);
            }
            const Triple codes = predict(other);
            if (SquaredDistance(codes, pair.found) < SquaredDistance(best, pair.found)) {
                best = codes;
            }
        }
        return best;
    };
    return either;
}

Hypothesis Constant(const Triple& codes)
{
    Hypothesis constant;
    constant.predict = [codes](const ColorPair&) { return codes; };
    return constant;
}

/// How far the movie's codes are from their mean.
double SpreadOf(const std::vector<ColorPair>& pairs)
{
    Triple mean{};
    for (const ColorPair& pair : pairs) {
        for (std::size_t part = 0; part < 3; ++part) {
            mean[part] += pair.found[part] / static_cast<double>(pairs.size());
        }
    }
    return ResidualOf(Constant(mean), pairs);
}

/// The same of the clip.
double OwnSpreadOf(std::vector<ColorPair> pairs, const Coding& coding)
{
    for (ColorPair& pair : pairs) {
        pair.found = Encode(coding, pair.rgb);
    }
    return SpreadOf(pairs);
}

/// The part of the variance of luma (of green in R'G'B') that any gain and offset explain.
double ExplainedLuma(const std::vector<ColorPair>& pairs, const Coding& coding)
{
    const std::size_t part = coding.isRgb ? 1 : 0;
    const auto count = static_cast<double>(pairs.size());
    double meanWas = 0;
    double meanFound = 0;
    for (const ColorPair& pair : pairs) {
        meanWas += Encode(coding, pair.rgb)[part] / count;
        meanFound += pair.found[part] / count;
    }
    double both = 0;
    double was = 0;
    double found = 0;
    for (const ColorPair& pair : pairs) {
        const double ofClip = Encode(coding, pair.rgb)[part] - meanWas;
        const double ofMovie = pair.found[part] - meanFound;
        both += ofClip * ofMovie;
        was += ofClip * ofClip;
        found += ofMovie * ofMovie;
    }
    return was > 0 && found > 0 ? both * both / (was * found) : 0;
}

/// Whether spots in one coding can be the clip's.
class Comparison {
public:
    Comparison(const std::vector<ColorPair>& pairs, const Coding& coding, FrameSource frames)
        : mPairs(pairs), mCoding(coding), mFrames(frames), mSpread(SpreadOf(pairs)),
          mIsOneColor(OwnSpreadOf(pairs, coding) < kOneColor)
    {
    }

    [[nodiscard]] bool Succeeds() const
    {
        for (const Hypothesis& hypothesis : Hypotheses(mCoding)) {
            if (Shows(ResidualOf(WithEitherField(hypothesis), mPairs))) {
                return true;
            }
        }
        const LevelFit fit = FitLevels(mPairs, mCoding, 1);
        // One colour is three numbers: several changes at once explain any other colour.
        if ((!mIsOneColor || ChangesOf(fit) <= 1) && Shows(fit.residual)) {
            return true;
        }
        // Frames with the clip's numbers, and a curve that is not on the list.
        return mFrames == FrameSource::Numbers && ExplainedLuma(mPairs, mCoding) >= kLeastExplained;
    }

private:
    [[nodiscard]] bool Shows(double residual) const noexcept
    {
        // One colour has to be met: many are 18 codes away from it.
        if (residual > (mIsOneColor ? kOneColor : kOtherColors)) {
            return false;
        }
        return mFrames == FrameSource::Numbers || mIsOneColor ||
               residual * residual < (1 - kLeastExplained) * mSpread * mSpread;
    }

    const std::vector<ColorPair>& mPairs;
    Coding mCoding;
    FrameSource mFrames;
    double mSpread;
    bool mIsOneColor;
};

} // namespace

bool ShowsOtherColors(const ColorCase& given, FrameSource frames)
{
    const std::vector<Coding> codings = RightCodings(given.clip, given.movie);
    return !given.sampler.Spots().empty() &&
           std::none_of(codings.begin(), codings.end(), [&](const Coding& coding) {
               return Comparison(PairsOf(given.sampler.Spots(), coding), coding, frames).Succeeds();
           });
}

} // namespace tessel::verify::judge
