/// What holds for every frame of a clip, read from its document.
#pragma once

#include "DocumentFacts.h"

#include <kestrel/importhost/Clip.h>

namespace tessel::document {

/// Whether the plug-in writes every byte of every picture of such a clip, so that its frames need not be
/// zeroed first:
/// - field colors: one field always; two fields where the height is even, because each field gets half the
///   rows and an odd last row is left over;
/// - gradient: always, it is painted row by row;
/// - swatches: in 32-bit float BGRA, the only format that a chart is painted in. Neighbouring swatches and
///   bands share their borders, from the first row and column to the last;
/// - any other render format paints nothing but the frame number.
[[nodiscard]] bool PaintsWholeFrame(const importhost::ClipDescription& description, const DocumentFacts& facts);

/// Whether every frame of such a clip shows the same picture: no number is printed and nothing moves. Of the
/// render formats the gradient alone moves; those that the plug-in does not know paint nothing.
[[nodiscard]] bool IsStill(const DocumentFacts& facts) noexcept;

} // namespace tessel::document
