/// The shapes of the printed number's digits and where they stand: all that a program needs to know to read
/// the numbers back. Nothing here draws.
///
/// Digits are strokes of one thickness with round ends, described by their centre lines. The unit is the
/// height of a digit; x runs right and y down from the top left corner of the digit's box.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

namespace pixmill {

inline constexpr double kGlyphInkWidth = 0.56;  ///< of a digit's box; its height is 1
inline constexpr double kGlyphAdvance = 0.70;   ///< from one digit to the next, the same for all
inline constexpr double kGlyphThickness = 0.14; ///< of a stroke
inline constexpr double kPlateMarginX = 0.25;   ///< black beside the first and the last cell
inline constexpr double kPlateMarginY = 0.20;   ///< black above and below the digits

/// Where numbers are padded with zeros to, not counting the minus sign.
inline constexpr std::uint32_t kLeastDigits = 6;

/// One centre line: a straight line, or an arc of a circle.
struct Stroke {
    enum class Kind : std::uint8_t { Line, Arc };

    Kind kind = Kind::Line;
    double x0 = 0, y0 = 0;                   ///< line: one end; arc: the centre
    double x1 = 0, y1 = 0;                   ///< line: the other end
    double radius = 0;                       ///< arc only
    double startDegrees = 0, endDegrees = 0; ///< arc only: 0 is right, 90 is down; end > start, at most a turn
};

[[nodiscard]] constexpr Stroke LineStroke(double x0, double y0, double x1, double y1) noexcept
{
    return {.kind = Stroke::Kind::Line, .x0 = x0, .y0 = y0, .x1 = x1, .y1 = y1};
}

[[nodiscard]] constexpr Stroke ArcStroke(double centreX, double centreY, double radius, double startDegrees,
                                         double endDegrees) noexcept
{
    return {.kind = Stroke::Kind::Arc,
            .x0 = centreX,
            .y0 = centreY,
            .radius = radius,
            .startDegrees = startDegrees,
            .endDegrees = endDegrees};
}

namespace glyphs {

inline constexpr std::array kZero{ArcStroke(0.28, 0.28, 0.21, 180, 360), ArcStroke(0.28, 0.72, 0.21, 0, 180),
                                  LineStroke(0.07, 0.28, 0.07, 0.72), LineStroke(0.49, 0.28, 0.49, 0.72)};
inline constexpr std::array kOne{LineStroke(0.30, 0.07, 0.30, 0.93), LineStroke(0.30, 0.07, 0.11, 0.22),
                                 LineStroke(0.09, 0.93, 0.49, 0.93)};
// The slanted line is tangent to the arc: 395.8° = 360° + atan2(0.65, -0.21) - acos(0.21 / 0.6831).
inline constexpr std::array kTwo{ArcStroke(0.28, 0.28, 0.21, 190, 395.8),
                                 LineStroke(0.4503, 0.4028, 0.08, 0.93), LineStroke(0.08, 0.93, 0.49, 0.93)};
inline constexpr std::array kThree{ArcStroke(0.27, 0.275, 0.205, 205, 450),
                                   ArcStroke(0.27, 0.705, 0.225, 270, 515)};
inline constexpr std::array kFour{LineStroke(0.38, 0.07, 0.07, 0.68), LineStroke(0.07, 0.68, 0.50, 0.68),
                                  LineStroke(0.38, 0.07, 0.38, 0.93)};
// The arc begins where the upright meets its circle: 231.3° = 180° + acos(0.15 / 0.24).
inline constexpr std::array kFive{LineStroke(0.12, 0.07, 0.46, 0.07), LineStroke(0.12, 0.07, 0.10, 0.503),
                                  ArcStroke(0.25, 0.69, 0.24, 231.3, 505)};
// The stem's circle touches the bowl at its leftmost point and passes through (0.43, 0.10).
inline constexpr std::array kSix{ArcStroke(0.28, 0.71, 0.22, 0, 360),
                                 ArcStroke(0.7478, 0.71, 0.6878, 180, 242.5)};
inline constexpr std::array kSeven{LineStroke(0.07, 0.07, 0.49, 0.07), LineStroke(0.49, 0.07, 0.21, 0.93)};
inline constexpr std::array kEight{ArcStroke(0.28, 0.27, 0.20, 0, 360), ArcStroke(0.28, 0.70, 0.23, 0, 360)};
// Six, turned half round.
inline constexpr std::array kNine{ArcStroke(0.28, 0.29, 0.22, 0, 360),
                                  ArcStroke(-0.1878, 0.29, 0.6878, 0, 62.5)};
inline constexpr std::array kMinus{LineStroke(0.10, 0.50, 0.46, 0.50)};

} // namespace glyphs

inline constexpr std::size_t kMinusGlyph = 10;
inline constexpr std::size_t kGlyphCount = 11;

/// The strokes of a glyph: 0 to 9 are the digits, `kMinusGlyph` the minus sign.
[[nodiscard]] constexpr std::span<const Stroke> StrokesOf(std::size_t glyph) noexcept
{
    constexpr std::array<std::span<const Stroke>, kGlyphCount> kGlyphs{
        glyphs::kZero, glyphs::kOne,   glyphs::kTwo,   glyphs::kThree, glyphs::kFour, glyphs::kFive,
        glyphs::kSix,  glyphs::kSeven, glyphs::kEight, glyphs::kNine,  glyphs::kMinus};
    return kGlyphs[glyph];
}

/// Where the plate and its cells lie, in pixels of the upright picture.
struct NumberLayout {
    std::uint32_t left = 0, top = 0;     ///< of the plate; `left` is even
    std::uint32_t width = 0, height = 0; ///< of the plate; `width` is even
    std::uint32_t digitHeight = 0;       ///< 0 where there is no room for any number
    std::uint32_t advance = 0;           ///< width of a cell
    std::uint32_t marginX = 0, marginY = 0;

