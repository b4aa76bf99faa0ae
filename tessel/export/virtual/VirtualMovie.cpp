#include "VirtualMovie.h"

#include "UncodedPicture.h"

#include <tessel/export/ExportError.h>
#include <tessel/export/plan/ClipConversion.h>

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <utility>

namespace tessel::exporting {
namespace {

using document::ClipFacts;

/// The codec without an encoder that keeps most of the clip's samples.
const VideoCodec* UncodedCodecFor(const PixelKind& kind) noexcept
{
    const bool isRgb = kind.family == ColorFamily::Rgb;
    if (kind.storage == Storage::V210 || (kind.storage == Storage::InterleavedF && !isRgb)) {
        return VideoCodecNamed("v210");
    }
    return VideoCodecNamed(kind.storage == Storage::Interleaved8 && !isRgb ? "v408" : "raw");
}

/// The plan's own refusals name options of the program, which readers of movies do not have.
void RequireStreams(const ClipFacts& clip, Streams streams)
{
    if (streams != Streams::AudioOnly && (clip.width < 1 || clip.height < 1)) {
        throw ExportError(fmt::format("the clip has no picture, its frames are {}x{}: ask for its sound alone",
                                      clip.width, clip.height));
    }
    const SoundShape sound = SoundShapeOf(clip);
    if (streams != Streams::VideoOnly && clip.channelCount > 0 &&
        (sound.sampleRate == 0 || sound.hostChannels.empty())) {
        throw ExportError(
            fmt::format("movies do not take {} channels at {} samples a second: ask for the picture alone",
                        clip.channelCount, clip.sampleRate));
    }
}

OutputPlan PlanFor(const ClipFacts& clip, const VirtualMovie::Request& request)
{
    OutputRequest output{.container = ContainerNamed("mov"),
                         .streams = request.streams,
                         .videoCodec = request.videoCodec,
                         .audioCodec = request.audioCodec};
    if (WantsPicture(output) && output.videoCodec == nullptr) {
        output.videoCodec = UncodedCodecFor(KindToKeep(clip));
    }
    OutputPlan plan = PlanOutput(clip, output);
    if (plan.audio && !plan.audio->codec->name.starts_with("pcm")) {
        throw ExportError(fmt::format("sound without an encoder is pcm16, pcm24, pcm32 or pcmfloat, not {}",
                                      plan.audio->codec->name));
    }
    return plan;
}

/// Bytes of one sample of a channel.
std::size_t BytesPerSample(const AudioCodec& codec) noexcept
{
    return codec.bits == 0 ? sizeof(float) : static_cast<std::size_t>(codec.bits) / 8;
}

MovieShape ShapeOf(const OutputPlan& plan, const ClipFacts& clip)
{
    MovieShape shape;
    shape.rateNumerator = clip.timeScale;
    shape.rateDenominator = clip.sampleSize;
    if (clip.frameCount < 1) {
        throw ExportError("the clip has no frames: give it a duration");
    }
    constexpr std::int64_t kMostPictures = 1 << 23; // 38 hours at 60 frames a second
    if (clip.frameCount > kMostPictures) {
        throw ExportError(fmt::format("a clip of {} frames is too long to be read as a movie: {} are the most",
                                      clip.frameCount, kMostPictures));
    }
    if (plan.video) {
        shape.pictureCount = clip.frameCount;
        shape.pictureBytes = UncodedPictureOf(*plan.video).bytes;
        constexpr std::int64_t kMostBytes = std::numeric_limits<std::int32_t>::max();
        constexpr std::int32_t kMostPixels = std::numeric_limits<std::uint16_t>::max();
        if (shape.pictureBytes > kMostBytes || std::max(clip.width, clip.height) > kMostPixels) {
            throw ExportError(
                fmt::format("pictures of {}x{} are larger than movies hold", clip.width, clip.height));
        }
    }
    if (plan.audio) {
        shape.sampleRate = plan.audio->sampleRate;
        shape.sampleCount =
            FrameStartSample(clip.frameCount, clip.timeScale, clip.sampleSize, shape.sampleRate);
        shape.sampleBytes =
            static_cast<std::int64_t>(BytesPerSample(*plan.audio->codec) * plan.audio->hostChannels.size());
        shape.soundBlock = AudioBlockSize(shape.sampleRate);
        if (shape.sampleCount > std::numeric_limits<std::uint32_t>::max()) {
            throw ExportError("the clip's sound is too long to be read as a movie");
        }
    }
    return shape;
}

/// Little-endian codes of one sample. @param code  in the high bits of 32 where the codec has 24
void PutSample(const AudioCodec& codec, float sample, std::int32_t code, std::byte* bytes) noexcept
{
    std::uint32_t bits =
        codec.bits == 0 ? std::bit_cast<std::uint32_t>(sample) : static_cast<std::uint32_t>(code);
    constexpr std::uint32_t kLeftOut = 8;
    bits >>= codec.bits == 24 ? kLeftOut : 0U;
    for (std::size_t index = 0; index < BytesPerSample(codec); ++index) {
        bytes[index] = static_cast<std::byte>(bits >> (8 * index) & 0xFFU);
    }
}

} // namespace

VirtualMovie::VirtualMovie(const SignalSource& source, const Request& request) : mClip(source)
{
    RequireStreams(source.Description(), request.streams);
    if (request.streams != Streams::AudioOnly) {
        mAsked.emplace(source, 0);
    }
    const ClipFacts& clip = Source().Description();
    mPlan = PlanFor(clip, request);
    mPlaces.emplace(ShapeOf(mPlan, clip));
    mHeader = MovieHeader(mPlan, *mPlaces);
    mSize = static_cast<std::int64_t>(mHeader.size()) + mPlaces->Size();
    if (mPlan.audio) {
        mSound.emplace(Source(), mPlan.audio->sampleRate, clip.channelCount);
    }
}

VirtualMovie::~VirtualMovie() = default;

std::size_t VirtualMovie::Read(std::int64_t offset, std::span<std::byte> bytes)
{
    if (offset >= mSize) {
        return 0;
    }
    bytes = bytes.first(static_cast<std::size_t>(
        std::min<std::uint64_t>(bytes.size(), static_cast<std::uint64_t>(mSize - offset))));
    std::size_t done = 0;
    while (done < bytes.size()) {
        const std::int64_t place = offset + static_cast<std::int64_t>(done);
        const auto rest = bytes.subspan(done);
        const auto headerSize = static_cast<std::int64_t>(mHeader.size());
        if (place < headerSize) {
            const std::size_t count = std::min(rest.size(), static_cast<std::size_t>(headerSize - place));
            std::copy_n(mHeader.begin() + static_cast<std::ptrdiff_t>(place), count, rest.begin());
            done += count;
        } else {
            done += ReadPackets(place - headerSize, rest);
        }
    }
    return done;
}

std::size_t VirtualMovie::ReadPackets(std::int64_t offset, std::span<std::byte> bytes)
{
    const MovieShape& shape = mPlaces->Shape();
    std::int64_t soundOffset = offset; // in all sound's bytes
    std::int64_t soundEnd = mPlaces->Size();
    if (shape.pictureCount > 0) {
        const std::int64_t index = mPlaces->PictureAt(offset);
        const std::int64_t inside = offset - mPlaces->PictureOffset(index);
        if (inside < shape.pictureBytes) {
            const std::size_t count =
                std::min(bytes.size(), static_cast<std::size_t>(shape.pictureBytes - inside));
            const Bytes picture = PictureBytes(index);
            std::copy_n(picture->begin() + static_cast<std::ptrdiff_t>(inside), count, bytes.begin());
            return count;
        }
        soundOffset = offset - (index + 1) * shape.pictureBytes;
        soundEnd = mPlaces->SamplesBefore(index + 1) * shape.sampleBytes;
    }
    const std::size_t count = std::min(bytes.size(), static_cast<std::size_t>(soundEnd - soundOffset));
    ReadSound(soundOffset, bytes.first(count));
    return count;
}

VirtualMovie::Bytes VirtualMovie::PictureBytes(std::int64_t index)
{
    // All pictures of a clip that stands still are the first one.
    const std::int64_t number = Source().Description().isStill ? 0 : index;
    {
        const std::lock_guard lock(mPicturesMutex);
        const auto found = std::find_if(mPictures.begin(), mPictures.end(),
                                        [number](const KeptPicture& kept) { return kept.index == number; });
        if (found != mPictures.end()) {
            mPictures.splice(mPictures.begin(), mPictures, found);
            return found->bytes;
        }
    }
    Bytes bytes = MakePicture(number);
    // Readers come back to the last pictures; of large ones fewer are kept.
    constexpr std::size_t kMostPictures = 8;
    constexpr std::size_t kMostBytes = std::size_t{1} << 28;
    const std::size_t most =
        std::clamp<std::size_t>(kMostBytes / std::max<std::size_t>(bytes->size(), 1), 1, kMostPictures);
    const std::lock_guard lock(mPicturesMutex);
    mPictures.push_front({number, bytes});
    while (mPictures.size() > most) {
        mPictures.pop_back();
    }
    return bytes;
}

VirtualMovie::Bytes VirtualMovie::MakePicture(std::int64_t index)
{
    std::unique_ptr<FrameConverter> converter;
    {
        const std::lock_guard lock(mPicturesMutex);
        if (!mConverters.empty()) {
            converter = std::move(mConverters.back());
            mConverters.pop_back();
        }
    }
    if (!converter) {
        converter = std::make_unique<FrameConverter>(mPlan.video->conversion);
    }
    const Picture picture = converter->Convert(Source().RenderFrame(index));
    auto bytes =
        std::make_shared<std::vector<std::byte>>(static_cast<std::size_t>(mPlaces->Shape().pictureBytes));
    WriteUncoded(*mPlan.video, picture, *bytes);
    const std::lock_guard lock(mPicturesMutex);
    mConverters.push_back(std::move(converter));
    return bytes;
}

void VirtualMovie::ReadSound(std::int64_t offset, std::span<std::byte> bytes)
{
    const AudioPlan& plan = *mPlan.audio;
    const std::size_t codeBytes = BytesPerSample(*plan.codec);
    const SampleQuantizer quantizer(std::max(plan.codec->bits, 16), plan.dither);
    const std::int64_t sampleBytes = mPlaces->Shape().sampleBytes;
    std::vector<std::byte> sample(static_cast<std::size_t>(sampleBytes));
    const std::lock_guard lock(mSoundMutex);
    std::size_t done = 0;
    while (done < bytes.size()) {
        const std::int64_t place = offset + static_cast<std::int64_t>(done);
        const std::int64_t position = place / sampleBytes;
        static_cast<void>(mSound->Read(position, 1));
        for (std::size_t channel = 0; channel < plan.hostChannels.size(); ++channel) {
            const float value = *mSound->Channel(plan.hostChannels[channel]);
            const std::int32_t code =
                plan.codec->bits == 0 ? 0 : quantizer(value, position, static_cast<std::int32_t>(channel));
            PutSample(*plan.codec, value, code, &sample[channel * codeBytes]);
        }
        const auto inside = static_cast<std::size_t>(place % sampleBytes);
        const std::size_t count = std::min(bytes.size() - done, sample.size() - inside);
        std::copy_n(sample.begin() + static_cast<std::ptrdiff_t>(inside), count,
                    bytes.begin() + static_cast<std::ptrdiff_t>(done));
        done += count;
    }
}

} // namespace tessel::exporting
