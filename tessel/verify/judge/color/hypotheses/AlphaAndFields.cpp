#include "HypothesisList.h"

#include <algorithm>

namespace tessel::verify::judge {

void AddAlpha(HypothesisList& list)
{
    const auto scaled = [](const Triple& rgb, double by) {
        return Triple{rgb[0] * by, rgb[1] * by, rgb[2] * by};
    };
    list.AddColors({id::kColorAlpha}, "colours are multiplied by alpha once too often", {"multiplied"},
                   {"as they are"}, [scaled](const ColorPair& pair) { return scaled(pair.rgb, pair.alpha); });
    list.AddColors(
        {id::kColorAlpha}, "colours are divided by alpha", {"divided"}, {"as they are"},
        [scaled](const ColorPair& pair) { return scaled(pair.rgb, 1 / std::max(pair.alpha, 0.01)); });
}

void AddChromaOfFields(HypothesisList& list)
{
    if (list.Expected().isRgb) {
        return;
    }
    list.AddCodes({id::kColorSubsampling},
                  "both fields have the same chroma: it was subsampled as if there were no fields",
                  {"chroma of both fields mixed"}, {"each field's own"},
                  [coding = list.Expected()](const ColorPair& pair) {
                      const Triple own = Encode(coding, pair.rgb);
                      const Triple other = Encode(coding, pair.otherField);
                      return Triple{own[0], (own[1] + other[1]) / 2, (own[2] + other[2]) / 2};
                  });
}

} // namespace tessel::verify::judge
