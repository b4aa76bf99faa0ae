/// A hash of some bytes.
#pragma once

#include <cstdint>
#include <string>

namespace tessel::exporting {

struct Digest {
    std::string hex{};
    std::int64_t bytes = 0; ///< how many
};

} // namespace tessel::exporting
