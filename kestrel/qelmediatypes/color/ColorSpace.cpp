#include "ColorSpace.h"

namespace qelmediatypes::color {

// ITU-T H.273 calls code 2 "unspecified" in all three of its tables.
ColorSpace::ColorSpace() : baseColorProfile{"Unspecified", {2, 2, 2, 0}} {}

} // namespace qelmediatypes::color
