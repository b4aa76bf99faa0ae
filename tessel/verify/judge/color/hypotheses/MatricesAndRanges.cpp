#include "HypothesisList.h"

#include <tessel/verify/judge/container/CodePoints.h>

#include <fmt/format.h>

namespace tessel::verify::judge {
namespace {

/// A range mistake: levels are scaled and moved, chroma is scaled about its middle.
struct RangeError {
    std::string_view message;
    std::string_view found;
    double levelScale;
    double levelOffset;
    double chromaScale;
};
constexpr RangeError kSqueezed{"the range is squeezed: codes were taken for full range and made limited",
                               "squeezed", 219.0 / 255, 16, 224.0 / 255};
constexpr RangeError kExpanded{"the range is expanded: codes were taken for limited range and made full",
                               "expanded", 255.0 / 219, -16 * 255.0 / 219, 255.0 / 224};

Triple Ranged(const RangeError& error, const Coding& coding, const Triple& codes) noexcept
{
    Triple result = codes;
    for (std::size_t i = 0; i < 3; ++i) {
        const bool isLevel = coding.isRgb || i == 0;
        result[i] = isLevel ? codes[i] * error.levelScale + error.levelOffset
                            : 128 + (codes[i] - 128) * error.chromaScale;
    }
    return result;
}

std::string RangeName(const Coding& coding)
{
    return coding.isFull ? "full" : "limited";
}

std::string MatrixMessage(const Coding& coding, int from, int to)
{
    if (coding.isRgb) {
        return fmt::format("codes made with {} were read with {}", MatrixName(from), MatrixName(to));
    }
    if (IsSameMatrix(from, coding.matrix)) {
        return fmt::format("codes are {} where {} is right", MatrixName(to), MatrixName(coding.matrix));
    }
    return fmt::format("codes were taken for {} and converted to {}", MatrixName(from), MatrixName(to));
}

void AddMatrix(HypothesisList& list, int from, int to)
{
    const Coding coding = list.Expected();
    const std::string message = MatrixMessage(coding, from, to);
    const Coding asFrom{false, from, coding.isFull};
    const Coding asTo{false, to, coding.isFull};
    const HypothesisList::Way codes = [coding, asFrom, asTo](const ColorPair& pair) {
        return coding.isRgb ? Encode(coding, Decode(asTo, Encode(asFrom, pair.rgb)))
                            : Encode(asTo, Decode(asFrom, Encode(coding, pair.rgb)));
    };
    const std::string right = MatrixName(coding.isRgb ? from : coding.matrix);
    list.AddCodes({id::kColorMatrix}, message, {MatrixName(to)}, {right}, codes);
    if (coding.isRgb || !IsSameMatrix(from, coding.matrix)) {
        return;
    }
    for (const RangeError& error : {kSqueezed, kExpanded}) {
        list.AddCodes({id::kColorMatrix, id::kColorRange}, message, {MatrixName(to), std::string(error.found)},
                      {right, RangeName(coding)}, [coding, codes, error](const ColorPair& pair) {
                          return Ranged(error, coding, codes(pair));
                      });
    }
}

} // namespace

void AddMatricesAndRanges(HypothesisList& list)
{
    for (const int from : {1, 6, 9, 7}) {
        for (const int to : {1, 6, 9, 7}) {
            if (!IsSameMatrix(from, to)) {
                AddMatrix(list, from, to);
            }
        }
    }
    for (const RangeError& error : {kSqueezed, kExpanded}) {
        list.AddCodes({id::kColorRange}, std::string(error.message), {std::string(error.found)},
                      {RangeName(list.Expected())}, [coding = list.Expected(), error](const ColorPair& pair) {
                          return Ranged(error, coding, Encode(coding, pair.rgb));
                      });
    }
}

} // namespace tessel::verify::judge
