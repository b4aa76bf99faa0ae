#include "VideoEncoder.h"

#include "DpxHeader.h"
#include "StreamTags.h"
#include "UncodedWriters.h"

#include <tessel/export/ExportError.h>

#include <fmt/format.h>

extern "C" {
#include <libavutil/dict.h>
#include <libavutil/imgutils.h>
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <array>
#include <new>
#include <span>

namespace tessel::exporting {
namespace {

using importhost::FieldOrder;

/// An AVFrame's buffer that keeps a picture's owner alive.
AVBufferRef* ShareOwner(const Picture& picture)
{
    auto owner = std::make_unique<std::shared_ptr<const void>>(picture.owner);
    const auto release = [](void* opaque, std::uint8_t* /*data*/) {
        const std::unique_ptr<std::shared_ptr<const void>> last(
            static_cast<std::shared_ptr<const void>*>(opaque));
    };
    // The size only matters to those who write into buffers; read-only ones are copied first.
    AVBufferRef* buffer = av_buffer_create(reinterpret_cast<std::uint8_t*>(picture.planes[0]), 1, release,
                                           owner.get(), AV_BUFFER_FLAG_READONLY);
    if (buffer == nullptr) {
        throw std::bad_alloc();
    }
    static_cast<void>(owner.release());
    return buffer;
}

const AVCodec* FindEncoder(VideoCodec codec, PictureLayout layout)
{
    const char* name = nullptr;
    switch (codec) {
    case VideoCodec::Ffv1:
        name = "ffv1";
        break;
    case VideoCodec::Raw:
        name = "rawvideo";
        break;
    case VideoCodec::V210:
        break;
    case VideoCodec::V408:
        name = InfoOf(layout).HasAlpha() ? "v408" : "v308";
        break;
    case VideoCodec::ProRes:
        name = "prores_ks";
        break;
    case VideoCodec::Png:
        name = "png";
        break;
    case VideoCodec::Tiff:
        name = "tiff";
        break;
    case VideoCodec::Dpx:
        name = "dpx";
        break;
    case VideoCodec::Exr:
        name = "exr";
        break;
    case VideoCodec::H264:
        name = "libx264";
        break;
    case VideoCodec::Mpeg2:
        name = "mpeg2video";
        break;
    case VideoCodec::Dv:
        name = "dvvideo";
        break;
    }
    const AVCodec* found = name == nullptr ? nullptr : avcodec_find_encoder_by_name(name);
    if (found == nullptr) {
        throw ExportError(fmt::format("this build of FFmpeg's libraries has no {} encoder ({})", NameOf(codec),
                                      name == nullptr ? "none" : name));
    }
    return found;
}

/// Options of one codec, beyond what all share.
void SetCodecOptions(AVCodecContext& context, const VideoPlan& plan, AVDictionary** options)
{
    const bool isInterlaced = plan.geometry.order != FieldOrder::Progressive;
    switch (plan.codec) {
    case VideoCodec::Ffv1:
        context.level = 3;
        context.gop_size = 1;
        av_dict_set(options, "slicecrc", "1", 0);
        break;
    case VideoCodec::ProRes:
        // 4444 with 16-bit alpha, 4444 without, 422 HQ.
        av_dict_set(options, "profile", InfoOf(plan.conversion.target).chromaShiftX == 0 ? "4444" : "hq", 0);
        av_dict_set(options, "alpha_bits", InfoOf(plan.conversion.target).HasAlpha() ? "16" : "0", 0);
        av_dict_set(options, "vendor", "apl0", 0); // readers that know no other
        break;
    case VideoCodec::Png:
        av_dict_set(options, "pred", "up", 0); // rows resemble the rows above in test pictures
        context.compression_level = 3;
        break;
    case VideoCodec::Tiff:
        av_dict_set(options, "compression_algo", "deflate", 0);
        break;
    case VideoCodec::Exr:
        av_dict_set(options, "compression", "zip16", 0);
        break;
    case VideoCodec::H264:
        av_dict_set(options, "crf", "16", 0);
        av_dict_set(options, "preset", "medium", 0);
        if (isInterlaced) {
            av_dict_set(options, "x264-params",
                        plan.geometry.order == FieldOrder::UpperFirst ? "tff=1" : "bff=1", 0);
        }
        break;
    case VideoCodec::Mpeg2:
        // Intra pictures at a fixed fine quantiser.
        context.gop_size = 0;
        context.flags |= AV_CODEC_FLAG_QSCALE;
        context.global_quality = FF_QP2LAMBDA * 2;
        context.qmax = 28; // the most that the non-linear scale knows
        av_dict_set(options, "non_linear_quant", "1", 0);
        av_dict_set(options, "intra_vlc", "1", 0);
        break;
    case VideoCodec::Raw:
    case VideoCodec::V210:
    case VideoCodec::V408:
    case VideoCodec::Dpx:
    case VideoCodec::Dv:
        break;
    }
    if (isInterlaced && plan.codec != VideoCodec::Ffv1) {
        context.flags |= AV_CODEC_FLAG_INTERLACED_DCT | AV_CODEC_FLAG_INTERLACED_ME;
    }
}

/// The tag of raw layouts, where the container has a better one than FFmpeg's own default.
unsigned RawTag(PictureLayout layout, Container container) noexcept
{
    if (container == Container::Mov && layout == PictureLayout::Uyvy) {
        return MKTAG('2', 'v', 'u', 'y');
    }
    if (container == Container::Mov && layout == PictureLayout::Yuyv) {
        return MKTAG('y', 'u', 'v', 's');
    }
    return 0;
}

class LibavVideoEncoder final : public VideoEncoder {
public:
    LibavVideoEncoder(const VideoPlan& plan, Container container, int threadCount)
        : mPlan(plan), mRawTag(plan.codec == VideoCodec::Raw ? RawTag(plan.conversion.target, container) : 0)
    {
        const AVCodec* codec = FindEncoder(plan.codec, plan.conversion.target);
        mContext = libav::MakeCodecContext(codec);
        AVCodecContext& context = *mContext;
        context.width = plan.geometry.width;
        context.height = plan.geometry.height;
        context.pix_fmt = LibavFormat(plan.conversion.target);
        context.time_base = {plan.geometry.rateDenominator, plan.geometry.rateNumerator};
        context.framerate = {plan.geometry.rateNumerator, plan.geometry.rateDenominator};
        context.sample_aspect_ratio = PixelAspect(plan.geometry);
        context.field_order = LibavOrder(plan.geometry.order);
        constexpr int kMostCodecThreads = 64; // FFmpeg's encoders refuse more
        context.thread_count = std::min(threadCount, kMostCodecThreads);
        context.strict_std_compliance = FF_COMPLIANCE_UNOFFICIAL;
        context.flags |= AV_CODEC_FLAG_BITEXACT;
        SetTags(context, plan);
        const bool outOfBandHeaders =
            container == Container::Mkv || container == Container::Mov || container == Container::Mp4;
        if (outOfBandHeaders) {
            context.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        }
        AVDictionary* options = nullptr;
        SetCodecOptions(context, plan, &options);
        const int result = avcodec_open2(&context, codec, &options);
        av_dict_free(&options);
        libav::Check(result, fmt::format("cannot encode {} video of {}x{} at {}/{}", NameOf(plan.codec),
                                         plan.geometry.width, plan.geometry.height, plan.geometry.rateNumerator,
                                         plan.geometry.rateDenominator));
    }

    void DescribeStream(AVStream& stream) const override
    {
        libav::Check(avcodec_parameters_from_context(stream.codecpar, mContext.get()),
                     "cannot describe the video");
        if (mRawTag != 0) {
            stream.codecpar->codec_tag = mRawTag;
        }
        DescribeRate(stream, mPlan.geometry);
    }

    void Encode(const Picture& picture, std::int64_t index, const Sink& sink) override
    {
        const libav::Frame frame = libav::MakeFrame();
        frame->buf[0] = ShareOwner(picture);
        for (std::size_t plane = 0; plane < 4; ++plane) {
            frame->data[plane] = reinterpret_cast<std::uint8_t*>(picture.planes[plane]);
            frame->linesize[plane] = static_cast<int>(picture.rowBytes[plane]);
        }
        frame->format = mContext->pix_fmt;
        frame->width = picture.width;
        frame->height = picture.height;
        frame->pts = index;
        frame->sample_aspect_ratio = mContext->sample_aspect_ratio;
        frame->interlaced_frame = mPlan.geometry.order == FieldOrder::Progressive ? 0 : 1;
        frame->top_field_first = mPlan.geometry.order == FieldOrder::UpperFirst ? 1 : 0;
        if (mPlan.codec == VideoCodec::Mpeg2) {
            frame->quality = mContext->global_quality;
        }
        SetTags(*frame, mPlan);
        libav::Check(avcodec_send_frame(mContext.get(), frame.get()), Doing());
        Drain(sink);
    }

    void Finish(const Sink& sink) override
    {
        libav::Check(avcodec_send_frame(mContext.get(), nullptr), Doing());
        Drain(sink);
    }

private:
    void Drain(const Sink& sink)
    {
        const libav::Packet packet = libav::MakePacket();
        for (;;) {
            const int result = avcodec_receive_packet(mContext.get(), packet.get());
            if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) {
                return;
            }
            libav::Check(result, Doing());
            packet->duration = 1;
            if (mPlan.codec == VideoCodec::Dpx) {
                libav::Check(av_packet_make_writable(packet.get()), Doing());
                PatchDpxColors(
                    std::as_writable_bytes(std::span(packet->data, static_cast<std::size_t>(packet->size))),
                    mPlan.tags);
            }
            sink(*packet);
            av_packet_unref(packet.get());
        }
    }

    [[nodiscard]] std::string Doing() const
    {
        return fmt::format("cannot encode {} video", NameOf(mPlan.codec));
    }

    VideoPlan mPlan;
    unsigned mRawTag;
    libav::CodecContext mContext;
};

} // namespace

AVPixelFormat LibavFormat(PictureLayout layout) noexcept
{
    static constexpr std::array<AVPixelFormat, 28> kFormats{
        AV_PIX_FMT_BGRA,         AV_PIX_FMT_ARGB,        AV_PIX_FMT_BGR0,         AV_PIX_FMT_0RGB,
        AV_PIX_FMT_RGBA,         AV_PIX_FMT_RGB24,       AV_PIX_FMT_RGBA64LE,     AV_PIX_FMT_RGB48LE,
        AV_PIX_FMT_RGBA64BE,     AV_PIX_FMT_RGB48BE,     AV_PIX_FMT_GBRP10LE,     AV_PIX_FMT_GBRP16LE,
        AV_PIX_FMT_GBRAP16LE,    AV_PIX_FMT_GBRPF32LE,   AV_PIX_FMT_GBRAPF32LE,   AV_PIX_FMT_YUV444P,
        AV_PIX_FMT_YUVA444P,     AV_PIX_FMT_YUV444P10LE, AV_PIX_FMT_YUVA444P10LE, AV_PIX_FMT_YUV444P16LE,
        AV_PIX_FMT_YUVA444P16LE, AV_PIX_FMT_YUV422P,     AV_PIX_FMT_YUV422P10LE,  AV_PIX_FMT_YUV420P,
        AV_PIX_FMT_YUV411P,      AV_PIX_FMT_UYVY422,     AV_PIX_FMT_YUYV422,      AV_PIX_FMT_YUV422P10LE};
    return kFormats[static_cast<std::size_t>(layout)];
}

std::unique_ptr<VideoEncoder> VideoEncoder::Make(const VideoPlan& plan, Container container, int threadCount)
{
    libav::TakeOverLogging();
    if (plan.codec == VideoCodec::V210) {
        return MakeV210Writer(plan);
    }
    if (container == Container::Y4m) {
        return MakeY4mWriter(plan);
    }
    return std::make_unique<LibavVideoEncoder>(plan, container, threadCount);
}

} // namespace tessel::exporting
