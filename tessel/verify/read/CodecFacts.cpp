#include "CodecFacts.h"

extern "C" {
#include <libavutil/display.h>
}

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <string_view>
#include <utility>

namespace tessel::verify::read {
namespace {

CodecClass ClassOf(AVCodecID codec) noexcept
{
    const AVCodecDescriptor* descriptor = avcodec_descriptor_get(codec);
    if (descriptor == nullptr) {
        return CodecClass::Delivery;
    }
    const int props = descriptor->props;
    if ((props & AV_CODEC_PROP_LOSSLESS) != 0 && (props & AV_CODEC_PROP_LOSSY) == 0) {
        return CodecClass::Lossless;
    }
    // Raw samples and pictures have no properties in FFmpeg's list.
    if (codec == AV_CODEC_ID_RAWVIDEO || codec == AV_CODEC_ID_V210 || codec == AV_CODEC_ID_V308 ||
        codec == AV_CODEC_ID_V408 || codec == AV_CODEC_ID_V410 || codec == AV_CODEC_ID_R210 ||
        std::string_view(descriptor->name).substr(0, 4) == "pcm_") {
        return CodecClass::Lossless;
    }
    const bool isPictureCodec = descriptor->type == AVMEDIA_TYPE_VIDEO;
    return isPictureCodec && (props & AV_CODEC_PROP_INTRA_ONLY) != 0 ? CodecClass::Mezzanine
                                                                     : CodecClass::Delivery;
}

/// What a kind of container says beside its codecs. FFmpeg's reader of it is what counts.
struct ContainerSays {
    std::string_view name; ///< FFmpeg's, up to the first comma
    bool aspect, fields, primaries, range, siting, pictures, sound, layout;
};

constexpr std::array kContainers{
    //            name              aspect fields primaries range siting pictures sound layout
    ContainerSays{"matroska", true, true, true, true, true, true, true, false},
    ContainerSays{"mov", true, true, true, false, false, true, true, true},
    ContainerSays{"mxf", true, true, true, true, false, true, true, false},
    ContainerSays{"avi", true, false, false, false, false, true, true, false},
    ContainerSays{"nut", true, false, false, false, false, true, true, false},
    ContainerSays{"yuv4mpegpipe", true, true, false, true, true, true, false, false},
    ContainerSays{"image2", true, false, false, false, false, true, false, false},
    ContainerSays{"wav", false, false, false, false, false, false, true, true},
    ContainerSays{"w64", false, false, false, false, false, false, true, true},
    ContainerSays{"flac", false, false, false, false, false, false, true, true},
    ContainerSays{"aiff", false, false, false, false, false, false, true, true},
    ContainerSays{"mp3", false, false, false, false, false, false, true, true},
};

/// What a codec says in its own stream, and what it can hold.
struct CodecSays {
    AVCodecID codec;
    bool aspect, fields, primaries, range, siting, fullRange;
    int bits; ///< most that it holds; 0: by profile
};

constexpr std::array kCodecs{
    //        codec                   aspect fields primaries range siting full   bits
    CodecSays{AV_CODEC_ID_H264, true, true, true, true, true, true, 0},
    CodecSays{AV_CODEC_ID_HEVC, true, true, true, true, true, true, 0},
    CodecSays{AV_CODEC_ID_AV1, true, false, true, true, true, true, 0},
    CodecSays{AV_CODEC_ID_VP9, false, false, false, true, false, true, 0},
    CodecSays{AV_CODEC_ID_VP8, false, false, false, false, false, false, 8},
    CodecSays{AV_CODEC_ID_MPEG2VIDEO, true, true, true, false, false, false, 8},
    CodecSays{AV_CODEC_ID_MPEG1VIDEO, true, false, false, false, false, false, 8},
    CodecSays{AV_CODEC_ID_MPEG4, true, true, false, false, false, false, 8},
    CodecSays{AV_CODEC_ID_PRORES, true, true, true, false, false, false, 12},
    CodecSays{AV_CODEC_ID_DNXHD, false, true, true, false, false, false, 12},
    CodecSays{AV_CODEC_ID_DVVIDEO, true, true, false, false, false, false, 8},
    CodecSays{AV_CODEC_ID_MJPEG, true, false, false, false, false, true, 8},
    CodecSays{AV_CODEC_ID_V210, false, false, false, false, false, false, 10},
    CodecSays{AV_CODEC_ID_V308, false, false, false, false, false, false, 8},
    CodecSays{AV_CODEC_ID_V408, false, false, false, false, false, false, 8},
    CodecSays{AV_CODEC_ID_FFV1, true, true, false, false, false, true, 16},
};

Sayable SayableOf(const AVFormatContext& input, const AVCodecContext* codec)
{
    const std::string_view name(input.iformat->name);
    const std::string_view head = name.substr(0, name.find(','));
    const auto* container = std::find_if(kContainers.begin(), kContainers.end(),
                                         [&](const ContainerSays& row) { return row.name == head; });
    Sayable say;
    say.layout = container != kContainers.end() && container->layout;
    if (codec == nullptr) {
        return say;
    }
    const auto* stream = std::find_if(kCodecs.begin(), kCodecs.end(),
                                      [&](const CodecSays& row) { return row.codec == codec->codec_id; });
    const auto either = [&](bool ContainerSays::*inContainer, bool CodecSays::*inCodec) {
        return (container != kContainers.end() && container->*inContainer) ||
               (stream != kCodecs.end() && stream->*inCodec);
    };
    say.aspect = either(&ContainerSays::aspect, &CodecSays::aspect);
    say.fields = either(&ContainerSays::fields, &CodecSays::fields);
    say.primaries = either(&ContainerSays::primaries, &CodecSays::primaries);
    say.range = either(&ContainerSays::range, &CodecSays::range);
    say.siting = either(&ContainerSays::siting, &CodecSays::siting);
    say.fullRange = say.range && (stream == kCodecs.end() || stream->fullRange);
    const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(codec->pix_fmt);
    if (stream != kCodecs.end() && format != nullptr) {
        // Profiles are made for a depth and a subsampling: a stream of one holds no more than its samples.
        const bool byProfile = stream->bits == 0;
        say.bits = byProfile ? format->comp[0].depth : stream->bits;
        const bool isLossless = ClassOf(codec->codec_id) == CodecClass::Lossless;
        if (!isLossless || codec->codec_id == AV_CODEC_ID_V210) {
            say.chromaShiftX = format->log2_chroma_w;
            say.chromaShiftY = format->log2_chroma_h;
            say.alpha = codec->codec_id == AV_CODEC_ID_PRORES;
        }
    }
    return say;
}

/// @param isMxf  whose demuxer takes FFmpeg's comments at their word: TB is coded top first and shown bottom
/// first
FieldOrder OrderOf(AVFieldOrder order, bool isMxf) noexcept
{
    switch (order) {
    case AV_FIELD_PROGRESSIVE:
        return FieldOrder::Progressive;
    // FFmpeg and its peers write TB for interleaved rows whose upper field comes first, against the comments in
    // FFmpeg's header, and MediaInfo reads it so.
    case AV_FIELD_TT:
        return FieldOrder::UpperFirst;
    case AV_FIELD_BB:
        return FieldOrder::LowerFirst;
    case AV_FIELD_TB:
        return isMxf ? FieldOrder::LowerFirst : FieldOrder::UpperFirst;
    case AV_FIELD_BT:
        return isMxf ? FieldOrder::UpperFirst : FieldOrder::LowerFirst;
    case AV_FIELD_UNKNOWN:
        break;
    }
    return FieldOrder::Unknown;
}

Rational RationalOf(AVRational value) noexcept
{
    return value.den == 0 ? Rational{} : Rational{value.num, value.den};
}

std::optional<PictureFacts::Siting> SitingOf(AVChromaLocation location) noexcept
{
    switch (location) {
    case AVCHROMA_LOC_LEFT:
        return PictureFacts::Siting{0, 0.5};
    case AVCHROMA_LOC_CENTER:
        return PictureFacts::Siting{0.5, 0.5};
    case AVCHROMA_LOC_TOPLEFT:
        return PictureFacts::Siting{0, 0};
    case AVCHROMA_LOC_TOP:
        return PictureFacts::Siting{0.5, 0};
    case AVCHROMA_LOC_BOTTOMLEFT:
        return PictureFacts::Siting{0, 1};
    case AVCHROMA_LOC_BOTTOM:
        return PictureFacts::Siting{0.5, 1};
    default:
        return std::nullopt;
    }
}

std::optional<bool> RangeOf(AVColorRange range) noexcept
{
    if (range == AVCOL_RANGE_UNSPECIFIED) {
        return std::nullopt;
    }
    return range == AVCOL_RANGE_JPEG;
}

std::optional<double> StartOf(const AVStream& stream) noexcept
{
    if (stream.start_time == AV_NOPTS_VALUE) {
        return std::nullopt;
    }
    return static_cast<double>(stream.start_time) * av_q2d(stream.time_base);
}

std::string LayoutName(const AVChannelLayout& layout)
{
    if (layout.order == AV_CHANNEL_ORDER_UNSPEC) {
        return {};
    }
    std::array<char, 128> name{};
    return av_channel_layout_describe(&layout, name.data(), name.size()) > 0 ? std::string(name.data())
                                                                             : std::string();
}

} // namespace

SampleFormat FormatFacts(const AVPixFmtDescriptor& format)
{
    SampleFormat facts;
    facts.name = format.name;
    facts.isRgb = (format.flags & AV_PIX_FMT_FLAG_RGB) != 0;
    facts.hasAlpha = (format.flags & AV_PIX_FMT_FLAG_ALPHA) != 0;
    facts.isFloat = (format.flags & AV_PIX_FMT_FLAG_FLOAT) != 0;
    facts.bits = format.comp[0].depth;
    facts.chromaShiftX = format.log2_chroma_w;
    facts.chromaShiftY = format.log2_chroma_h;
    return facts;
}

/// The container as people call it. FFmpeg has one name for all kinds of MOV: the file's brand tells them
/// apart.
std::string KindOf(const AVFormatContext& input, std::string_view head)
{
    if (head == "mov") {
        const AVDictionaryEntry* brand = av_dict_get(input.metadata, "major_brand", nullptr, 0);
        return brand == nullptr || std::string_view(brand->value) == "qt  " ? "MOV" : "MP4";
    }
    if (head == "image2" || head.find("_pipe") != std::string_view::npos) {
        return "picture files";
    }
    constexpr std::array<std::pair<std::string_view, std::string_view>, 4> kOthers{
        {{"matroska", "Matroska"}, {"mpegts", "MPEG-TS"}, {"mpeg", "MPEG-PS"}, {"yuv4mpegpipe", "Y4M"}}};
    for (const auto& [name, kind] : kOthers) {
        if (name == head) {
            return std::string(kind);
        }
    }
    std::string kind(head);
    std::transform(kind.begin(), kind.end(), kind.begin(), [](char letter) {
        return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 32) : letter;
    });
    return kind;
}

