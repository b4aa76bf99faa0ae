// How fast sound is made, each figure beside what it is measured against in the same run:
//   TonePerSample          one channel of steady tone; target: 2 ns a sample, 4.5 times the plain loop
//   Identification         each pattern; target: 1.3 times that per sounding sample
//   StereoClip             through the plug-in's selector 25; target: 8000 times real time
#include <ImporterTessel/audio/AudioSynthesis.h>
#include <ImporterTessel/audio/SineSpan.h>
#include <ImporterTessel/settings/DataFile.h>
#include <ImporterTessel/settings/TesselInfo.h>
#include <kestrel/importabi/Records.h>
#include <kestrel/importabi/Selectors.h>
#include <kestrel/importhost/Importer.h>
#include <kestrel/qelmediatypes/TickTime.h>
#include <tests/support/ReferenceSine.h>

#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <system_error>
#include <vector>

namespace {

using ImporterTessel::TesselInfo;

constexpr std::int64_t kSampleRate = 48'000;
/// What a host asks for at a time: 0.1 s.
constexpr std::uint32_t kBlock = 4'800;
constexpr std::int32_t kMostChannels = 6;

class Buffers {
public:
    Buffers()
    {
        for (std::size_t channel = 0; channel < mStorage.size(); ++channel) {
            mStorage[channel].resize(kBlock);
            mChannels[channel] = mStorage[channel].data();
        }
    }
    [[nodiscard]] float** Channels() { return mChannels.data(); }
    [[nodiscard]] std::vector<float>& operator[](std::int32_t channel)
    {
        return mStorage[static_cast<std::size_t>(channel)];
    }

private:
    std::array<std::vector<float>, kMostChannels> mStorage;
    std::array<float*, kMostChannels> mChannels{};
};

/// Seconds of processor time that `work` takes; other processes do not count.
template <class Work>
double SecondsOf(const Work& work)
{
    const std::clock_t begin = std::clock();
    work();
    benchmark::ClobberMemory();
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

/// One channel of the default tone, `blocks` blocks from time zero on, as selector 25 makes it.
void MakeTone(Buffers& buffers, std::int64_t blocks)
{
    TesselInfo info;
    info.mNumChannels = 1;
    for (std::int64_t block = 0; block < blocks; ++block) {
        SynthesizeAudio(info, block * kBlock, kBlock, buffers.Channels());
        benchmark::ClobberMemory();
    }
}

void MakeToneByThePlainLoop(Buffers& buffers, std::int64_t blocks)
{
    const qelmediatypes::FrameRate rate = qelmediatypes::SampleDuration(static_cast<float>(kSampleRate));
    for (std::int64_t block = 0; block < blocks; ++block) {
        test::FillReferenceSine(rate, qelmediatypes::TickTime(block * kBlock, rate), {1000.0F, 0.25F},
                                buffers[0]);
        benchmark::ClobberMemory();
    }
}

constexpr std::int64_t kToneBlocks = 20;

/// Our generator and the plain loop take turns, so that both run under the same load.
void TonePerSample(benchmark::State& state)
{
    Buffers buffers;
    double ours = 0.0;
    double plain = 0.0;
    for ([[maybe_unused]] auto round : state) {
        plain += SecondsOf([&] { MakeToneByThePlainLoop(buffers, kToneBlocks); });
        const double seconds = SecondsOf([&] { MakeTone(buffers, kToneBlocks); });
        state.SetIterationTime(seconds);
        ours += seconds;
    }
    const double samples = static_cast<double>(state.iterations()) * kToneBlocks * kBlock;
    state.counters["nsPerSample"] = ours / samples * 1e9;
    state.counters["nsPerSamplePlainLoop"] = plain / samples * 1e9;
    state.counters["timesThePlainLoop"] = plain / ours;
}
BENCHMARK(TonePerSample)->UseManualTime()->MinTime(1.0);

/// One cycle of a pattern in blocks.
void MakeCycle(const TesselInfo& info, Buffers& buffers, std::int64_t blocks)
{
    for (std::int64_t block = 0; block < blocks; ++block) {
        SynthesizeAudio(info, block * kBlock, kBlock, buffers.Channels());
        benchmark::ClobberMemory();
    }
}

/// Samples of a cycle that are not silent; a tone's own zeros are few.
double SoundingSamples(const TesselInfo& info, std::int64_t blocks, std::int32_t channelCount)
{
    Buffers buffers;
    double sounding = 0.0;
    for (std::int64_t block = 0; block < blocks; ++block) {
        SynthesizeAudio(info, block * kBlock, kBlock, buffers.Channels());
        for (std::int32_t channel = 0; channel < channelCount; ++channel) {
            for (const float sample : buffers[channel]) {
                sounding += sample != 0.0F ? 1.0 : 0.0;
            }
        }
    }
    return sounding;
}

/// arguments: identifier format, tenths of a second to a cycle, channels
void Identification(benchmark::State& state)
{
    TesselInfo info;
    info.mToneFormat = ImporterTessel::kToneIdentifyChannels;
    info.mIdentifierFormat = static_cast<std::int32_t>(state.range(0));
    const std::int64_t blocks = state.range(1);
    const double sounding = SoundingSamples(info, blocks, static_cast<std::int32_t>(state.range(2)));
    Buffers buffers;
    double ours = 0.0;
    double tone = 0.0;
    for ([[maybe_unused]] auto round : state) {
        tone += SecondsOf([&] { MakeTone(buffers, kToneBlocks); });
        const double seconds = SecondsOf([&] { MakeCycle(info, buffers, blocks); });
        state.SetIterationTime(seconds);
        ours += seconds;
    }
    const auto rounds = static_cast<double>(state.iterations());
    const double nsPerSoundingSample = ours / (rounds * sounding) * 1e9;
    const double nsPerToneSample = tone / (rounds * kToneBlocks * kBlock) * 1e9;
    state.counters["nsPerSoundingSample"] = nsPerSoundingSample;
    state.counters["timesATonesSample"] = nsPerSoundingSample / nsPerToneSample;
    state.counters["timesRealTime"] = rounds * static_cast<double>(blocks) * 0.1 / ours;
}
BENCHMARK(Identification)
    ->ArgNames({"identifierFormat", "tenths", "channels"})
    ->Args({ImporterTessel::kIdentifierEBUStereo1000, 30, 2})
    ->Args({ImporterTessel::kIdentifierEBUStereo400, 30, 2})
    ->Args({ImporterTessel::kIdentifierEBUMultichannel, 120, 6})
    ->Args({ImporterTessel::kIdentifierBLITS, 134, 6})
    ->UseManualTime()
    ->MinTime(0.5);

/// A data file that its owner removes.
class TemporaryDocument {
public:
    explicit TemporaryDocument(const TesselInfo& info)
        : mFile(std::filesystem::temp_directory_path() /
                ("audio-benchmark-" + std::to_string(std::random_device{}()) + ".tessel"))
    {
        std::ofstream(mFile) << ImporterTessel::TesselToUTF8String(info);
    }
    ~TemporaryDocument()
    {
        std::error_code ignored;
        std::filesystem::remove(mFile, ignored);
    }
    TemporaryDocument(const TemporaryDocument&) = delete;
    TemporaryDocument& operator=(const TemporaryDocument&) = delete;
    [[nodiscard]] const std::filesystem::path& File() const { return mFile; }

private:
    std::filesystem::path mFile;
};

/// argument: tone format; 0 the steady tone, 1 the stereo identification
void StereoClip(benchmark::State& state)
{
    TesselInfo info;
    info.mToneFormat = static_cast<std::int32_t>(state.range(0));
    const TemporaryDocument document(info);
    const auto importer = importhost::Importer::Load(TESSEL_PLUGIN_FILE, importhost::TestingPlugins::Allowed);
    const std::u16string path = document.File().u16string();
    ksOpenRec open{};
    open.path = path.c_str();
    if (importer->Request(ksSelectorOpenFile, nullptr, &open) != 0) {
        state.SkipWithError("the plug-in does not open its document");
        return;
    }
    Buffers buffers;
    ksAudioRec request{};
    request.sampleCount = kBlock;
    request.channels = buffers.Channels();
    request.instance = open.instance;
    for ([[maybe_unused]] auto round : state) {
        if (importer->Request(ksSelectorAudio, nullptr, &request) != 0) {
            state.SkipWithError("the plug-in does not serve sound");
            break;
        }
        benchmark::ClobberMemory();
        request.position = (request.position + kBlock) % (3600 * kSampleRate);
    }
    state.counters["timesRealTime"] = benchmark::Counter(
        static_cast<double>(state.iterations()) * kBlock / kSampleRate, benchmark::Counter::kIsRate);
    static_cast<void>(importer->Request(ksSelectorDeleteInstance, nullptr, open.instance));
}
BENCHMARK(StereoClip)->ArgName("toneFormat")->Arg(0)->Arg(1);

} // namespace

BENCHMARK_MAIN();
