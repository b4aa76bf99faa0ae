/// Picture files as their decoder reads them.
#pragma once

#include "LibavHandles.h"

#include <tessel/export/plan/VideoPlan.h>

#include <cstddef>
#include <span>
#include <string>

namespace tessel::exporting {

/// Tells whether files are pictures as a plan has them. Threads: one object, one thread at a time.
class PictureFileCheck {
public:
    /// @throws ExportError  where FFmpeg's libraries do not read the plan's codec
    explicit PictureFileCheck(const VideoPlan& plan);

    /// What is wrong with a file, as the end of a sentence that its name begins; empty: nothing. Decodes it, so
    /// that a file which ends too early is found.
    [[nodiscard]] std::string ProblemOf(std::span<const std::byte> file);

private:
    VideoPlan mPlan;
    libav::CodecContext mDecoder;
};

} // namespace tessel::exporting
