#include "PartReader.h"

#include "VideoEncoder.h"

#include <kestrel/qelcore/text/PathText.h>
#include <tessel/export/ExportError.h>
#include <tessel/export/files/WholeFile.h>
#include <tessel/export/plan/Container.h>

#include <fmt/format.h>

extern "C" {
#include <libavutil/dict.h>
#include <libavutil/imgutils.h>
}

#include <algorithm>
#include <new>

namespace tessel::exporting {
namespace {

CodedFormat FormatOf(const AVCodecParameters& parameters)
{
    const auto* headers = reinterpret_cast<const std::byte*>(parameters.extradata);
    CodedFormat format{parameters.codec_id, parameters.width, parameters.height};
    if (parameters.codec_id == AV_CODEC_ID_RAWVIDEO) {
        format.pixels = static_cast<AVPixelFormat>(parameters.format);
    }
    // FFmpeg's AVI reader puts a mark of its own here for raw pictures that stand upside down; it is no header
    // of the codec.
    if (parameters.codec_id != AV_CODEC_ID_RAWVIDEO && parameters.extradata_size > 0) {
        format.headers.assign(headers, headers + parameters.extradata_size);
    }
    return format;
}

bool HaveSameHeaders(const CodedFormat& left, const CodedFormat& right) noexcept
{
    const auto& [shorter, longer] = std::minmax(
        left.headers, right.headers, [](const auto& one, const auto& two) { return one.size() < two.size(); });
    // Some containers hold no headers for codecs that repeat them in their packets, some pad to even lengths.
    const bool isPadded = longer.size() == shorter.size() + 1 && longer.back() == std::byte{0};
    return shorter.empty() || ((longer.size() == shorter.size() || isPadded) &&
                               std::equal(shorter.begin(), shorter.end(), longer.begin()));
}

} // namespace

std::string CodedFormat::Text() const
{
    return fmt::format("{}, {}x{}", avcodec_get_name(codec), width, height);
}

CodedFormat FormatOf(const VideoPlan& plan)
{
    const libav::FormatContext nowhere(avformat_alloc_context());
    AVStream* stream = nowhere ? avformat_new_stream(nowhere.get(), nullptr) : nullptr;
    if (stream == nullptr) {
        throw std::bad_alloc();
    }
    VideoEncoder::Make(plan, /*threadCount=*/1)->DescribeStream(*stream);
    return FormatOf(*stream->codecpar);
}

bool FitTogether(const CodedFormat& left, const CodedFormat& right) noexcept
{
    const bool samePixels =
        left.pixels == right.pixels || left.pixels == AV_PIX_FMT_NONE || right.pixels == AV_PIX_FMT_NONE;
    return left.codec == right.codec && left.width == right.width && left.height == right.height &&
           samePixels && HaveSameHeaders(left, right);
}

PartReader::PartReader(const std::filesystem::path& path)
    : mName(QuotedName(path)), mPacket(libav::MakePacket())
{
    libav::TakeOverLogging();
    AVFormatContext* input = avformat_alloc_context();
    if (input == nullptr) {
        throw std::bad_alloc();
    }
    // Packets as they stand in the file: nothing split, put together or worked out. Names are never addresses.
    input->flags |= AVFMT_FLAG_NOPARSE | AVFMT_FLAG_NOFILLIN;
    const int result =
        avformat_open_input(&input, ("file:" + qelcore::text::UTF8Text(path)).c_str(), nullptr, nullptr);
    if (result < 0) { // which has freed the context
        throw ExportError(fmt::format("cannot read {}: {}", mName, libav::Explain(result)));
    }
    mInput.reset(input);
    if (input->nb_streams != 1 || input->streams[0]->codecpar->codec_type != AVMEDIA_TYPE_VIDEO) {
        throw ExportError(fmt::format(
            "{} holds {} streams; a part holds its pictures alone, as 'tessel render --part' writes it", mName,
            input->nb_streams));
    }
}

CodedFormat PartReader::Format()
{
    // MXF's header has the size of whole macroblocks; the first pictures say the right one.
    if (avformat_find_stream_info(mInput.get(), nullptr) < 0) {
        throw ExportError(fmt::format("{} holds no picture that can be read", mName));
    }
    return FormatOf(*mInput->streams[0]->codecpar);
}

std::string PartReader::Comment() const
{
    for (const Container& container : AllContainers()) {
        const std::string key(container.commentKey);
        if (const AVDictionaryEntry* entry = av_dict_get(mInput->metadata, key.c_str(), nullptr, 0)) {
            return entry->value;
        }
    }
    return {};
}

AVPacket* PartReader::Next()
{
    av_packet_unref(mPacket.get());
    const int result = av_read_frame(mInput.get(), mPacket.get());
    if (result == AVERROR_EOF) {
        return nullptr;
    }
    if (result < 0 || (mPacket->flags & AV_PKT_FLAG_CORRUPT) != 0) {
        throw ExportError(fmt::format("{} is damaged{}: render the part again", mName,
                                      result < 0 ? " (" + libav::Explain(result) + ")" : ""));
    }
    return mPacket.get();
}

Picture RawPicture(const AVPacket& packet, const VideoPlan& plan)
{
    Picture picture;
    picture.layout = plan.conversion.target;
    picture.width = plan.geometry.width;
    picture.height = plan.geometry.height;
    std::uint8_t* planes[4] = {};
    int rowBytes[4] = {};
    const int size = av_image_fill_arrays(planes, rowBytes, packet.data, LibavFormat(picture.layout),
                                          picture.width, picture.height, /*align=*/1);
    if (libav::Check(size, "cannot take a picture apart") > packet.size) {
        throw ExportError("a picture has too few bytes");
    }
    for (std::size_t plane = 0; plane < 4; ++plane) {
        picture.planes[plane] = reinterpret_cast<std::byte*>(planes[plane]);
        picture.rowBytes[plane] = rowBytes[plane];
    }
    return picture;
}

} // namespace tessel::exporting
