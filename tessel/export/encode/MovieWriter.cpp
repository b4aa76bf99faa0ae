#include "MovieWriter.h"

#include "AudioEncoder.h"
#include "LibavOutput.h"
#include "RepeatingEncoder.h"
#include "VideoEncoder.h"

#include <tessel/export/ExportError.h>

#include <fmt/format.h>

extern "C" {
#include <libavutil/dict.h>
#include <libavutil/opt.h>
}

#include <algorithm>
#include <optional>
#include <utility>

namespace tessel::exporting {

struct MovieWriter::State {
    explicit State(OutputFile output) : file(std::move(output)), io(file) {}

    /// A muxer error, or the write error behind it.
    void Check(int result, const std::string& doing) const
    {
        if (result < 0) {
            io.RethrowFailure();
        }
        libav::Check(result, doing);
    }

    void WritePacket(AVPacket& packet, const AVStream& stream, AVRational unit) const
    {
        packet.stream_index = stream.index;
        av_packet_rescale_ts(&packet, unit, stream.time_base);
        Check(av_interleaved_write_frame(format.get(), &packet), "cannot write the " + container + " file");
        // Muxers do not look at every write; a full disk should end the work now, not at its end.
        io.RethrowFailure();
    }

    [[nodiscard]] auto VideoSink() const
    {
        return [this](AVPacket& packet) { WritePacket(packet, *videoStream, videoUnit); };
    }
    [[nodiscard]] auto AudioSink() const
    {
        return [this](AVPacket& packet) {
            packet.pts += audioDelay;
            packet.dts += audioDelay;
            WritePacket(packet, *audioStream, audioUnit);
        };
    }

