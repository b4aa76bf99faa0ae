/// What a render records about pictures and samples, beside the file that it writes.
#pragma once

#include <tessel/export/encode/Digest.h>

#include <cstdint>
#include <functional>
#include <string>

namespace tessel::exporting {

/// Digests of one picture; those that the record does not ask for are empty.
struct PictureDigests {
    Digest coded{};   ///< as the encoder gets it: FFmpeg's raw picture of its layout; v210 as its packet
    Digest painted{}; ///< as the plug-in painted it: rows from top to bottom without what is behind them
};

/// Hears of a render while it runs, in the order of the file, on the thread that called. What a function throws
/// ends the render, and nothing is left of the file. Any function may be empty.
struct RenderRecord {
    std::string algorithm = "SHA256"; ///< as FFmpeg calls it
    bool digestsCoded = false;
    bool digestsPainted = false;
    std::function<void(std::int64_t index, const PictureDigests& digests)> picture{};
    /// @param start  of the samples, from the file's beginning
    std::function<void(std::int64_t start, std::int64_t count, const Digest& digest)> sound{};
    std::function<void()> beforeCommit{}; ///< everything is encoded; the file does not have its name yet
};

} // namespace tessel::exporting
