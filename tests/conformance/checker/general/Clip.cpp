#include "Clip.h"

#include <algorithm>
#include <cstdlib>

namespace conformance {

std::int32_t StartUp(const Plugin& plugin, GuardedRecord& record)
{
    const TemporaryFolder folder;
    const std::filesystem::path database =
        folder.Write("debug.json", R"({"ML.LoadTestingPluginsAtStartup": "true"})");
    setenv("KESTREL_DEBUG_DATABASE", database.c_str(), 1); // NOLINT(concurrency-mt-unsafe): before any thread
    return plugin.Request(ksSelectorStartUp, ForeignStdParms(), record.Data(), nullptr);
}

void RequireStartUp(const Plugin& plugin)
{
    GuardedRecord record;
    ExpectEqual(StartUp(plugin, record), ksResultServed, "the answer to the start-up request");
}

std::int32_t Open(const Plugin& plugin, const char16_t* path, ksInstance& instance)
{
    GuardedRecord record;
    record.Put(offsetof(ksOpenRec, path), path);
    record.Put(offsetof(ksOpenRec, instance), instance);
    const std::int32_t answer = plugin.Request(ksSelectorOpenFile, ForeignStdParms(), nullptr, record.Data());
    record.ExpectChangedOnly({{offsetof(ksOpenRec, instance), sizeof(ksInstance)}}, "the open request");
    instance = record.Get<ksInstance>(offsetof(ksOpenRec, instance));
    return answer;
}

std::int32_t Describe(const Plugin& plugin, ksInstance instance, GuardedRecord& info)
{
    const std::u16string path = Wide(plugin.Document());
    GuardedRecord access;
    access.Put(offsetof(ksFileAccessRec, path), path.c_str());
    info.Put(offsetof(ksFileInfoRec, instance), instance);
    info.Put<const char*>(offsetof(ksFileInfoRec, settingsText), nullptr);
    const std::int32_t answer =
        plugin.Request(ksSelectorClipDescription, ForeignStdParms(), access.Data(), info.Data());
    access.ExpectUnchanged("the description request's file access");
    return answer;
}

ksFileInfoRec InfoOf(const GuardedRecord& info)
{
    return info.Get<ksFileInfoRec>(0);
}

Clip::Clip(const Plugin& plugin) : mPlugin(plugin)
{
    const std::u16string path = Wide(plugin.Document());
    RequireStartUp(plugin);
    ExpectEqual(Open(plugin, path.c_str(), mInstance), ksResultServed, "the answer to the open request");
    Expect(mInstance != nullptr, "the document was opened, but there is no instance");
    GuardedRecord info;
    ExpectEqual(Describe(plugin, mInstance, info), ksResultServed, "the answer to the description request");
    mInfo = InfoOf(info);
    mInstance = mInfo.instance;
}

Clip::~Clip()
{
    if (mInstance != nullptr) {
        (void)mPlugin.Request(ksSelectorDeleteInstance, ForeignStdParms(), nullptr, mInstance);
    }
}

void Clip::RequireVideo() const
{
    if (mInfo.hasVideo == 0) {
        throw Skipped("the document's clip has no pictures");
    }
}

void Clip::RequireAudio() const
{
    if (mInfo.hasAudio == 0 || mInfo.audioChannelCount <= 0) {
        throw Skipped("the document's clip has no sound");
    }
}

std::int64_t Clip::TicksPerFrame() const
{
    constexpr std::int64_t kTicksPerSecond = 254'016'000'000;
    if (mInfo.videoTimeScale <= 0 || mInfo.videoSampleSize <= 0 || mInfo.videoSampleSize > 36'000'000) {
        return 0; // the product below would leave 64 bits
    }
    const std::int64_t ticks = kTicksPerSecond * mInfo.videoSampleSize;
    const bool isWhole = ticks % mInfo.videoTimeScale == 0;
    return isWhole && ticks / mInfo.videoTimeScale <= kLongestFrame ? ticks / mInfo.videoTimeScale : 0;
}

std::int64_t Clip::FrameCount() const
{
    const std::int64_t count = mInfo.videoSampleSize > 0 ? mInfo.videoDuration / mInfo.videoSampleSize : 1;
    return std::clamp<std::int64_t>(count, 1, 0x7FFFFFFFFFFFFFFF / kLongestFrame);
}

Picture RequestPicture(const Plugin& plugin, ksInstance instance, std::int64_t ticks)
{
    const std::string what = "the frame request at " + std::to_string(ticks) + " ticks";
    void* handle = nullptr;
    GuardedRecord request;
    request.Put(offsetof(ksFrameRec, instance), instance);
    request.Put(offsetof(ksFrameRec, time), ticks);
    request.Put(offsetof(ksFrameRec, frame), &handle);
    Picture picture;
    picture.answer = plugin.Request(ksSelectorFrame, ForeignStdParms(), nullptr, request.Data());
    request.ExpectUnchanged(what);
    const ForeignFrame* frame = FindFrame(handle);
    Expect(frame != nullptr || picture.answer != ksResultServed,
           what + " is answered 0, but what it stored is no frame that the host made");
    if (frame != nullptr) {
        const bool guardsIntact = frame->GuardsIntact();
        for (int row = 0; row < frame->rows; ++row) {
            const std::uint8_t* pixels = frame->Row(row);
            picture.bytes.insert(picture.bytes.end(), pixels, pixels + frame->usedBytes);
        }
        FreeFrame(frame);
        Expect(guardsIntact, what + " wrote bytes outside the picture");
    }
    return picture;
}

Picture RequirePicture(const Plugin& plugin, const Clip& clip, std::int64_t ticks)
{
    Picture picture = RequestPicture(plugin, clip.Instance(), ticks);
    ExpectEqual(picture.answer, ksResultServed,
                "the answer to the frame request at " + std::to_string(ticks) + " ticks");
    return picture;
}

SoundBuffers::SoundBuffers(int channels, std::uint32_t sampleCount)
    : mSamples(static_cast<std::size_t>(std::max(channels, 6)),
               std::vector<float>(sampleCount + 2 * kGuard, kUntouched))
{
    for (auto& channel : mSamples) {
        mPointers.push_back(channel.data() + kGuard);
    }
}

std::vector<float> SoundBuffers::Channel(std::size_t channel) const
{
    const auto& samples = mSamples.at(channel);
    return {samples.begin() + kGuard, samples.end() - kGuard};
}

bool SoundBuffers::GuardsIntact() const
{
    const auto isGuard = [](float sample) { return sample == kUntouched; };
    return std::all_of(mSamples.begin(), mSamples.end(), [&](const auto& samples) {
        return std::all_of(samples.begin(), samples.begin() + kGuard, isGuard) &&
               std::all_of(samples.end() - kGuard, samples.end(), isGuard);
    });
}

bool Sound::operator==(const Sound& other) const
{
    const auto equal = [](const std::vector<float>& a, const std::vector<float>& b) {
        return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0;
    };
    return answer == other.answer &&
           std::equal(channels.begin(), channels.end(), other.channels.begin(), other.channels.end(), equal);
}

Sound RequestSound(const Plugin& plugin, const Clip& clip, std::int64_t position, std::uint32_t sampleCount)
{
    const std::string what =
        "the request for " + std::to_string(sampleCount) + " samples from " + std::to_string(position);
    const int channels = clip.Info().audioChannelCount;
    SoundBuffers buffers(channels, sampleCount);
    GuardedRecord request;
    request.Put(offsetof(ksAudioRec, position), position);
    request.Put(offsetof(ksAudioRec, sampleCount), sampleCount);
    request.Put(offsetof(ksAudioRec, channels), buffers.Pointers());
    request.Put(offsetof(ksAudioRec, instance), clip.Instance());
    Sound sound;
    sound.answer = plugin.Request(ksSelectorAudio, ForeignStdParms(), nullptr, request.Data());
    request.ExpectUnchanged(what);
    Expect(buffers.GuardsIntact(), what + " wrote samples outside its buffers");
    for (int channel = 0; channel < channels; ++channel) {
        sound.channels.push_back(buffers.Channel(static_cast<std::size_t>(channel)));
    }
    return sound;
}

Sound RequireSound(const Plugin& plugin, const Clip& clip, std::int64_t position, std::uint32_t sampleCount)
{
    Sound sound = RequestSound(plugin, clip, position, sampleCount);
    ExpectEqual(sound.answer, ksResultServed, "the answer to a request for sound");
    return sound;
}

} // namespace conformance
