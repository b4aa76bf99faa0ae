/// Pictures to packets.
#pragma once

#include "LibavHandles.h"

#include <tessel/export/convert/Picture.h>
#include <tessel/export/plan/VideoPlan.h>

#include <functional>
#include <memory>

namespace tessel::exporting {

/// FFmpeg's name for a layout; `AV_PIX_FMT_YUV422P10` for v210, whose packing is a codec there.
[[nodiscard]] AVPixelFormat LibavFormat(PictureLayout layout);

/// Threads: one object, one thread at a time.
class VideoEncoder {
public:
    /// Takes packets with times in units of one frame; stream index not set.
    using Sink = std::function<void(AVPacket& packet)>;

    /// @param plan           its conversion's target is the layout of the pictures to come
    /// @param threadCount    for codecs that use threads; 1 or more
    /// @throws ExportError   where the codec is not built into FFmpeg's libraries or refuses
    [[nodiscard]] static std::unique_ptr<VideoEncoder> Make(const VideoPlan& plan, int threadCount);

    VideoEncoder() = default;
    VideoEncoder(const VideoEncoder&) = delete;
    VideoEncoder& operator=(const VideoEncoder&) = delete;
    virtual ~VideoEncoder() = default;

    /// What the muxer must know of the stream.
    virtual void DescribeStream(AVStream& stream) const = 0;
    virtual void Encode(const Picture& picture, std::int64_t index, const Sink& sink) = 0;
    /// The packets still inside.
    virtual void Finish(const Sink& sink) = 0;
};

} // namespace tessel::exporting
