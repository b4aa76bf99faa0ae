/// Faults of colour, as broken chains make them: wrong matrices, ranges, transfers, gains, lost chroma.
///
/// Each function changes a picture in place. Faults of R'G'B' work on Y'CbCr pictures through their own matrix,
/// with chroma interpolated between its sites, and the other way round through BT.709.
/// Threads: [any-thread].
#pragma once

#include "WorkPicture.h"

namespace tessel::damage {

enum class RangeFault {
    Squeezed, ///< limited range made once more: 0..1 becomes 16..235 of 255
    Expanded, ///< limited range taken for full: 16..235 of 255 becomes 0..1
};

/// Curves that chains apply once too often or not at all.
enum class TransferFault {
    Twice,   ///< the BT.709 curve on top of the one that is there
    Linear,  ///< the BT.709 curve taken away
    Gamma22, ///< values to the power of 1/2.2 on top
    Gamma24, ///< values to the power of 1/2.4 on top
    Srgb,    ///< the BT.709 curve taken away and the sRGB curve put on
};

/// How chroma is thinned before it comes back in the picture's own layout.
enum class Thinning { To422, To420, To411, To400 };

enum class AlphaFault { Opaque, Transparent, Premultiplied };

/// The codes are made with `wrong` while the file still names the right matrix.
void UseMatrix(WorkPicture& picture, exporting::Matrix wrong);
void ChangeRange(WorkPicture& picture, RangeFault fault);
/// Cuts Y' or R'G'B' to `lowest`..`highest`, chroma to ±0.5.
void Clip(WorkPicture& picture, double lowest, double highest);
/// Red and blue change places.
void SwapRedAndBlue(WorkPicture& picture);
/// Cb and Cr change places.
void SwapChroma(WorkPicture& picture);
void ChangeTransfer(WorkPicture& picture, TransferFault fault);
/// Multiplies R'G'B' by `factor`.
void MultiplyBy(WorkPicture& picture, double factor);
/// Adds `amount` (1 is from black to white) to R'G'B'.
void Add(WorkPicture& picture, double amount);
void ChangeSaturation(WorkPicture& picture, double factor);
/// Turns chroma by `degrees`, from Cb towards Cr.
void TurnHue(WorkPicture& picture, double degrees);
/// Keeps the upper `bits` bits of each code; the rest becomes zero. Floats keep that many bits of 0..1.
void KeepBits(WorkPicture& picture, int bits);
void ThinChroma(WorkPicture& picture, Thinning thinning);
/// Moves chroma to the right and down by so many luma pixels, which may be fractions.
void ShiftChroma(WorkPicture& picture, double right, double down);
void ChangeAlpha(WorkPicture& picture, AlphaFault fault);

} // namespace tessel::damage
