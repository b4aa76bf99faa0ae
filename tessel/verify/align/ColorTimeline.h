/// Which frame a picture shows, by colours that move from frame to frame.
#pragma once

#include "Placement.h"

#include <tessel/export/SignalSource.h>
#include <tessel/verify/read/MovieFacts.h>
#include <tessel/verify/reference/ClipPictures.h>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace tessel::verify::align {

/// Codes at fixed places of a picture. Pictures whose signatures are alike look alike.
using ColorSignature = std::vector<float>;

/// What may have been done to all colours: three codes in 8-bit units, as they should be and as they came back.
using ColorChange = std::function<std::array<double, 3>(const std::array<double, 3>&)>;

/// Where on the way through the clip a signature stands.
struct ColorReading {
    double frame = 0;       ///< of the clip, with its fraction
    double distance = 0;    ///< root of the mean square to the clip's colours there, in codes
    double uncertainty = 0; ///< of `frame`, one standard deviation
};

/// The clip's colours as a line through the space of signatures, in the movie's own codes.
/// Threads: one object, one thread at a time.
class ColorTimeline {
public:
    /// Renders up to three dozen frames of the clip as `movie` should hold them.
    ColorTimeline(const exporting::SignalSource& clip, const reference::ClipFacts& facts,
                  const read::PictureFacts& movie);

    /// Made of signatures that are known: those of frames `step` apart, from frame 0 on, the last one at
    /// `frameCount` - 1.
    ColorTimeline(std::vector<ColorSignature> keys, std::int64_t frameCount);

    /// Whether colours move enough from frame to frame to tell one from the next.
    [[nodiscard]] bool Tells() const noexcept;

    /// The signature of a picture of the movie, the clip's frame stretched over it.
    [[nodiscard]] static ColorSignature SignatureOf(const read::Picture& picture);

    /// The nearest point of the line. Signatures of another size give nothing.
    [[nodiscard]] std::optional<ColorReading> Read(const ColorSignature& signature) const;

    /// The line as it is where all colours were changed in the same way.
    [[nodiscard]] ColorTimeline Changed(const ColorChange& change) const;

    static constexpr int kRows = 96; ///< places from top to bottom

private:
    [[nodiscard]] ColorSignature At(double frame) const;
    [[nodiscard]] double FrameOf(std::size_t key) const noexcept;

    std::int64_t mFrameCount = 0;
    std::vector<ColorSignature> mKeys;
};

/// How sure a reading's nearest frame is, 0..1, if errors are normal.
[[nodiscard]] double ConfidenceOf(const ColorReading& reading) noexcept;

} // namespace tessel::verify::align
