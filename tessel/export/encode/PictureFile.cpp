#include "PictureFile.h"

#include "VideoEncoder.h"

#include <tessel/export/ExportError.h>

#include <fmt/format.h>

#include <cstring>
#include <limits>

namespace tessel::exporting {

PictureFileCheck::PictureFileCheck(const VideoPlan& plan) : mPlan(plan)
{
    const AVCodec* decoder = avcodec_find_decoder(libav::FindEncoder(plan.encoder, plan.codec->name)->id);
    if (decoder == nullptr) {
        throw ExportError(
            fmt::format("this build of FFmpeg's libraries does not read {} pictures", plan.codec->name));
    }
    libav::TakeOverLogging();
    mDecoder = libav::MakeCodecContext(decoder);
    mDecoder->thread_count = 1; // a packet then gives its picture at once
    mDecoder->err_recognition = AV_EF_CRCCHECK;
    if (decoder->id != AV_CODEC_ID_TIFF) { // whose decoder would also refuse tags that it does not know
        mDecoder->err_recognition |= AV_EF_EXPLODE;
    }
    libav::Check(avcodec_open2(mDecoder.get(), decoder, nullptr), "cannot read pictures");
}

std::string PictureFileCheck::ProblemOf(std::span<const std::byte> file)
{
    std::string no = fmt::format("is no whole {} picture", mPlan.codec->title);
    if (file.empty() || file.size() > std::numeric_limits<int>::max() - AV_INPUT_BUFFER_PADDING_SIZE) {
        return no;
    }
    const libav::Packet packet = libav::MakePacket();
    libav::Check(av_new_packet(packet.get(), static_cast<int>(file.size())), "cannot hold a picture");
    std::memcpy(packet->data, file.data(), file.size());
    const libav::Frame frame = libav::MakeFrame();
    if (avcodec_send_packet(mDecoder.get(), packet.get()) < 0 ||
        avcodec_receive_frame(mDecoder.get(), frame.get()) < 0 || (frame->flags & AV_FRAME_FLAG_CORRUPT) != 0) {
        return no;
    }
    if (frame->width != mPlan.geometry.width || frame->height != mPlan.geometry.height) {
        return fmt::format("is {}x{}, not {}x{}", frame->width, frame->height, mPlan.geometry.width,
                           mPlan.geometry.height);
    }
    return frame->format == LibavFormat(mPlan.conversion.target)
               ? std::string()
               : fmt::format("does not hold {} pixels", InfoOf(mPlan.conversion.target).name);
}

} // namespace tessel::exporting
