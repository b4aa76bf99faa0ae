#include "Movie.h"

#include "CodecFacts.h"
#include "MovieAddress.h"

#include <tessel/export/encode/LibavHandles.h>

#include <fmt/format.h>

extern "C" {
#include <libavutil/pixdesc.h>
#include <libavutil/samplefmt.h>
}

#include <algorithm>
#include <cstring>
#include <deque>
#include <new>
#include <string_view>

namespace tessel::verify::read {
namespace {

namespace libav = exporting::libav;

/// Options for FFmpeg, freed at the end.
class Dictionary {
public:
    Dictionary() = default;
    Dictionary(const Dictionary&) = delete;
    Dictionary& operator=(const Dictionary&) = delete;
    ~Dictionary() { av_dict_free(&mEntries); }
    void Set(const char* key, const std::string& value) { av_dict_set(&mEntries, key, value.c_str(), 0); }
    [[nodiscard]] AVDictionary** Get() noexcept { return &mEntries; }

private:
    AVDictionary* mEntries = nullptr;
};

libav::InputContext OpenInput(const std::string& name, const ReadOptions& options)
{
    Dictionary settings;
    const MovieAddress address = AddressOf(name);
    const AVInputFormat* format = nullptr;
    if (address.isSequence) {
        format = av_find_input_format("image2");
        settings.Set("start_number_range", "200000");
        if (options.sequenceRate.numerator > 0) {
            settings.Set("framerate", fmt::format("{}/{}", options.sequenceRate.numerator,
                                                  options.sequenceRate.denominator));
        }
    }
    AVFormatContext* context = nullptr;
    const int result = avformat_open_input(&context, address.url.c_str(), format, settings.Get());
    const std::string_view shownName = name == "-" ? "standard input" : std::string_view(name);
    if (result < 0) {
        throw ReadError(fmt::format("{}: cannot be read as a movie: {}", shownName, libav::Explain(result)));
    }
    libav::InputContext input(context);
    if (const int found = avformat_find_stream_info(context, nullptr); found < 0) {
        throw ReadError(fmt::format("{}: cannot be read as a movie: {}", shownName, libav::Explain(found)));
    }
    return input;
}

/// One stream and its decoder.
struct Decoder {
    AVStream* stream = nullptr;
    libav::CodecContext codec;
    bool isAtEnd = false;
    std::int64_t nextPosition = 0;           // sound: samples so far
    std::vector<std::vector<float>> waiting; // sound: samples that other streams have to catch up with
    std::optional<double> waitingSeconds;    // sound: time of the first of them
};

/// Memory or threads that this machine lacks are no fault of the movie. @throws std::bad_alloc
void RequireResources(int result)
{
    if (result == AVERROR(ENOMEM)) {
        throw std::bad_alloc();
    }
}

libav::CodecContext OpenDecoder(const AVStream& stream, int threads)
{
    const AVCodec* codec = avcodec_find_decoder(stream.codecpar->codec_id);
    if (codec == nullptr) {
        return nullptr;
    }
    libav::CodecContext context = libav::MakeCodecContext(codec);
    if (avcodec_parameters_to_context(context.get(), stream.codecpar) < 0) {
        return nullptr;
    }
    context->pkt_timebase = stream.time_base;
    constexpr int kMostThreads = 64; // of a picture's decoder; more gain nothing
    context->thread_count = codec->type == AVMEDIA_TYPE_VIDEO ? std::min(threads, kMostThreads) : 1;
    // Errors shall be told, not painted over.
    context->flags |= AV_CODEC_FLAG_OUTPUT_CORRUPT;
    const int opened = avcodec_open2(context.get(), codec, nullptr);
    RequireResources(opened == AVERROR(EAGAIN) ? AVERROR(ENOMEM) : opened); // EAGAIN: too few threads
    if (opened < 0) {
        return nullptr;
    }
    return context;
}

std::optional<double> SecondsOf(std::int64_t time, AVRational base) noexcept
{
    if (time == AV_NOPTS_VALUE) {
        return std::nullopt;
    }
    return static_cast<double>(time) * base.num / base.den;
}

void FillComponents(Picture& picture, const AVFrame& frame, const AVPixFmtDescriptor& format)
{
    const bool isRgb = (format.flags & AV_PIX_FMT_FLAG_RGB) != 0;
    const bool hasAlpha = (format.flags & AV_PIX_FMT_FLAG_ALPHA) != 0;
    for (int i = 0; i < format.nb_components && i < 4; ++i) {
        const AVComponentDescriptor& from = format.comp[i];
        // Grey with alpha has its alpha second; every other format has it last.
        const int place = hasAlpha && i == format.nb_components - 1 ? 3 : i;
        ComponentView& to = picture.components[place];
        const bool isChroma = !isRgb && (place == 1 || place == 2);
        to.rowBytes = frame.linesize[from.plane];
        to.first = reinterpret_cast<const std::byte*>(frame.data[from.plane]) + from.offset;
        to.step = from.step;
        to.bits = from.depth;
        to.shift = from.shift;
        to.isFloat = (format.flags & AV_PIX_FMT_FLAG_FLOAT) != 0;
        to.isBigEndian = (format.flags & AV_PIX_FMT_FLAG_BE) != 0;
        to.sampleBytes = to.isFloat ? 4 : from.depth + from.shift > 8 ? 2 : 1;
        to.width = isChroma ? AV_CEIL_RSHIFT(frame.width, format.log2_chroma_w) : frame.width;
        to.height = isChroma ? AV_CEIL_RSHIFT(frame.height, format.log2_chroma_h) : frame.height;
    }
}

/// Pictures whose samples cannot be addressed: a palette, bits.
bool IsAddressable(const AVPixFmtDescriptor& format) noexcept
{
    return (format.flags & (AV_PIX_FMT_FLAG_PAL | AV_PIX_FMT_FLAG_BITSTREAM | AV_PIX_FMT_FLAG_HWACCEL)) == 0 &&
           format.comp[0].depth <= 32;
}

float SampleAt(const AVFrame& frame, int channel, int index, int channels) noexcept
{
    const auto format = static_cast<AVSampleFormat>(frame.format);
    const bool isPlanar = av_sample_fmt_is_planar(format) != 0;
    const std::uint8_t* data = frame.extended_data[isPlanar ? channel : 0];
    const std::size_t at = isPlanar ? static_cast<std::size_t>(index)
                                    : static_cast<std::size_t>(index) * static_cast<std::size_t>(channels) +
                                          static_cast<std::size_t>(channel);
    const auto read = [&](auto value) {
        std::memcpy(&value, data + at * sizeof value, sizeof value);
        return value;
    };
    switch (av_get_packed_sample_fmt(format)) {
    case AV_SAMPLE_FMT_U8:
        return static_cast<float>(data[at] - 128) / 128.0F;
    case AV_SAMPLE_FMT_S16:
        return static_cast<float>(read(std::int16_t{})) / 32768.0F;
    case AV_SAMPLE_FMT_S32:
        return static_cast<float>(static_cast<double>(read(std::int32_t{})) / 2147483648.0);
    case AV_SAMPLE_FMT_S64:
        return static_cast<float>(static_cast<double>(read(std::int64_t{})) / 9223372036854775808.0);
    case AV_SAMPLE_FMT_FLT:
        return read(0.0F);
    case AV_SAMPLE_FMT_DBL:
        return static_cast<float>(read(0.0));
    default:
        return 0.0F;
    }
}

} // namespace

ComponentView ComponentView::Field(int parity) const noexcept
{
    ComponentView field = *this;
    field.first += parity * rowBytes;
    field.rowBytes = 2 * rowBytes;
    field.height = (height + 1 - parity) / 2;
    return field;
}

struct Movie::State {
    MovieFacts facts;
    libav::InputContext input;
    std::optional<Decoder> picture;
    std::vector<Decoder> sounds;
    std::deque<std::variant<Picture, Sound>> ready;
    std::int64_t pictures = 0;
    bool isInputAtEnd = false;
    bool isFlushed = false;

