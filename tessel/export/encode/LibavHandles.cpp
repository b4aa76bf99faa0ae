#include "LibavHandles.h"

#include <kestrel/qelcore/text/ReasonText.h>
#include <tessel/export/ExportError.h>

#include <fmt/format.h>

extern "C" {
#include <libavutil/error.h>
#include <libavutil/log.h>
#include <libavutil/mem.h>
}

#include <array>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <new>

namespace tessel::exporting::libav {
namespace {

// Codecs and muxers say on their log why they fail, and only a number to their caller.
thread_local std::string tLastError;

void KeepErrors(void* /*context*/, int level, const char* format, va_list arguments)
{
    if (level > AV_LOG_ERROR) {
        return;
    }
    std::array<char, 512> line{};
    std::vsnprintf(line.data(), line.size(), format, arguments);
    try {
        tLastError = line.data();
        while (!tLastError.empty() && (tLastError.back() == '\n' || tLastError.back() == ' ')) {
            tLastError.pop_back();
        }
    } catch (const std::bad_alloc&) {
        tLastError.clear();
    }
}

} // namespace

void Free::operator()(AVIOContext* context) const noexcept
{
    av_freep(&context->buffer);
    avio_context_free(&context);
}

Packet MakePacket()
{
    Packet packet(av_packet_alloc());
    if (!packet) {
        throw std::bad_alloc();
    }
    return packet;
}

Frame MakeFrame()
{
    Frame frame(av_frame_alloc());
    if (!frame) {
        throw std::bad_alloc();
    }
    return frame;
}

CodecContext MakeCodecContext(const AVCodec* codec)
{
    CodecContext context(avcodec_alloc_context3(codec));
    if (!context) {
        throw std::bad_alloc();
    }
    return context;
}

const AVCodec* FindEncoder(std::string_view encoder, std::string_view name)
{
    const AVCodec* found = avcodec_find_encoder_by_name(std::string(encoder).c_str());
    if (found == nullptr) {
        throw ExportError(
            fmt::format("this build of FFmpeg's libraries has no {} encoder ({})", name, encoder));
    }
    return found;
}

std::string Explain(int result)
{
    std::string text = std::move(tLastError);
    tLastError.clear();
    if (text.empty()) {
        std::array<char, AV_ERROR_MAX_STRING_SIZE> buffer{};
        av_strerror(result, buffer.data(), buffer.size());
        text = qelcore::text::ReasonText(std::string(buffer.data()));
    }
    return text;
}

void TakeOverLogging()
{
    static std::once_flag once;
    std::call_once(once, [] { av_log_set_callback(KeepErrors); });
}

int Check(int result, const std::string& doing)
{
    if (result == AVERROR(ENOMEM)) {
        throw std::bad_alloc();
    }
    if (result < 0) {
        throw ExportError(doing + ": " + Explain(result));
    }
    return result;
}

} // namespace tessel::exporting::libav