void FillFacts(MovieFacts& facts, const AVFormatContext& input, const AVCodecContext* codec, AVStream* stream)
{
    facts.container = input.iformat->name;
    facts.sayable = SayableOf(input, codec);
    const std::string_view head = std::string_view(facts.container).substr(0, facts.container.find(','));
    facts.kind = KindOf(input, head);
    facts.startsAnywhere = head == "mpegts" || head == "mpeg" || head == "rtp" || head == "rtsp";
    for (const ContainerSays& row : kContainers) {
        if (row.name == head) {
            facts.carriesPictures = row.pictures;
            facts.carriesSound = row.sound;
        }
    }
    if (head.size() > 5 && head.substr(head.size() - 5) == "_pipe") {
        facts.carriesSound = false; // pictures one behind the other
    }
    if (input.duration != AV_NOPTS_VALUE && input.duration > 0) {
        facts.durationSeconds = static_cast<double>(input.duration) / AV_TIME_BASE;
    }
    if (input.start_time != AV_NOPTS_VALUE) {
        facts.startSeconds = static_cast<double>(input.start_time) / AV_TIME_BASE;
    }
    if (codec == nullptr) {
        return;
    }
    PictureFacts& picture = facts.picture.emplace();
    const AVCodecParameters& parameters = *stream->codecpar;
    picture.codec = avcodec_get_name(codec->codec_id);
    if (const char* profile = avcodec_profile_name(codec->codec_id, codec->profile)) {
        picture.profile = profile;
    }
    picture.codecClass = ClassOf(codec->codec_id);
    if (const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(codec->pix_fmt)) {
        picture.format = FormatFacts(*format);
    }
    picture.width = parameters.width;
    picture.height = parameters.height;
    picture.rate = RationalOf(stream->r_frame_rate);
    picture.averageRate = RationalOf(stream->avg_frame_rate);
    const AVRational aspect =
        stream->sample_aspect_ratio.num != 0 ? stream->sample_aspect_ratio : parameters.sample_aspect_ratio;
    picture.pixelAspect = aspect.num > 0 ? RationalOf(aspect) : Rational{};
    picture.fields = OrderOf(parameters.field_order, head == "mxf" || head == "mxf_opatom");
    picture.primaries = parameters.color_primaries;
    picture.transfer = parameters.color_trc;
    picture.matrix = parameters.color_space;
    picture.fullRange = RangeOf(parameters.color_range);
    picture.siting = SitingOf(parameters.chroma_location);
    picture.startSeconds = StartOf(*stream);
    picture.timeUnitSeconds = av_q2d(stream->time_base);
    picture.isSequence = head == "image2" || head.find("_pipe") != std::string_view::npos;
    if (const auto* matrix = reinterpret_cast<const std::int32_t*>(
            av_stream_get_side_data(stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr))) {
        const double degrees = av_display_rotation_get(matrix);
        picture.hasRotation = !std::isnan(degrees) && std::abs(degrees) > 0.01;
        picture.rotationDegrees = picture.hasRotation ? static_cast<int>(std::lround(degrees)) : 0;
    }
}