    OutputFile file;
    LibavOutput io;
    std::string container;
    libav::FormatContext format;
    std::unique_ptr<VideoEncoder> video;
    bool copiesVideo = false; ///< its packets come from elsewhere
    int videoDelay = 0;       ///< pictures by which the encoder decodes before it shows, also where none refers
    std::optional<AudioEncoder> audio;
    AVStream* videoStream = nullptr;
    AVStream* audioStream = nullptr;
    AVRational videoUnit{};
    AVRational audioUnit{};
    std::int64_t audioDelay = 0; ///< samples that are added to the times of packets
};

namespace {

AVStream& AddStream(AVFormatContext& format)
{
    AVStream* stream = avformat_new_stream(&format, nullptr);
    if (stream == nullptr) {
        throw std::bad_alloc();
    }
    return *stream;
}

/// Room for the index of a QuickTime file before its pictures, so that players need not look for it at the end.
/// An index has at most so many bytes for a packet: its place (8), size (4), time (8), the difference between
/// decoding and showing it (8), whether it is a key (4), and the chunk that it is in (12).
std::int64_t IndexBytes(const MovieExtent& extent, std::int64_t samplesPerPacket) noexcept
{
    constexpr std::int64_t kPerPacket = 8 + 4 + 8 + 8 + 4 + 12;
    constexpr std::int64_t kHeaders = 32'768;
    // Sound is also cut where a picture comes between.
    const std::int64_t soundPackets =
        extent.samples == 0 ? 0
                            : extent.samples / std::max<std::int64_t>(samplesPerPacket, 1) + extent.pictures;
    return kHeaders + kPerPacket * (extent.pictures + soundPackets + 64);
}

/// Readers of Matroska take a coder's delay off the times in the file. FFmpeg's muxer adds it to them, but not
/// that of Opus. In samples.
std::int64_t DelayToAdd(const Container& container, const AVCodecParameters& sound) noexcept
{
    return container.muxer == "matroska" && sound.codec_id == AV_CODEC_ID_OPUS ? sound.initial_padding : 0;
}

/// How closely the muxer keeps to what it takes for standard.
int ComplianceFor(const OutputPlan& plan) noexcept
{
    // QuickTime has a code for each kind of DV, which FFmpeg's muxer looks up by its rules of strict compliance
    // only.
    if (plan.video && plan.video->codec->rule == LayoutRule::DvProfile) {
        return FF_COMPLIANCE_NORMAL;
    }
    // FLAC in MP4 has a specification; the muxer still calls it an experiment.
    if (plan.audio && plan.audio->codec->encoder == "flac") {
        return FF_COMPLIANCE_EXPERIMENTAL;
    }
    return FF_COMPLIANCE_UNOFFICIAL;
}

} // namespace

OutputFile OpenTarget(const std::filesystem::path& target, const Container& container)
{
    return target == "-" || container.takesEveryCodec ? OutputFile(OutputFile::StandardOutput{})
                                                      : OutputFile(target);
}

MovieWriter::MovieWriter(const OutputPlan& plan, OutputFile file, int threadCount, const MovieExtent& extent)
    : mState(std::make_unique<State>(std::move(file)))
{
    libav::TakeOverLogging();
    State& state = *mState;
    const Container& container = *plan.container;
    state.container = container.name;
    if (container.needsToSeek && !state.file.CanSeek()) {
        throw RequestError(
            fmt::format("{} files cannot be written to a pipe; mkv, nut, mov and wav can", container.name));
    }
    AVFormatContext* format = nullptr;
    libav::Check(
        avformat_alloc_output_context2(&format, nullptr, std::string(container.muxer).c_str(), nullptr),
        fmt::format("cannot write {} files", container.name));
    state.format.reset(format);
    format->pb = state.io.Context();
    format->flags |= AVFMT_FLAG_CUSTOM_IO | AVFMT_FLAG_BITEXACT;
    format->strict_std_compliance = ComplianceFor(plan);

    if (plan.video) {
        state.video = VideoEncoder::Make(*plan.video, threadCount);
        if (plan.video->codec->repeats) {
            state.video = EncodeRepeatsOnce(std::move(state.video));
        }
        state.videoStream = &AddStream(*format);
        state.video->DescribeStream(*state.videoStream);
        state.videoUnit = state.videoStream->time_base;
        state.videoDelay = state.videoStream->codecpar->video_delay;
        if (plan.timecode) {
            av_dict_set(&state.videoStream->metadata, "timecode", plan.timecode->After(0).c_str(), 0);
        }
    }
    if (plan.audio) {
        state.audio.emplace(*plan.audio);
        state.audioStream = &AddStream(*format);
        state.audio->DescribeStream(*state.audioStream);
        state.audioUnit = state.audioStream->time_base;
        state.audioDelay = DelayToAdd(container, *state.audioStream->codecpar);
    }
    if (!plan.comment.empty()) {
        av_dict_set(&format->metadata, std::string(container.commentKey).c_str(), plan.comment.c_str(), 0);
    }
    AVDictionary* options = nullptr;
    const std::string text(state.file.CanSeek() ? container.muxerOptions : container.pipeOptions);
    libav::Check(av_dict_parse_string(&options, text.c_str(), "=", ":", 0), "cannot set up the muxer");
    constexpr std::int64_t kMostIndexBytes = std::int64_t{1} << 30;
    const std::int64_t indexBytes = IndexBytes(extent, state.audio ? state.audio->SamplesPerPacket() : 1);
    if (container.isQuickTime && state.file.CanSeek() && indexBytes <= kMostIndexBytes) {
        av_dict_set_int(&options, "moov_size", indexBytes, 0);
    }
    const int result = avformat_write_header(format, &options);
    av_dict_free(&options);
    state.Check(result, fmt::format("cannot write this clip into a {} file", container.name));
}

MovieWriter::~MovieWriter() = default;

void MovieWriter::WritePicture(const Picture& picture, std::int64_t index)
{
    mState->video->Encode(picture, index, mState->VideoSink());
}

void MovieWriter::WritePacket(AVPacket& packet, std::int64_t index)
{
    mState->copiesVideo = true;
    packet.pts = index;
    packet.dts = index - mState->videoDelay;
    packet.duration = 1;
    packet.flags = AV_PKT_FLAG_KEY;
    mState->VideoSink()(packet);
}

void MovieWriter::WriteSamples(const std::vector<const float*>& channels, std::int64_t count,
                               std::int64_t clipPosition)
{
    mState->audio->Encode(channels, count, clipPosition, mState->AudioSink());
}

std::int64_t MovieWriter::Finish()
{
    State& state = *mState;
    if (state.video && !state.copiesVideo) {
        state.video->Finish(state.VideoSink());
    }
    if (state.audio) {
        state.audio->Finish(state.AudioSink());
    }
    state.Check(av_write_trailer(state.format.get()),
                fmt::format("cannot finish the {} file", state.container));
    state.io.Flush();
    state.file.Commit();
    return state.file.Size();
}

} // namespace tessel::exporting
