#include "Digests.h"

#include <kestrel/pixmill/PixelFormatCodes.h>
#include <tessel/export/ExportError.h>

#include <fmt/format.h>

extern "C" {
#include <libavutil/hash.h>
}

#include <array>
#include <utility>

namespace tessel::exporting {
namespace {

/// The same pictures as packets of their own memory.
VideoPlan RawPlan(const VideoPlan& plan)
{
    VideoPlan raw = plan;
    raw.rawWriter = RawWriter::Libav;
    raw.options = {};
    raw.tag = {};
    raw.quality.reset();
    raw.headersOutOfBand = false;
    const bool isV210 = plan.conversion.target == PictureLayout::V210;
    raw.codec = VideoCodecNamed(isV210 ? "v210" : "raw");
    raw.encoder = isV210 ? std::string_view() : raw.codec->encoder;
    return raw;
}

/// The same samples as PCM of as many bits.
AudioPlan RawPlan(const AudioPlan& plan)
{
    AudioPlan raw = plan;
    raw.headersOutOfBand = false;
    switch (plan.codec->bits) {
    case 0:
        raw.codec = AudioCodecNamed("pcmfloat");
        break;
    case 16:
        raw.codec = AudioCodecNamed("pcm16");
        break;
    case 24:
        raw.codec = AudioCodecNamed("pcm24");
        break;
    default:
        raw.codec = AudioCodecNamed("pcm32");
    }
    return raw;
}

std::span<const std::byte> BytesOf(const AVPacket& packet)
{
    return std::as_bytes(std::span(packet.data, static_cast<std::size_t>(packet.size)));
}

} // namespace

Hasher::Hasher(const std::string& algorithm)
{
    AVHashContext* context = nullptr;
    if (av_hash_alloc(&context, algorithm.c_str()) < 0) {
        throw ExportError(fmt::format("'{}' is no hash that this build of FFmpeg has", algorithm));
    }
    mContext.reset(context);
    av_hash_init(context);
}

void Hasher::Free::operator()(AVHashContext* context) const noexcept
{
    av_hash_freep(&context);
}

void Hasher::Add(std::span<const std::byte> bytes)
{
    av_hash_update(mContext.get(), reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    mBytes += static_cast<std::int64_t>(bytes.size());
}

Digest Hasher::Take()
{
    std::array<std::uint8_t, 2 * AV_HASH_MAX_SIZE + 1> text{};
    av_hash_final_hex(mContext.get(), text.data(), static_cast<int>(text.size()));
    av_hash_init(mContext.get());
    return {reinterpret_cast<const char*>(text.data()), std::exchange(mBytes, 0)};
}

Digest DigestOf(const FrameView& frame, Hasher& hasher)
{
    const std::uint64_t rowBytes = pixmill::BytesPerRow(PM_QELPixelFormatToPMPixelFormat(frame.format),
                                                        static_cast<std::uint32_t>(frame.width));
    if (rowBytes == 0) {
        throw ExportError("frames of this pixel format have no pixels to hash");
    }
    for (std::int32_t row = 0; row < frame.height; ++row) {
        hasher.Add({frame.top + row * frame.rowBytes, static_cast<std::size_t>(rowBytes)});
    }
    return hasher.Take();
}

PictureHasher::PictureHasher(const VideoPlan& plan, const std::string& algorithm)
    : mRaw(VideoEncoder::Make(RawPlan(plan), /*threadCount=*/1)), mHasher(algorithm)
{
}

Digest PictureHasher::Of(const Picture& picture)
{
    if (!mLast || !IsSamePicture(*mLast, picture)) {
        mRaw->Encode(picture, mIndex++, [this](const AVPacket& packet) { mHasher.Add(BytesOf(packet)); });
        mDigest = mHasher.Take();
        mLast = picture;
    }
    return mDigest;
}

SoundHasher::SoundHasher(const AudioPlan& plan, const std::string& algorithm, Sink sink)
    : mRaw(RawPlan(plan)), mHasher(algorithm), mSink(std::move(sink)),
      mSampleBytes(
          static_cast<std::size_t>(RawPlan(plan).codec->bits == 0 ? 4 : RawPlan(plan).codec->bits / 8) *
          plan.hostChannels.size())
{
    const AudioEncoder coded(plan);
    if (coded.HasPacketLength()) {
        mPieceBytes = static_cast<std::size_t>(coded.SamplesPerPacket()) * mSampleBytes;
    }
}

void SoundHasher::Add(const std::vector<const float*>& channels, std::int64_t count, std::int64_t clipPosition)
{
    mRaw.Encode(channels, count, clipPosition, [this](const AVPacket& packet) {
        const auto bytes = BytesOf(packet);
        mPending.insert(mPending.end(), bytes.begin(), bytes.end());
        Flush(mPieceBytes);
    });
}

void SoundHasher::Finish()
{
    mRaw.Finish([this](const AVPacket& packet) {
        const auto bytes = BytesOf(packet);
        mPending.insert(mPending.end(), bytes.begin(), bytes.end());
    });
    Flush(mPieceBytes);
    Flush(0);
}

/// Hands over pieces of `least` bytes, or all that there is for 0.
void SoundHasher::Flush(std::size_t least)
{
    std::size_t begin = 0;
    while (begin < mPending.size() && mPending.size() - begin >= least) {
        const std::size_t size = least == 0 ? mPending.size() - begin : least;
        mHasher.Add(std::span(mPending).subspan(begin, size));
        begin += size;
        const auto count = static_cast<std::int64_t>(size / mSampleBytes);
        mSink(mStart, count, mHasher.Take());
        mStart += count;
    }
    mPending.erase(mPending.begin(), mPending.begin() + static_cast<std::ptrdiff_t>(begin));
}

} // namespace tessel::exporting
