/// Documents and charts that are made rather than read.
#pragma once

#include <kestrel/qelcore/serialization/Value.h>

#include <string>

namespace tessel::document {

/// A complete document with the settings that a new record has in the plug-in, in canonical form.
[[nodiscard]] std::string NewDocument();

/// The lists of a swatch chart, as documents and swatch files hold them.
struct Chart {
    qelcore::serialization::Value coordinates;
    qelcore::serialization::Value colors;
};

/// Colour bars: a row at 75 %, one at 100 %, grey from black to white in 16 steps of the legal range, and
/// grey from below black to above white in 32 steps of all 8-bit codes.
[[nodiscard]] Chart ColorBars();

} // namespace tessel::document
