/// The closed forms of `PacketPlaces` against packets that are listed and sorted one by one.

#include <tessel/export/AudioBlocks.h>
#include <tessel/export/virtual/PacketPlaces.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

namespace tessel::exporting {
namespace {

struct Packet {
    bool isPicture = false;
    std::int64_t number = 0;  ///< of the picture, or of the first sample
    std::int64_t entries = 1; ///< samples
    std::int64_t offset = 0;
};

/// Whether a packet is written before another: by exact time, pictures first.
bool IsBefore(const Packet& left, const Packet& right, const MovieShape& shape)
{
    // number × denominator / numerator seconds for pictures, number / rate for samples; both times numerator ×
    // rate.
    const auto time = [&](const Packet& packet) {
        return packet.isPicture ? packet.number * shape.rateDenominator * shape.sampleRate
                                : packet.number * shape.rateNumerator;
    };
    return time(left) != time(right) ? time(left) < time(right) : left.isPicture && !right.isPicture;
}

/// The packets as `render` makes them: a picture, then its sound, which is cut at blocks; sorted.
std::vector<Packet> PacketsOf(const MovieShape& shape)
{
    std::vector<Packet> packets;
    std::int64_t sample = 0;
    for (std::int64_t picture = 0; picture < shape.pictureCount; ++picture) {
        packets.push_back({.isPicture = true, .number = picture});
        const std::int64_t end = std::min(
            FrameStartSample(picture + 1, shape.rateNumerator, shape.rateDenominator, shape.sampleRate),
            shape.sampleCount);
        while (sample < end) {
            const std::int64_t count =
                std::min(end, (sample / shape.soundBlock + 1) * shape.soundBlock) - sample;
            packets.push_back({.number = sample, .entries = count});
            sample += count;
        }
    }
    std::stable_sort(packets.begin(), packets.end(),
                     [&](const Packet& left, const Packet& right) { return IsBefore(left, right, shape); });
    std::int64_t offset = 0;
    for (Packet& packet : packets) {
        packet.offset = offset;
        offset += packet.isPicture ? shape.pictureBytes : packet.entries * shape.sampleBytes;
    }
    return packets;
}

MovieShape RandomShape(std::mt19937& random)
{
    const auto from = [&random](std::int32_t least, std::int32_t most) {
        return std::uniform_int_distribution<std::int32_t>(least, most)(random);
    };
    MovieShape shape;
    shape.pictureCount = from(1, 60);
    shape.pictureBytes = from(1, 700'000);
    shape.rateNumerator = from(1, 120'000);
    shape.rateDenominator = shape.rateNumerator > 1001 && from(0, 1) == 0 ? 1001 : from(1, 50);
    shape.sampleRate = from(0, 2) == 0 ? 48'000 : from(1, 100'000);
    shape.sampleBytes = from(1, 64);
    shape.soundBlock = AudioBlockSize(shape.sampleRate);
    shape.sampleCount =
        FrameStartSample(shape.pictureCount, shape.rateNumerator, shape.rateDenominator, shape.sampleRate);
    return shape;
}

void Compare(const MovieShape& shape)
{
    const PacketPlaces places(shape);
    std::int64_t samples = 0;
    for (const Packet& packet : PacketsOf(shape)) {
        if (!packet.isPicture) {
            samples += packet.entries;
            continue;
        }
        ASSERT_EQ(places.SamplesBefore(packet.number), samples) << packet.number;
        ASSERT_EQ(places.PictureOffset(packet.number), packet.offset) << packet.number;
        ASSERT_EQ(places.PictureAt(packet.offset), packet.number);
        ASSERT_EQ(places.PictureAt(packet.offset + shape.pictureBytes - 1), packet.number);
        if (packet.number > 0) {
            ASSERT_EQ(places.PictureAt(packet.offset - 1), packet.number - 1);
        }
    }
    ASSERT_EQ(places.Size(), shape.pictureCount * shape.pictureBytes + samples * shape.sampleBytes);
}

TEST(PacketPlaces, EqualPacketsThatAreListedAndSorted)
{
    const unsigned seed = std::random_device{}();
    std::mt19937 random(seed);
    for (int turn = 0; turn < 300; ++turn) {
        const MovieShape shape = RandomShape(random);
        SCOPED_TRACE(::testing::Message()
                     << "seed " << seed << ": " << shape.pictureCount << " pictures at " << shape.rateNumerator
                     << '/' << shape.rateDenominator << ", " << shape.sampleRate << " samples a second");
        Compare(shape);
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST(PacketPlaces, MorePicturesThanSamplesKeepTheirOrder)
{
    Compare({.pictureCount = 500,
             .pictureBytes = 7,
             .rateNumerator = 100'000,
             .sampleCount = FrameStartSample(500, 100'000, 1, 8000),
             .sampleBytes = 3,
             .sampleRate = 8000,
             .soundBlock = 800});
}

TEST(PacketPlaces, ChunksCoverEachTrackOnceAndHoldLessThanAMegabyte)
{
    std::mt19937 random(7);
    for (int turn = 0; turn < 50; ++turn) {
        const MovieShape shape = RandomShape(random);
        const PacketPlaces places(shape);
        std::int64_t pictures = 0;
        places.ForEachPictureChunk([&](const Chunk& chunk) {
            EXPECT_EQ(chunk.offset, places.PictureOffset(pictures));
            EXPECT_EQ(chunk.bytes, chunk.entries * shape.pictureBytes);
            EXPECT_TRUE(chunk.bytes < 1 << 20 || chunk.entries == 1);
            pictures += chunk.entries;
        });
        EXPECT_EQ(pictures, shape.pictureCount);
        std::int64_t samples = 0;
        std::int64_t behind = 0; // the end of the last chunk
        places.ForEachSoundChunk([&](const Chunk& chunk) {
            EXPECT_GE(chunk.offset, behind);
            EXPECT_EQ(chunk.bytes, chunk.entries * shape.sampleBytes);
            // Between it and the start of the movie there are whole pictures and the sound so far.
            EXPECT_EQ((chunk.offset - samples * shape.sampleBytes) % shape.pictureBytes, 0);
            behind = chunk.offset + chunk.bytes;
            samples += chunk.entries;
        });
        EXPECT_EQ(samples, shape.sampleCount);
    }
}

} // namespace
} // namespace tessel::exporting
