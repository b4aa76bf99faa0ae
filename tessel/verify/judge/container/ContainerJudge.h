/// Compares the facts that a movie's container and codec state with the clip's.
#pragma once

#include <tessel/verify/align/Alignment.h>
#include <tessel/verify/read/MovieFacts.h>
#include <tessel/verify/reference/ClipPictures.h>
#include <tessel/verify/report/Findings.h>

#include <cstdint>
#include <optional>

namespace tessel::verify::judge {

/// Where chroma was measured to lie, in luma samples right of and below the place where the clip's conversion
/// has it; nothing for an axis where that is not visible.
struct ChromaShift {
    std::optional<double> right;
    std::optional<double> down;
};

struct ContainerCase {
    const reference::ClipFacts& clip;
    const read::MovieFacts& movie;
    const align::Alignment& alignment; ///< its times
    std::int64_t soundSamples = 0;     ///< decoded, per channel
    bool isStrict = false;             ///< what the movie cannot say or carry is a fault, not a note
    ChromaShift chroma{};
};

/// Puts findings of all `container.` checks.
void JudgeContainer(const ContainerCase& given, Findings& findings);

} // namespace tessel::verify::judge
