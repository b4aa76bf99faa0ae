/// Reads the frame numbers that clips print into their pictures.
#pragma once

#include "Placement.h"

#include <tessel/verify/read/Movie.h>

#include <cstdint>
#include <optional>

namespace tessel::verify::align {

/// One attempt at a printed number.
struct Reading {
    std::int64_t number = 0;
    double confidence = 0; ///< 0..1: how sure the number is, given that one stands there
    double likeness = 0;   ///< -1..1: how like printed digits the place looks (mean correlation)
    double weakest = 0;    ///< the likeness of the digit that is least like one
    double contrast = 0;   ///< between ink and plate, as a share of the code range
    int hidden = 0;        ///< leading digits that lie outside the picture, and count as zeros

    /// Whether the reading counts.
    [[nodiscard]] bool IsReadable() const noexcept;
};

/// Knows where a clip of a given size prints its numbers and what the digits look like. Each digit's place is
/// sampled on a fixed grid and compared with the ten shapes by normalised correlation, which levels, gains and
/// most curves do not touch; the confidence is the likelihood of the best shape against the second.
/// Threads: [thread-safe].
class NumberReader {
public:
    /// @param digits  how many the numbers have: 6, or more for clips of a million frames
    NumberReader(int clipWidth, int clipHeight, int digits = 6);

    /// False for frames too small to print a number on.
    [[nodiscard]] bool HasRoom() const noexcept { return mDigitHeight > 0; }

    /// Where the plate is, in the clip's pixels.
    [[nodiscard]] Box Plate() const noexcept { return mPlate; }

    /// Inside the plate and beside its digits: black. Empty where there is no room for a number.
    [[nodiscard]] Box BlackSpot() const noexcept;

    /// Inside the upright stroke of a leading zero: white.
    [[nodiscard]] Box InkSpot() const noexcept;

    /// @param luma  Y', or G of a picture without Y'
    [[nodiscard]] Reading Read(const read::ComponentView& luma, const Placement& placement) const;

    /// The same on every second row alone, from `parity` on.
    [[nodiscard]] Reading ReadField(const read::ComponentView& luma, const Placement& placement,
                                    int parity) const;

    /// How like the digits of `number` the place looks: the mean correlation, -1..1.
    [[nodiscard]] double Likeness(const read::ComponentView& luma, const Placement& placement,
                                  std::int64_t number) const;

    /// Looks for the plate where its place is not known: tries orientations, crops, and scales from 0.4 to 2.5
    /// of the one that fills the picture. Cost: as much as decoding some ten pictures.
    /// @return the best placement with a readable number
    [[nodiscard]] std::optional<Placement> Search(const read::ComponentView& luma) const;

    /// Moves and scales `start` until the digits of `number` fit best.
    [[nodiscard]] Placement Refine(const read::ComponentView& luma, const Placement& start,
                                   std::int64_t number) const;

    static constexpr int kGridX = 10; ///< samples across a cell
    static constexpr int kGridY = 16; ///< samples down a cell

private:
    struct Cell;
    struct Ink;
    [[nodiscard]] Ink InkOf(std::int64_t number, int cells) const;
    [[nodiscard]] Placement Refine(const read::ComponentView& luma, const Placement& start,
                                   const Ink& ink) const;
    [[nodiscard]] static double Likeness(const read::ComponentView& luma, const Placement& placement,
                                         const Ink& ink);
    [[nodiscard]] Cell SampleCell(const read::ComponentView& luma, const Placement& placement, int index) const;

    int mClipWidth = 0;
    int mClipHeight = 0;
    int mDigits = 0;
    std::uint32_t mDigitHeight = 0;
    double mAdvance = 0;
    double mCellLeft = 0;
    double mCellTop = 0;
    Box mPlate;
};

/// Y', or G where the picture has R'G'B'.
[[nodiscard]] const read::ComponentView& LumaOf(const read::Picture& picture) noexcept;

} // namespace tessel::verify::align
