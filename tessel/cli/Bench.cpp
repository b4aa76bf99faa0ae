/// `tessel bench`: how fast a clip is synthesised here, beside this machine's own memory-write speed.

#include "CommandLine.h"
#include "Commands.h"
#include "Measurement.h"
#include "MemorySpeed.h"

#include <kestrel/importhost/FrameMemory.h>
#include <kestrel/importhost/PathText.h>
#include <kestrel/qelcore/serialization/Json.h>
#include <kestrel/qelcore/text/PathText.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <vector>

namespace tessel::cli {
namespace {

using importhost::Clip;
using qelcore::serialization::AddToObject;
using qelcore::serialization::Object;
using qelcore::serialization::Value;

struct BenchOptions {
    std::filesystem::path clip;
    bool json = false;
    bool allowDefault = false;
    MeasurementLimits limits;
};

struct VideoSpeed {
    double framesPerSecond = 0.0;
    double bytesPerSecond = 0.0;
    double memsetBytesPerSecond = 0.0;
    double streamingBytesPerSecond = 0.0;
    std::size_t bytesPerFrame = 0; ///< rows with their padding, as memset writes them too
};

struct AudioSpeed {
    double samplesPerSecond = 0.0; ///< of every channel
    double timesRealTime = 0.0;    ///< 0 for a clip without sound
};

VideoSpeed MeasureVideo(const Clip& clip, const MeasurementLimits& limits)
{
    const std::int64_t frameCount = std::max<std::int64_t>(clip.Description().frameCount, 1);
    VideoSpeed speed;
    {
        const importhost::Frame frame = clip.RenderFrame(0);
        speed.bytesPerFrame =
            static_cast<std::size_t>(std::abs(frame.RowBytes())) * static_cast<std::size_t>(frame.Height());
    }
    const importhost::FrameMemory memory(speed.bytesPerFrame);
    const std::span<std::byte> bytes(memory.Data(), memory.Size());

    std::int64_t next = 0;
    const std::array<std::function<void()>, 3> ways = {
        [&] {
            (void)clip.RenderFrame(next);
            next = (next + 1) % frameCount;
        },
        [&] { WriteWithMemset(bytes); },
        [&] { WriteWithStreamingStores(bytes); },
    };
    const std::vector<double> seconds = MedianSecondsPerRun(ways, limits);
    const auto size = static_cast<double>(speed.bytesPerFrame);
    speed.framesPerSecond = 1.0 / seconds[0];
    speed.bytesPerSecond = size / seconds[0];
    speed.memsetBytesPerSecond = size / seconds[1];
    speed.streamingBytesPerSecond = size / seconds[2];
    return speed;
}

AudioSpeed MeasureAudio(const Clip& clip, const MeasurementLimits& limits)
{
    const auto& description = clip.Description();
    const double sampleRate = description.sampleRate;
    if (description.channelCount <= 0 || !(sampleRate > 0.0)) {
        return {};
    }
    // A tenth of a second at a time, as sound is rendered into files.
    const double blockSamples = std::clamp(std::round(sampleRate / 10.0), 1.0, 1e6);
    const auto sampleCount = static_cast<std::uint32_t>(blockSamples);
    std::vector<std::vector<float>> buffers(static_cast<std::size_t>(std::min(description.channelCount, 1024)),
                                            std::vector<float>(sampleCount));
    std::vector<float*> channels;
    channels.reserve(buffers.size());
    for (auto& buffer : buffers) {
        channels.push_back(buffer.data());
    }
    std::int64_t position = 0;
    const std::array<std::function<void()>, 1> ways = {[&] {
        clip.RenderAudio(position, sampleCount, channels);
        position += sampleCount;
    }};
    AudioSpeed speed;
    speed.samplesPerSecond = blockSamples / MedianSecondsPerRun(ways, limits)[0];
    speed.timesRealTime = speed.samplesPerSecond / sampleRate;
    return speed;
}

std::string AsTable(const Clip& clip, const VideoSpeed& video, const AudioSpeed& audio)
{
    constexpr double kGiga = 1e9;
    std::string text = fmt::format("{:<16}{}\n", "file", importhost::DisplayName(clip.File()));
    text += fmt::format("{:<16}{:.1f} frames/s, {:.2f} GB/s, {:.3f} ms a frame of {} bytes\n", "video",
                        video.framesPerSecond, video.bytesPerSecond / kGiga, 1e3 / video.framesPerSecond,
                        video.bytesPerFrame);
    text += fmt::format("{:<16}{:.2f} of memset ({:.2f} GB/s)\n", "",
                        video.bytesPerSecond / video.memsetBytesPerSecond, video.memsetBytesPerSecond / kGiga);
    if (HasStreamingStores()) {
        text += fmt::format("{:<16}{:.2f} of streaming stores ({:.2f} GB/s)\n", "",
                            video.bytesPerSecond / video.streamingBytesPerSecond,
                            video.streamingBytesPerSecond / kGiga);
    }
    if (audio.samplesPerSecond > 0.0) {
        text += fmt::format("{:<16}{:.0f} samples/s on {} channels, {:.0f} times real time\n", "audio",
                            audio.samplesPerSecond, clip.Description().channelCount, audio.timesRealTime);
    } else {
        text += fmt::format("{:<16}none\n", "audio");
    }
    return text;
}

std::string AsJson(const Clip& clip, const VideoSpeed& video, const AudioSpeed& audio)
{
    Object videoObject;
    AddToObject(videoObject, "framesPerSecond", Value(video.framesPerSecond));
    AddToObject(videoObject, "bytesPerSecond", Value(video.bytesPerSecond));
    AddToObject(videoObject, "bytesPerFrame", Value(static_cast<std::int64_t>(video.bytesPerFrame)));
    AddToObject(videoObject, "relativeToMemset", Value(video.bytesPerSecond / video.memsetBytesPerSecond));
    AddToObject(videoObject, "relativeToStreaming",
                Value(video.bytesPerSecond / video.streamingBytesPerSecond));
    Object audioObject;
    AddToObject(audioObject, "samplesPerSecond", Value(audio.samplesPerSecond));
    AddToObject(audioObject, "timesRealTime", Value(audio.timesRealTime));
    Object machine;
    AddToObject(machine, "memsetBytesPerSecond", Value(video.memsetBytesPerSecond));
    AddToObject(machine, "streamingBytesPerSecond", Value(video.streamingBytesPerSecond));
    AddToObject(machine, "hasStreamingStores", Value(HasStreamingStores()));
    Object report;
    AddToObject(report, "file", Value(qelcore::text::UTF8Text(clip.File())));
    AddToObject(report, "video", Value(std::move(videoObject)));
    AddToObject(report, "audio", Value(std::move(audioObject)));
    AddToObject(report, "machine", Value(std::move(machine)));
    return qelcore::serialization::GetJSONUTF8String(Value(std::move(report)), /*formatted=*/true) + "\n";
}

void RunBench(Context& context, const BenchOptions& options)
{
    const document::OpenedClip opened = context.OpenClip(options.clip, {.allowDefault = options.allowDefault});
    const Clip& clip = opened.clip;
    const VideoSpeed video = MeasureVideo(clip, options.limits);
    const AudioSpeed audio = MeasureAudio(clip, options.limits);
    WriteOut(options.json ? AsJson(clip, video, audio) : AsTable(clip, video, audio));
}

} // namespace

void AddBenchCommand(CommandLine& commandLine, Context& context)
{
    const auto options = std::make_shared<BenchOptions>();
    const Command command =
        commandLine.AddCommand("bench", "Measure how fast a clip is synthesised on one thread");
    command.AddOption("CLIP", options->clip, "Tessel document").Required().TakesFile(FileKind::Clip);
    command.AddFlag("--json", options->json, "Print JSON");
    command
        .AddSeconds("--seconds", options->limits.seconds, 0.001, 3600.0, "Seconds to spend on each measurement")
        .ShowDefault();
    command
        .AddNumber("--frames", options->limits.mostRuns, 0,
                   "Frames (or sound requests) to stop after; 0: no limit")
        .ShowDefault();
    command.AddFlag("--allow-default", options->allowDefault,
                    "Take a malformed document as the default clip instead of refusing it");
    command.AddExample("tessel bench clip.tessel --seconds 0.2",
                       "A quick look, beside this machine's own memory");
    command.OnRun([&context, options] { RunBench(context, *options); });
}

} // namespace tessel::cli
