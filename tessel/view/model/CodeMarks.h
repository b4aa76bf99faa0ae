/// Marks that lie over a picture where codes or levels are not allowed.
#pragma once

#include <tessel/export/convert/Picture.h>
#include <tessel/scopes/CodeCheck.h>

namespace tessel::view {

/// A picture of the layout `Bgra` with premultiplied alpha: magenta where a code is reserved, red where one is
/// outside its range, yellow where R', G' or B' is outside the gamut, transparent elsewhere.
[[nodiscard]] exporting::Picture MarksOf(const scopes::CodeFaults& faults);

} // namespace tessel::view