    void Warn(const std::string& text)
    {
        if (facts.warnings.size() < 20 &&
            std::find(facts.warnings.begin(), facts.warnings.end(), text) == facts.warnings.end()) {
            facts.warnings.push_back(text);
        }
    }

    void Feed(Decoder& decoder, const AVPacket* packet)
    {
        const int sent = avcodec_send_packet(decoder.codec.get(), packet);
        RequireResources(sent);
        if (sent < 0 && sent != AVERROR_EOF) {
            Warn(fmt::format("{} data is damaged: {}", decoder.codec->codec->name, libav::Explain(sent)));
        }
        const libav::Frame frame = libav::MakeFrame();
        for (;;) {
            const int got = avcodec_receive_frame(decoder.codec.get(), frame.get());
            if (got == AVERROR(EAGAIN)) {
                return;
            }
            if (got == AVERROR_EOF) {
                decoder.isAtEnd = true;
                return;
            }
            RequireResources(got);
            if (got < 0) {
                Warn(fmt::format("{} data is damaged: {}", decoder.codec->codec->name, libav::Explain(got)));
                return;
            }
            if (decoder.codec->codec_type == AVMEDIA_TYPE_VIDEO) {
                TakePicture(*frame, decoder);
            } else {
                TakeSound(*frame, decoder);
            }
            av_frame_unref(frame.get());
        }
    }

