/// The clip's own samples, in the order that files have channels in.
#pragma once

#include <tessel/export/AudioBlocks.h>
#include <tessel/export/SignalSource.h>

#include <cstdint>
#include <string>
#include <vector>

namespace tessel::verify::reference {

/// Samples per channel, full scale 1.
using Samples = std::vector<std::vector<float>>;

/// Reads a clip's sound in any stretches. Threads: one object, one thread at a time. Memory: one block of the
/// host's, whatever the clip's length.
class ClipSound {
public:
    /// @param clip  borrowed; must have sound
    explicit ClipSound(const exporting::SignalSource& clip);

    [[nodiscard]] int Channels() const noexcept { return static_cast<int>(mHostChannels.size()); }
    [[nodiscard]] int SampleRate() const noexcept { return mSampleRate; }
    /// Samples per channel; where the clip has no picture either, 0.
    [[nodiscard]] std::int64_t Length() const noexcept { return mLength; }

    /// Samples outside the clip are zeros. @throws importhost::HostError
    void Read(std::int64_t position, std::int64_t count, Samples& samples);

private:
    int mSampleRate;
    std::vector<std::int32_t> mHostChannels; ///< the clip's channel that is a file's channel 0, 1, ...
    std::int64_t mLength = 0;
    exporting::AudioBlockReader mReader;
};

/// The name of a channel of the file order: "L", "Ls", or "channel 3" where none is usual.
[[nodiscard]] std::string ChannelName(int channel, int channels);

} // namespace tessel::verify::reference
