/// What a file announces about its colours.
#pragma once

#include <kestrel/importabi/Records.h>
#include <tessel/export/convert/Conversion.h>
#include <tessel/export/convert/Picture.h>
#include <tessel/export/convert/PixelKind.h>

#include <cstdint>

namespace tessel::exporting {

/// Codes of ITU-T H.273 for primaries and transfer that files treat differently from others.
namespace h273 {
inline constexpr int kBt709 = 1;
inline constexpr int kUnspecified = 2;
inline constexpr int kBt470Bg = 5; ///< BT.601 at 625 lines
inline constexpr int kBt601 = 6;   ///< at 525 lines
inline constexpr int kLinear = 8;  ///< transfer only
} // namespace h273

/// Codes of ITU-T H.273.
struct ColorTags {
    int primaries = 2;
    int transfer = 2;
    int matrix = 2;
    bool fullRange = false;

    bool operator==(const ColorTags&) const = default;
};

/// The code ranges that readers of a file can tell apart.
enum class CodeRanges : std::uint8_t { OnlyLimited, LimitedAndFull };

/// How R'G'B' pixels of a clip become Y'CbCr: by the clip's own matrix and range where it names a Y'CbCr one,
/// else BT.709 limited range.
/// @param ranges  what the file can say: where readers take its codes for limited range, they are made so
[[nodiscard]] YCbCrCoding CodingFor(const ksSEIColorCodesRec& codes, CodeRanges ranges) noexcept;

/// The tags of a file with pixels of `layout`.
///
/// Primaries and transfer are the clip's, but linear light that passed the BT.709 curve on its way into
/// integers announces that curve, not linear. Matrix and range belong together and follow the pixels:
/// - R'G'B' pixels announce matrix 0 and full range.
/// - Y'CbCr pixels of a Y'CbCr format announce the clip's matrix and range, also where they contradict the
///   format: wrong tags are a wanted test. In an R'G'B' space they announce the format's matrix, limited.
/// - Y'CbCr pixels made from R'G'B' announce what they were made with.
/// @param kind    of the clip's own format
/// @param coding  of Y'CbCr pixels made from R'G'B'
[[nodiscard]] ColorTags TagsFor(const PixelKind& kind, const ksSEIColorCodesRec& codes,
                                const LayoutInfo& layout, const YCbCrCoding& coding) noexcept;

} // namespace tessel::exporting