    void TakePicture(const AVFrame& frame, const Decoder& decoder)
    {
        const AVPixFmtDescriptor* format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
        if (format == nullptr || !IsAddressable(*format)) {
            Warn(fmt::format("pictures in {} cannot be compared",
                             format == nullptr ? "an unknown format" : format->name));
            return;
        }
        Picture picture;
        picture.index = pictures++;
        picture.seconds = SecondsOf(frame.best_effort_timestamp, decoder.stream->time_base);
        picture.duration = SecondsOf(frame.pkt_duration, decoder.stream->time_base).value_or(0.0);
        picture.width = frame.width;
        picture.height = frame.height;
        picture.format = FormatFacts(*format);
        picture.isInterlaced = frame.interlaced_frame != 0;
        picture.isDamaged = frame.decode_error_flags != 0 || (frame.flags & AV_FRAME_FLAG_CORRUPT) != 0;
        if (picture.isDamaged) {
            Warn(fmt::format("{} data is damaged", decoder.codec->codec->name));
        }
        AVFrame* kept = av_frame_clone(&frame);
        if (kept == nullptr) {
            throw std::bad_alloc();
        }
        picture.owner = std::shared_ptr<const AVFrame>(kept, libav::Free());
        FillComponents(picture, *kept, *format);
        if (picture.index == 0) {
            CompletePictureFacts(*facts.picture, frame, facts.sayable);
        }
        ready.emplace_back(std::move(picture));
    }

    void TakeSound(const AVFrame& frame, Decoder& decoder)
    {
        const int channels = frame.ch_layout.nb_channels;
        if (decoder.waiting.empty()) {
            decoder.waiting.resize(static_cast<std::size_t>(channels));
        }
        if (static_cast<std::size_t>(channels) != decoder.waiting.size()) {
            Warn("the number of sound channels changes on the way; what follows is left out");
            return;
        }
        if (decoder.waiting.front().empty()) {
            decoder.waitingSeconds = SecondsOf(frame.best_effort_timestamp, decoder.stream->time_base);
        }
        for (int channel = 0; channel < channels; ++channel) {
            std::vector<float>& samples = decoder.waiting[static_cast<std::size_t>(channel)];
            samples.reserve(samples.size() + static_cast<std::size_t>(frame.nb_samples));
            for (int i = 0; i < frame.nb_samples; ++i) {
                samples.push_back(SampleAt(frame, channel, i, channels));
            }
        }
        EmitSound();
    }

    /// Hands out what all sound streams have.
    void EmitSound()
    {
        std::size_t common = sounds.front().waiting.empty() ? 0 : sounds.front().waiting.front().size();
        for (const Decoder& decoder : sounds) {
            common = std::min(common, decoder.waiting.empty() ? 0 : decoder.waiting.front().size());
        }
        if (common == 0) {
            return;
        }
        Sound sound;
        Decoder& leader = sounds.front();
        sound.position = leader.nextPosition;
        sound.seconds = leader.waitingSeconds;
        sound.sampleRate = leader.codec->sample_rate;
        const auto count = static_cast<std::ptrdiff_t>(common);
        for (Decoder& decoder : sounds) {
            for (std::vector<float>& samples : decoder.waiting) {
                sound.channels.emplace_back(samples.begin(), samples.begin() + count);
                samples.erase(samples.begin(), samples.begin() + count);
            }
            decoder.nextPosition += count;
            if (decoder.waitingSeconds) {
                *decoder.waitingSeconds += static_cast<double>(count) / decoder.codec->sample_rate;
            }
        }
        ready.emplace_back(std::move(sound));
    }

