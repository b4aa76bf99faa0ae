#include "VideoEncoder.h"

#include "DnxhrHeader.h"
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
#include <new>
#include <span>
#include <string>
#include <string_view>

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

/// A code as streams hold it; 0 for none.
unsigned TagCode(std::string_view tag) noexcept
{
    return tag.size() == 4 ? MKTAG(tag[0], tag[1], tag[2], tag[3]) : 0;
}

/// The plan's options as FFmpeg takes them.
class OptionDictionary {
public:
    explicit OptionDictionary(const EncoderOptions& options)
    {
        for (const auto& [name, value] : options.values) {
            av_dict_set(&mOptions, name.c_str(), value.c_str(), 0);
        }
        if (!options.flags.empty()) {
            av_dict_set(&mOptions, "flags", options.flags.c_str(), 0);
        }
    }
    ~OptionDictionary() { av_dict_free(&mOptions); }
    OptionDictionary(const OptionDictionary&) = delete;
    OptionDictionary& operator=(const OptionDictionary&) = delete;

    [[nodiscard]] AVDictionary** Get() noexcept { return &mOptions; }

    /// The first that the encoder did not take; empty: it took all.
    [[nodiscard]] std::string Refused() const
    {
        const AVDictionaryEntry* entry = av_dict_get(mOptions, "", nullptr, AV_DICT_IGNORE_SUFFIX);
        return entry == nullptr ? std::string() : fmt::format("{}={}", entry->key, entry->value);
    }

private:
    AVDictionary* mOptions = nullptr;
};

class LibavVideoEncoder final : public VideoEncoder {
public:
    LibavVideoEncoder(const VideoPlan& plan, int threadCount) : mPlan(plan)
    {
        const AVCodec* codec = libav::FindEncoder(plan.encoder, plan.codec->name);
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
        if (plan.codec->rule == LayoutRule::KeepRaw) {
            context.codec_tag = TagCode(plan.tag); // by which the encoder arranges samples
        }
        if (plan.headersOutOfBand) {
            context.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        }
        OptionDictionary options(plan.options);
        libav::Check(avcodec_open2(&context, codec, options.Get()),
                     fmt::format("cannot encode {} video of {}x{} at {}/{}", plan.codec->name,
                                 plan.geometry.width, plan.geometry.height, plan.geometry.rateNumerator,
                                 plan.geometry.rateDenominator));
        if (const std::string refused = options.Refused(); !refused.empty()) {
            throw ExportError(fmt::format("this build of FFmpeg's {} encoder does not know the option {}",
                                          plan.encoder, refused));
        }
    }

    void DescribeStream(AVStream& stream) const override
    {
        libav::Check(avcodec_parameters_from_context(stream.codecpar, mContext.get()),
                     "cannot describe the video");
        if (const unsigned tag = TagCode(mPlan.tag); tag != 0) {
            stream.codecpar->codec_tag = tag;
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
        frame->quality = mContext->global_quality; // of encoders with a fixed quantiser
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
            Repair(*packet);
            sink(*packet);
            av_packet_unref(packet.get());
        }
    }

    void Repair(AVPacket& packet) const
    {
        if (mPlan.codec->repair == PacketRepair::None) {
            return;
        }
        libav::Check(av_packet_make_writable(&packet), Doing());
        const std::span bytes =
            std::as_writable_bytes(std::span(packet.data, static_cast<std::size_t>(packet.size)));
        switch (mPlan.codec->repair) {
        case PacketRepair::None:
            break;
        case PacketRepair::DpxColors:
            PatchDpxColors(bytes, mPlan.tags);
            break;
        case PacketRepair::DnxhrColorVolume:
            PatchDnxhrColorVolume(bytes, mPlan.tags);
            break;
        }
    }

    [[nodiscard]] std::string Doing() const { return fmt::format("cannot encode {} video", mPlan.codec->name); }

    VideoPlan mPlan;
    libav::CodecContext mContext;
};

} // namespace

AVPixelFormat LibavFormat(PictureLayout layout)
{
    // FFmpeg knows the packing of v210 as a codec of these.
    const std::string name(InfoOf(layout == PictureLayout::V210 ? PictureLayout::Yuv422p10 : layout).name);
    return av_get_pix_fmt(name.c_str());
}

std::unique_ptr<VideoEncoder> VideoEncoder::Make(const VideoPlan& plan, int threadCount)
{
    libav::TakeOverLogging();
    if (plan.rawWriter == RawWriter::Y4m) {
        return MakeY4mWriter(plan);
    }
    if (plan.encoder.empty()) {
        return MakeV210Writer(plan);
    }
    return std::make_unique<LibavVideoEncoder>(plan, threadCount);
}

} // namespace tessel::exporting
