/// Sound from a source in requests that always fall on the same positions, so that the same samples come out
/// however they are asked for.
#pragma once

#include "SignalSource.h"

#include <cstdint>
#include <vector>

namespace tessel::exporting {

/// Samples in one request: the smallest multiple of 0.1 s that is a whole number of samples, 2 s at most, else
/// one second's samples. At the usual rates the tones have whole cycles in it.
/// @param sampleRate  whole samples per second, 1 or more
[[nodiscard]] std::int64_t AudioBlockSize(std::int32_t sampleRate) noexcept;

/// The sample at which frame `frame` starts: its time in samples, rounded to the nearest. The clip's end is
/// the start of the frame behind the last.
[[nodiscard]] std::int64_t FrameStartSample(std::int64_t frame, std::int32_t rateNumerator,
                                            std::int32_t rateDenominator, std::int32_t sampleRate) noexcept;

/// Reads a source's sound in blocks aligned to sample 0. Threads: one object, one thread at a time.
class AudioBlockReader {
public:
    /// @param source      borrowed
    /// @param sampleRate  whole samples per second
    AudioBlockReader(const SignalSource& source, std::int32_t sampleRate, std::int32_t channelCount);

    /// Up to `count` samples from `position` on, fewer at a block's end; `Channel` then gives them.
    /// @return how many: at least 1 for a positive `count`
    [[nodiscard]] std::int64_t Read(std::int64_t position, std::int64_t count);

    /// The samples of the last `Read`; valid until the next one.
    [[nodiscard]] const float* Channel(std::int32_t channel) const noexcept;

private:
    const SignalSource& mSource;
    std::int64_t mBlockSize;
    std::int64_t mBlock = -1; ///< index of the block in memory
    std::int64_t mOffset = 0; ///< of the last read inside it
    std::vector<std::vector<float>> mChannels;
    std::vector<float*> mPointers;
};

} // namespace tessel::exporting
