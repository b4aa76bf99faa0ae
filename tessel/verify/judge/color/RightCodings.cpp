#include "RightCodings.h"

#include <tessel/verify/judge/container/CodePoints.h>

#include <cmath>
#include <set>

namespace tessel::verify::judge {

std::vector<Coding> RightCodings(const reference::ClipFacts& clip, const read::PictureFacts& movie)
{
    if (movie.format.isRgb) {
        return {{true, 0, movie.fullRange.value_or(true), movie.format.isFloat}};
    }
    const bool isYCbCrClip = clip.fileKind.family == exporting::ColorFamily::YCbCr;
    const bool isSaid = movie.matrix != 2 && movie.matrix != 0;
    const int ofClip = isYCbCrClip                            ? static_cast<int>(clip.fileKind.matrix)
                       : clip.matrix != 0 && clip.matrix != 2 ? clip.matrix
                       : isSaid                               ? movie.matrix
                                                              : 1;
    std::vector<int> matrices{ofClip};
    // Tags that contradict a Y'CbCr clip's format on purpose are the clip's, not the movie's.
    const bool isClipsTag = isSaid && IsSameMatrix(movie.matrix, clip.matrix);
    if (isSaid && !isClipsTag && !IsSameMatrix(movie.matrix, ofClip)) {
        matrices.push_back(movie.matrix);
    }
    const bool isFullClip = !isYCbCrClip && clip.fullRange && clip.matrix != 0;
    // A movie that states no range has the limited one.
    std::set<bool> ranges =
        movie.fullRange ? std::set<bool>{isFullClip, *movie.fullRange} : std::set<bool>{false};
    if (isYCbCrClip && clip.fullRange) {
        ranges = {false}; // such a clip announces full range and has limited codes, on purpose
    }
    std::vector<Coding> codings;
    for (const int matrix : matrices) {
        for (const bool isFull : ranges) {
            codings.push_back({false, matrix, isFull});
        }
    }
    return codings;
}

std::vector<ColorPair> PairsOf(const std::vector<ColorSampler::Spot>& spots, const Coding& coding)
{
    std::vector<ColorPair> pairs;
    pairs.reserve(spots.size());
    for (const ColorSampler::Spot& spot : spots) {
        ColorPair pair = spot.pair;
        const double full = spot.format.isFloat ? 1.0 : std::exp2(spot.format.bits) - 1;
        const double unit = std::exp2(spot.format.bits - 8);
        for (std::size_t i = 0; i < 3; ++i) {
            const double code = spot.pair.found[i];
            if (coding.isRgb || spot.format.isFloat) {
                pair.found[i] = code * 255 / full;
            } else if (coding.isFull) {
                pair.found[i] = i == 0 ? code * 255 / full : 128 + (code - 128 * unit) * 255 / full;
            } else {
                pair.found[i] = code / unit;
            }
        }
        pairs.push_back(pair);
    }
    return pairs;
}

} // namespace tessel::verify::judge
