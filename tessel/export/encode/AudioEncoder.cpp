#include "AudioEncoder.h"

#include <tessel/export/ExportError.h>

#include <fmt/format.h>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/samplefmt.h>
}

#include <algorithm>
#include <cstring>

namespace tessel::exporting {
namespace {

void SetLayout(AVCodecContext& context, const AudioPlan& plan)
{
    const auto count = static_cast<int>(plan.hostChannels.size());
    AVChannelLayout& layout = context.ch_layout;
    switch (plan.layout) {
    case SpeakerLayout::Surround51: {
        // Side speakers are what PCM and FLAC readers expect of 5.1, back ones what AAC and Opus know.
        const AVChannelLayout side = AV_CHANNEL_LAYOUT_5POINT1;
        const AVChannelLayout back = AV_CHANNEL_LAYOUT_5POINT1_BACK;
        libav::Check(av_channel_layout_copy(&layout, plan.codec->needsNamedLayout ? &back : &side),
                     "cannot set the channel layout");
        return;
    }
    case SpeakerLayout::Mono:
    case SpeakerLayout::Stereo:
        av_channel_layout_default(&layout, count);
        return;
    case SpeakerLayout::None:
        break;
    }
    if (plan.codec->needsNamedLayout) {
        // FFmpeg's default of three channels is 2.1, whose third channel keeps low frequencies alone, and whose
        // AAC has a silent second channel where the first two are alike (FFmpeg 5.1).
        const AVChannelLayout frontThree = AV_CHANNEL_LAYOUT_SURROUND;
        if (count == 3) {
            libav::Check(av_channel_layout_copy(&layout, &frontThree), "cannot set the channel layout");
        } else {
            av_channel_layout_default(&layout, count);
        }
        return;
    }
    layout.order = AV_CHANNEL_ORDER_UNSPEC;
    layout.nb_channels = count;
}

/// Integers as wide as the codec's, or floats, interleaved where the codec takes them so.
AVSampleFormat SampleFormatFor(const AVCodec& codec, int bits) noexcept
{
    if (bits != 0) {
        return bits == 16 ? AV_SAMPLE_FMT_S16 : AV_SAMPLE_FMT_S32;
    }
    for (const AVSampleFormat* format = codec.sample_fmts; format != nullptr && *format != AV_SAMPLE_FMT_NONE;
         ++format) {
        if (*format == AV_SAMPLE_FMT_FLT) {
            return AV_SAMPLE_FMT_FLT;
        }
    }
    return AV_SAMPLE_FMT_FLTP;
}

void CheckSampleRate(const AVCodec& codec, const AudioPlan& plan)
{
    if (codec.supported_samplerates == nullptr) {
        return;
    }
    std::string valid;
    for (const int* rate = codec.supported_samplerates; *rate != 0; ++rate) {
        if (*rate == plan.sampleRate) {
            return;
        }
        valid += fmt::format("{}{}", valid.empty() ? "" : ", ", *rate);
    }
    throw ExportError(fmt::format("{} does not take {} samples per second; it takes {}", plan.codec->name,
                                  plan.sampleRate, valid));
}

} // namespace

AudioEncoder::AudioEncoder(const AudioPlan& plan)
    : mPlan(plan), mQuantizer(std::max(plan.codec->bits, 16), plan.dither),
      mChannelCount(plan.hostChannels.size())
{
    libav::TakeOverLogging();
    const AVCodec* codec = libav::FindEncoder(plan.codec->encoder, plan.codec->name);
    CheckSampleRate(*codec, plan);
    mContext = libav::MakeCodecContext(codec);
    AVCodecContext& context = *mContext;
    context.sample_rate = plan.sampleRate;
    context.time_base = {1, plan.sampleRate};
    context.sample_fmt = SampleFormatFor(*codec, plan.codec->bits);
    context.bits_per_raw_sample = plan.codec->bits;
    context.flags |= AV_CODEC_FLAG_BITEXACT;
    if (plan.codec->bitsPerChannel != 0) {
        context.bit_rate = plan.codec->bitsPerChannel * static_cast<std::int64_t>(mChannelCount);
    }
    if (plan.headersOutOfBand) {
        context.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    }
    SetLayout(context, plan);
    libav::Check(avcodec_open2(&context, codec, nullptr),
                 fmt::format("cannot encode {} audio of {} channels at {} Hz", plan.codec->name, mChannelCount,
                             plan.sampleRate));
}

void AudioEncoder::DescribeStream(AVStream& stream) const
{
    libav::Check(avcodec_parameters_from_context(stream.codecpar, mContext.get()), "cannot describe the audio");
    stream.time_base = mContext->time_base;
}

std::int64_t AudioEncoder::SamplesPerPacket() const noexcept
{
    // Sound comes in blocks of 0.1 s or more.
    return mContext->frame_size > 0 ? mContext->frame_size : std::max(mPlan.sampleRate / 10, 1);
}

void AudioEncoder::Encode(const std::vector<const float*>& channels, std::int64_t count,
                          std::int64_t clipPosition, const Sink& sink)
{
    const bool isFloat = mPlan.codec->bits == 0;
    for (std::int64_t i = 0; i < count; ++i) {
        for (std::size_t channel = 0; channel < mChannelCount; ++channel) {
            const float sample = channels[channel][i];
            if (isFloat) {
                mPendingFloats.push_back(sample);
            } else {
                mPendingIntegers.push_back(
                    mQuantizer(sample, clipPosition + i, static_cast<std::int32_t>(channel)));
            }
        }
    }
    // Codecs without a frame size of their own take what there is.
    const std::int64_t frameSize = mContext->frame_size > 0 ? mContext->frame_size : count;
    while (frameSize > 0 && PendingCount() >= frameSize) {
        EncodeFrame(frameSize, sink);
    }
}

void AudioEncoder::Finish(const Sink& sink)
{
    if (const std::int64_t rest = PendingCount(); rest > 0) {
        EncodeFrame(rest, sink);
    }
    libav::Check(avcodec_send_frame(mContext.get(), nullptr), "cannot finish the audio");
    Drain(sink);
}

std::int64_t AudioEncoder::PendingCount() const noexcept
{
    return static_cast<std::int64_t>(std::max(mPendingIntegers.size(), mPendingFloats.size()) / mChannelCount);
}

void AudioEncoder::FillFrame(AVFrame& frame, std::int64_t count)
{
    const std::size_t values = static_cast<std::size_t>(count) * mChannelCount;
    switch (mContext->sample_fmt) {
    case AV_SAMPLE_FMT_S16: {
        auto* samples = reinterpret_cast<std::int16_t*>(frame.data[0]);
        std::transform(mPendingIntegers.begin(), mPendingIntegers.begin() + static_cast<std::ptrdiff_t>(values),
                       samples, [](std::int32_t value) { return static_cast<std::int16_t>(value); });
        break;
    }
    case AV_SAMPLE_FMT_S32:
        std::memcpy(frame.data[0], mPendingIntegers.data(), values * sizeof(std::int32_t));
        break;
    case AV_SAMPLE_FMT_FLT:
        std::memcpy(frame.data[0], mPendingFloats.data(), values * sizeof(float));
        break;
    default:
        for (std::size_t channel = 0; channel < mChannelCount; ++channel) {
            auto* samples = reinterpret_cast<float*>(frame.extended_data[channel]);
            for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
                samples[i] = mPendingFloats[i * mChannelCount + channel];
            }
        }
        break;
    }
    const auto drop = [values](auto& pending) {
        pending.erase(pending.begin(),
                      pending.begin() + static_cast<std::ptrdiff_t>(std::min(values, pending.size())));
    };
    drop(mPendingIntegers);
    drop(mPendingFloats);
}

void AudioEncoder::EncodeFrame(std::int64_t count, const Sink& sink)
{
    const libav::Frame frame = libav::MakeFrame();
    frame->format = mContext->sample_fmt;
    frame->sample_rate = mContext->sample_rate;
    frame->nb_samples = static_cast<int>(count);
    libav::Check(av_channel_layout_copy(&frame->ch_layout, &mContext->ch_layout), "cannot hold the audio");
    libav::Check(av_frame_get_buffer(frame.get(), 0), "cannot hold the audio");
    FillFrame(*frame, count);
    frame->pts = mPlan.startSample + mWritten;
    mWritten += count;
    libav::Check(avcodec_send_frame(mContext.get(), frame.get()), "cannot encode the audio");
    Drain(sink);
}

void AudioEncoder::Drain(const Sink& sink)
{
    const libav::Packet packet = libav::MakePacket();
    for (;;) {
        const int result = avcodec_receive_packet(mContext.get(), packet.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF) {
            return;
        }
        libav::Check(result, "cannot encode the audio");
        sink(*packet);
        av_packet_unref(packet.get());
    }
}

} // namespace tessel::exporting
