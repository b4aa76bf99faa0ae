/// Where the packets of a movie lie when picture and sound alternate as `render` writes them.
///
/// Packets stand in the order of their times, a picture before sound of the same time. All pictures have one
/// size and all samples another, so every place follows from counting and nothing needs a table.
#pragma once

#include <cstdint>

namespace tessel::exporting {

struct MovieShape {
    std::int64_t pictureCount = 0; ///< 0: sound alone
    std::int64_t pictureBytes = 0; ///< of each
    std::int32_t rateNumerator = 1;
    std::int32_t rateDenominator = 1;
    std::int64_t sampleCount = 0; ///< of each channel; 0: no sound
    std::int64_t sampleBytes = 0; ///< of one sample of all channels
    std::int32_t sampleRate = 1;
    std::int64_t soundBlock = 1; ///< packets of sound end at its multiples, and where pictures begin
};

/// Packets of one track that lie together. QuickTime names the place of each chunk.
struct Chunk {
    std::int64_t offset = 0;
    std::int64_t bytes = 0;
    std::int64_t entries = 0; ///< pictures or samples
};

/// Offsets count from the first packet. Threads: [thread-safe].
class PacketPlaces {
public:
    explicit PacketPlaces(const MovieShape& shape) noexcept : mShape(shape) {}

    [[nodiscard]] const MovieShape& Shape() const noexcept { return mShape; }

    /// All packets' bytes.
    [[nodiscard]] std::int64_t Size() const noexcept
    {
        return mShape.pictureCount * mShape.pictureBytes + mShape.sampleCount * mShape.sampleBytes;
    }

    /// How many samples stand before picture `index`: none before the first, all before those behind the last.
    [[nodiscard]] std::int64_t SamplesBefore(std::int64_t index) const noexcept;

    /// The place of picture `index`, 0 to less than `pictureCount`.
    [[nodiscard]] std::int64_t PictureOffset(std::int64_t index) const noexcept
    {
        return index * mShape.pictureBytes + SamplesBefore(index) * mShape.sampleBytes;
    }

    /// The last picture that does not begin behind `offset`. There is at least one picture.
    [[nodiscard]] std::int64_t PictureAt(std::int64_t offset) const noexcept;

    /// Gives each chunk of a track to `take`, in order. @{
    template <class Take>
    void ForEachPictureChunk(Take&& take) const
    {
        ChunkBuilder builder;
        for (std::int64_t index = 0; index < mShape.pictureCount; ++index) {
            builder.Add({PictureOffset(index), mShape.pictureBytes, 1}, take);
        }
        builder.Finish(take);
    }
    template <class Take>
    void ForEachSoundChunk(Take&& take) const
    {
        ChunkBuilder builder;
        const std::int64_t parts = mShape.pictureCount > 0 ? mShape.pictureCount : 1;
        std::int64_t sample = 0;
        for (std::int64_t part = 0; part < parts; ++part) {
            const std::int64_t pictures = mShape.pictureCount > 0 ? part + 1 : 0;
            for (const std::int64_t end = SamplesBefore(part + 1); sample < end;) {
                const std::int64_t next = NextCut(sample, part);
                builder.Add({pictures * mShape.pictureBytes + sample * mShape.sampleBytes,
                             (next - sample) * mShape.sampleBytes, next - sample},
                            take);
                sample = next;
            }
        }
        builder.Finish(take);
    }
    /// @}

private:
    /// Joins packets that touch, up to a megabyte.
    class ChunkBuilder {
    public:
        template <class Take>
        void Add(const Chunk& packet, Take& take)
        {
            constexpr std::int64_t kMostBytes = 1 << 20;
            if (mChunk.entries != 0 && mChunk.offset + mChunk.bytes == packet.offset &&
                mChunk.bytes + packet.bytes < kMostBytes) {
                mChunk.bytes += packet.bytes;
                mChunk.entries += packet.entries;
                return;
            }
            Finish(take);
            mChunk = packet;
        }
        template <class Take>
        void Finish(Take& take) const
        {
            if (mChunk.entries != 0) {
                take(mChunk);
            }
        }

    private:
        Chunk mChunk;
    };

    /// The end of the packet of sound that begins at `sample`, not before picture `index` does.
    [[nodiscard]] std::int64_t NextCut(std::int64_t sample, std::int64_t index) const noexcept;

    /// The sample at which a picture begins, rounded, but none behind the end.
    [[nodiscard]] std::int64_t StartSample(std::int64_t index) const noexcept;

    MovieShape mShape;
};

} // namespace tessel::exporting