    [[nodiscard]] std::uint32_t CellLeft(std::uint32_t index) const noexcept
    {
        return left + marginX + index * advance;
    }
    [[nodiscard]] std::uint32_t CellTop() const noexcept { return top + marginY; }
    /// From a cell's left edge to the left edge of the digit's box.
    [[nodiscard]] double InkOffset() const noexcept { return (advance - kGlyphInkWidth * digitHeight) / 2; }
};

namespace layout {

inline constexpr double kLargestDigits = 16384; // pixels; no buffer of 2 GiB holds larger ones

/// A fraction of an extent in whole pixels, 0 for what is no number and never past the extent.
[[nodiscard]] inline std::uint32_t Part(float fraction, std::uint32_t extent) noexcept
{
    const double pixels = std::floor(static_cast<double>(fraction) * extent + 0.5);
    return pixels > 0 ? static_cast<std::uint32_t>(std::min(pixels, static_cast<double>(extent))) : 0;
}

[[nodiscard]] inline std::uint32_t AtLeastOne(double pixels) noexcept
{
    return std::max(1U, static_cast<std::uint32_t>(std::floor(pixels + 0.5)));
}

[[nodiscard]] inline NumberLayout WithDigits(std::uint32_t digitHeight, std::uint32_t characters) noexcept
{
    NumberLayout result;
    result.digitHeight = digitHeight;
    result.advance = AtLeastOne(kGlyphAdvance * digitHeight);
    result.marginX = AtLeastOne(kPlateMarginX * digitHeight);
    result.marginY = AtLeastOne(kPlateMarginY * digitHeight);
    result.width = (characters * result.advance + 2 * result.marginX + 1) / 2 * 2;
    result.height = digitHeight + 2 * result.marginY;
    return result;
}

} // namespace layout

/// The place of a number of `characters` characters (1..11).
///
/// The plate begins at the given fractions of the frame and the digits have the given fraction of its
/// height, all to the nearest pixel; both shrink until the plate ends inside the frame. It begins and ends on
/// even pixels, so that in 4:2:2 it shares no chroma with the picture beside it. [thread-safe]
[[nodiscard]] inline NumberLayout LayOutNumber(std::uint32_t frameWidth, std::uint32_t frameHeight,
                                               std::uint32_t characters, float textHeight, float leftFraction,
                                               float topFraction) noexcept
{
    const std::uint32_t left = layout::Part(leftFraction, frameWidth) / 2 * 2;
    const std::uint32_t top = layout::Part(topFraction, frameHeight);
    const std::uint32_t roomX = frameWidth - left;
    const std::uint32_t roomY = frameHeight - top;
    const double largest =
        std::min({layout::kLargestDigits, static_cast<double>(roomY), static_cast<double>(roomX)});
    auto digitHeight = static_cast<std::uint32_t>(
        std::min(static_cast<double>(layout::Part(textHeight, frameHeight)), largest));
    for (; digitHeight > 0; --digitHeight) {
        NumberLayout result = layout::WithDigits(digitHeight, characters);
        if (result.width <= roomX && result.height <= roomY) {
            result.left = left;
            result.top = top;
            return result;
        }
    }
    return {};
}

} // namespace pixmill