    [[nodiscard]] Decoder* DecoderOf(int streamIndex)
    {
        if (picture && picture->stream->index == streamIndex) {
            return &*picture;
        }
        const auto found = std::find_if(sounds.begin(), sounds.end(), [&](const Decoder& decoder) {
            return decoder.stream->index == streamIndex;
        });
        return found == sounds.end() ? nullptr : &*found;
    }

    void ReadOn()
    {
        const libav::Packet packet = libav::MakePacket();
        const int got = av_read_frame(input.get(), packet.get());
        if (got < 0) {
            if (got != AVERROR_EOF) {
                Warn(fmt::format("the movie ends early: {}", libav::Explain(got)));
            }
            isInputAtEnd = true;
            return;
        }
        if (Decoder* decoder = DecoderOf(packet->stream_index)) {
            Feed(*decoder, packet.get());
        }
    }

    void Flush()
    {
        if (picture) {
            Feed(*picture, nullptr);
        }
        for (Decoder& decoder : sounds) {
            Feed(decoder, nullptr);
        }
        isFlushed = true;
    }
};

Movie::Movie(const std::string& name, const ReadOptions& options) : mState(std::make_unique<State>())
{
    libav::TakeOverLogging();
    State& state = *mState;
    state.facts.name = name;
    state.input = OpenInput(name, options);
    for (unsigned i = 0; i < state.input->nb_streams; ++i) {
        AVStream* stream = state.input->streams[i];
        const AVMediaType kind = stream->codecpar->codec_type;
        const bool isCover = (stream->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
        const bool isWanted =
            (kind == AVMEDIA_TYPE_VIDEO && !state.picture && !isCover) || kind == AVMEDIA_TYPE_AUDIO;
        Decoder decoder;
        decoder.stream = stream;
        decoder.codec = isWanted ? OpenDecoder(*stream, options.threads) : nullptr;
        if (!decoder.codec) {
            if (isWanted) {
                state.Warn(
                    fmt::format("{} cannot be decoded here", avcodec_get_name(stream->codecpar->codec_id)));
            }
            stream->discard = AVDISCARD_ALL;
            continue;
        }
        if (kind == AVMEDIA_TYPE_VIDEO) {
            state.picture = std::move(decoder);
        } else if (state.sounds.empty() ||
                   decoder.codec->sample_rate == state.sounds.front().codec->sample_rate) {
            state.sounds.push_back(std::move(decoder));
        } else {
            stream->discard = AVDISCARD_ALL;
            state.Warn("sound streams of different sample rates: only those of the first one's are read");
        }
    }
    if (!state.picture && state.sounds.empty()) {
        throw ReadError(fmt::format("{}: has neither pictures nor sound that can be decoded", name));
    }
    FillFacts(state.facts, *state.input, state.picture ? state.picture->codec.get() : nullptr,
              state.picture ? state.picture->stream : nullptr);
    for (const Decoder& decoder : state.sounds) {
        AddSoundFacts(state.facts, *state.input, *decoder.codec, *decoder.stream);
    }
}

Movie::~Movie() = default;

const MovieFacts& Movie::Facts() const noexcept
{
    return mState->facts;
}

std::variant<std::monostate, Picture, Sound> Movie::Next()
{
    State& state = *mState;
    while (state.ready.empty()) {
        if (state.isFlushed) {
            return {};
        }
        if (state.isInputAtEnd) {
            state.Flush();
        } else {
            state.ReadOn();
        }
    }
    std::variant<Picture, Sound> next = std::move(state.ready.front());
    state.ready.pop_front();
    if (Picture* picture = std::get_if<Picture>(&next)) {
        return std::move(*picture);
    }
    return std::move(std::get<Sound>(next));
}

} // namespace tessel::verify::read
