/// Samples to packets.
#pragma once

#include "LibavHandles.h"

#include <tessel/export/convert/SampleQuantizer.h>
#include <tessel/export/plan/AudioPlan.h>

#include <functional>
#include <vector>

namespace tessel::exporting {

/// Threads: one object, one thread at a time.
class AudioEncoder {
public:
    /// Takes packets with times in samples; stream index not set.
    using Sink = std::function<void(AVPacket& packet)>;

    /// @throws ExportError  where the codec is not built into FFmpeg's libraries or refuses
    explicit AudioEncoder(const AudioPlan& plan);

    void DescribeStream(AVStream& stream) const;

    /// Samples in all packets but the last, or where the codec takes any number, in the fewest that come at
    /// once.
    [[nodiscard]] std::int64_t SamplesPerPacket() const noexcept;

    /// Whether all packets but the last have the same number of samples.
    [[nodiscard]] bool HasPacketLength() const noexcept { return mContext->frame_size > 0; }

    /// @param channels       in the file's order, `count` samples each
    /// @param clipPosition   of the first one, in samples from the clip's start
    void Encode(const std::vector<const float*>& channels, std::int64_t count, std::int64_t clipPosition,
                const Sink& sink);
    /// The rest, a short frame at the end.
    void Finish(const Sink& sink);

private:
    void EncodeFrame(std::int64_t count, const Sink& sink);
    void Drain(const Sink& sink);
    void FillFrame(AVFrame& frame, std::int64_t count);
    [[nodiscard]] std::int64_t PendingCount() const noexcept;

    AudioPlan mPlan;
    libav::CodecContext mContext;
    SampleQuantizer mQuantizer;
    std::size_t mChannelCount;
    std::int64_t mWritten = 0; ///< samples sent to the encoder
    // Interleaved samples that wait until the codec's frame is full, as integers or floats.
    std::vector<std::int32_t> mPendingIntegers;
    std::vector<float> mPendingFloats;
};

} // namespace tessel::exporting
