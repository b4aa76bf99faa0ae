#include "UncodedWriters.h"

#include "StreamTags.h"

#include <tessel/export/ExportError.h>
#include <tessel/export/convert/V210Packing.h>

#include <fmt/format.h>

#include <cstring>
#include <limits>
#include <string_view>
#include <utility>

namespace tessel::exporting {
namespace {

using importhost::FieldOrder;

/// A packet of one picture, and the place of its next byte.
libav::Packet StartPacket(std::int64_t size, std::int64_t index)
{
    if (size > std::numeric_limits<int>::max() - AV_INPUT_BUFFER_PADDING_SIZE) {
        throw ExportError(fmt::format("a picture of {} bytes is larger than files of this format take", size));
    }
    libav::Packet packet = libav::MakePacket();
    libav::Check(av_new_packet(packet.get(), static_cast<int>(size)), "cannot hold a picture");
    packet->pts = index;
    packet->dts = index;
    packet->duration = 1;
    packet->flags |= AV_PKT_FLAG_KEY;
    return packet;
}

AVCodecParameters& StartDescription(AVStream& stream, const VideoPlan& plan, AVCodecID codec)
{
    AVCodecParameters& parameters = *stream.codecpar;
    parameters.codec_type = AVMEDIA_TYPE_VIDEO;
    parameters.codec_id = codec;
    parameters.format = LibavFormat(plan.conversion.target);
    parameters.width = plan.geometry.width;
    parameters.height = plan.geometry.height;
    SetTags(parameters, plan);
    DescribeRate(stream, plan.geometry);
    stream.start_time = 0;
    return parameters;
}

class V210Writer final : public VideoEncoder {
public:
    explicit V210Writer(VideoPlan plan) : mPlan(std::move(plan)) {}

    void DescribeStream(AVStream& stream) const override
    {
        AVCodecParameters& parameters = StartDescription(stream, mPlan, AV_CODEC_ID_V210);
        parameters.codec_tag = MKTAG('v', '2', '1', '0');
        parameters.bits_per_coded_sample = 20;
        parameters.bits_per_raw_sample = 10;
    }

    void Encode(const Picture& picture, std::int64_t index, const Sink& sink) override
    {
        const libav::Packet packet = StartPacket(V210RowBytes(picture.width) * picture.height, index);
        CopyV210Rows(picture, reinterpret_cast<std::byte*>(packet->data));
        sink(*packet);
    }

    void Finish(const Sink& /*sink*/) override {}

private:
    VideoPlan mPlan;
};

/// The layout by the names that readers of Y4M know; 4:2:0 with the chroma that `ChromaLocation` says.
std::string_view Y4mColorSpace(PictureLayout layout)
{
    switch (layout) {
    case PictureLayout::Yuv444p:
        return "C444 XYSCSS=444";
    case PictureLayout::Yuv444p16:
        return "C444p16 XYSCSS=444P16";
    case PictureLayout::Yuv422p:
        return "C422 XYSCSS=422";
    case PictureLayout::Yuv422p10:
        return "C422p10 XYSCSS=422P10";
    case PictureLayout::Yuv420p:
        return "C420mpeg2 XYSCSS=420MPEG2";
    case PictureLayout::Yuv411p:
        return "C411 XYSCSS=411";
    default:
        throw ExportError("Y4M files have no name for this picture's layout");
    }
}

std::string Y4mHeader(const VideoPlan& plan)
{
    const PictureGeometry& geometry = plan.geometry;
    char order = 'p';
    if (geometry.order != FieldOrder::Progressive) {
        order = geometry.order == FieldOrder::UpperFirst ? 't' : 'b';
    }
    const bool knowsAspect = geometry.aspectNumerator != 0;
    return fmt::format("YUV4MPEG2 W{} H{} F{}:{} I{} A{}:{} {} XCOLORRANGE={}\n", geometry.width,
                       geometry.height, geometry.rateNumerator, geometry.rateDenominator, order,
                       geometry.aspectNumerator, knowsAspect ? geometry.aspectDenominator : 0,
                       Y4mColorSpace(plan.conversion.target), plan.tags.fullRange ? "FULL" : "LIMITED");
}

class Y4mWriter final : public VideoEncoder {
public:
    explicit Y4mWriter(const VideoPlan& plan)
        : mPlan(plan), mBeforePicture(Y4mHeader(plan) + std::string(kFrame))
    {
    }

    void DescribeStream(AVStream& stream) const override
    {
        static_cast<void>(StartDescription(stream, mPlan, AV_CODEC_ID_RAWVIDEO));
    }

    void Encode(const Picture& picture, std::int64_t index, const Sink& sink) override
    {
        const LayoutInfo& info = InfoOf(picture.layout);
        const auto sampleBytes = static_cast<std::int64_t>(info.components[0].step);
        auto size = static_cast<std::int64_t>(mBeforePicture.size());
        for (int plane = 0; plane < info.planes; ++plane) {
            const PlaneSize planeSize = SizeOfPlane(info, plane, picture.width, picture.height);
            size += sampleBytes * planeSize.width * planeSize.height;
        }
        const libav::Packet packet = StartPacket(size, index);
        std::uint8_t* next = packet->data;
        std::memcpy(next, mBeforePicture.data(), mBeforePicture.size());
        next += mBeforePicture.size();
        for (int plane = 0; plane < info.planes; ++plane) {
            const PlaneSize planeSize = SizeOfPlane(info, plane, picture.width, picture.height);
            const auto rowBytes = static_cast<std::size_t>(sampleBytes * planeSize.width);
            const auto place = static_cast<std::size_t>(plane);
            for (std::int32_t y = 0; y < planeSize.height; ++y) {
                std::memcpy(next, picture.planes[place] + y * picture.rowBytes[place], rowBytes);
                next += rowBytes;
            }
        }
        mBeforePicture = kFrame;
        sink(*packet);
    }

    void Finish(const Sink& /*sink*/) override {}

private:
    static constexpr std::string_view kFrame = "FRAME\n";

    VideoPlan mPlan;
    std::string mBeforePicture; ///< the file's header, too, before the first
};

} // namespace

std::unique_ptr<VideoEncoder> MakeV210Writer(const VideoPlan& plan)
{
    return std::make_unique<V210Writer>(plan);
}

std::unique_ptr<VideoEncoder> MakeY4mWriter(const VideoPlan& plan)
{
    return std::make_unique<Y4mWriter>(plan);
}

} // namespace tessel::exporting