void AddSoundFacts(MovieFacts& facts, const AVFormatContext& /*input*/, const AVCodecContext& codec,
                   const AVStream& stream)
{
    ++facts.soundStreams;
    if (facts.sound) {
        facts.sound->channels += codec.ch_layout.nb_channels;
        facts.sound->layout.clear(); // several streams together have no stated layout
        facts.sound->lfeChannel.reset();
        return;
    }
    SoundFacts& sound = facts.sound.emplace();
    sound.codec = avcodec_get_name(codec.codec_id);
    sound.codecClass = ClassOf(codec.codec_id);
    sound.sampleRate = codec.sample_rate;
    sound.channels = codec.ch_layout.nb_channels;
    sound.layout = LayoutName(codec.ch_layout);
    if (sound.layout.empty()) {
        sound.layout = LayoutName(stream.codecpar->ch_layout); // what was learnt of the stream's first data
    }
    const int lfe = av_channel_layout_index_from_channel(&codec.ch_layout, AV_CHAN_LOW_FREQUENCY);
    if (lfe >= 0) {
        sound.lfeChannel = lfe;
    }
    sound.bits = sound.codecClass == CodecClass::Lossless
                     ? std::max(codec.bits_per_raw_sample, av_get_exact_bits_per_sample(codec.codec_id))
                     : 0;
    sound.startSeconds = StartOf(stream);
}

void CompletePictureFacts(PictureFacts& facts, const AVFrame& first, const Sayable& sayable)
{
    if (const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(first.format))) {
        facts.format = FormatFacts(*format);
    }
    if (facts.pixelAspect.numerator == 0 && first.sample_aspect_ratio.num > 0) {
        facts.pixelAspect = RationalOf(first.sample_aspect_ratio);
    }
    if (facts.fields == FieldOrder::Unknown && sayable.fields) {
        facts.fields = first.interlaced_frame == 0  ? FieldOrder::Progressive
                       : first.top_field_first != 0 ? FieldOrder::UpperFirst
                                                    : FieldOrder::LowerFirst;
    }
    const auto take = [](int& code, int said) {
        if (code == 2 && said != 2) {
            code = said;
        }
    };
    take(facts.primaries, first.color_primaries);
    take(facts.transfer, first.color_trc);
    take(facts.matrix, first.colorspace);
    if (!facts.fullRange) {
        facts.fullRange = RangeOf(first.color_range);
    }
    if (!facts.siting) {
        facts.siting = SitingOf(first.chroma_location);
    }
}

} // namespace tessel::verify::read
