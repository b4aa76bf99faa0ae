/// FFmpeg's objects, owned; its error codes, as exceptions.
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/frame.h>
}

#include <memory>
#include <string>
#include <string_view>

namespace tessel::exporting::libav {

struct Free {
    void operator()(AVCodecContext* context) const noexcept { avcodec_free_context(&context); }
    void operator()(AVFrame* frame) const noexcept { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const noexcept { av_packet_free(&packet); }
    void operator()(AVFormatContext* context) const noexcept { avformat_free_context(context); }
    void operator()(AVIOContext* context) const noexcept;
};

struct CloseInput {
    void operator()(AVFormatContext* context) const noexcept { avformat_close_input(&context); }
};

using CodecContext = std::unique_ptr<AVCodecContext, Free>;
using Frame = std::unique_ptr<AVFrame, Free>;
using Packet = std::unique_ptr<AVPacket, Free>;
using FormatContext = std::unique_ptr<AVFormatContext, Free>;
using InputContext = std::unique_ptr<AVFormatContext, CloseInput>;
using IoContext = std::unique_ptr<AVIOContext, Free>;

/// @throws std::bad_alloc @{
[[nodiscard]] Packet MakePacket();
[[nodiscard]] Frame MakeFrame();
[[nodiscard]] CodecContext MakeCodecContext(const AVCodec* codec);
/// @}

/// @param name  as a person chose the codec
/// @throws ExportError  where the encoder is not built into FFmpeg's libraries
[[nodiscard]] const AVCodec* FindEncoder(std::string_view encoder, std::string_view name);

/// FFmpeg's words for a negative result, and the last error it logged on this thread since the last call.
[[nodiscard]] std::string Explain(int result);

/// Keeps FFmpeg from writing to standard error; what it logs as an error goes into `Explain`. [thread-safe]
void TakeOverLogging();

/// @return `result` where it is not negative. @throws ExportError "`doing`: why", std::bad_alloc
int Check(int result, const std::string& doing);

} // namespace tessel::exporting::libav
