#include "MovieHeader.h"

#include "AtomWriter.h"
#include "SampleDescriptions.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string_view>

namespace tessel::exporting {
namespace {

constexpr std::int64_t kMovieScale = 1000; ///< units a second of the movie's own times
constexpr std::int64_t kMost32 = std::numeric_limits<std::uint32_t>::max();

/// What both kinds of tracks have.
struct Track {
    std::uint32_t number = 1;
    std::int64_t scale = 1;  ///< units a second of its times
    std::int64_t length = 0; ///< in those
    bool isPicture = true;
    std::int32_t width = 0;
    std::int32_t height = 0;
};

std::int64_t ToMovieScale(const Track& track) noexcept
{
    // Whole seconds apart: the product of a long track and 1000 needs more than 64 bits.
    const std::int64_t rest = track.length % track.scale * kMovieScale;
    return track.length / track.scale * kMovieScale + (rest + track.scale - 1) / track.scale;
}

/// Times need 64 bits.
std::uint32_t VersionFor(std::int64_t length) noexcept
{
    return length >= std::numeric_limits<std::int32_t>::max() ? 1 : 0;
}

/// A track's chunks as the index lists them.
struct ChunkTable {
    /// From this chunk on, counted from 1, chunks have so many entries.
    struct Row {
        std::uint64_t first;
        std::int64_t entries;
    };
    std::vector<Row> rows;
    std::vector<std::int64_t> places;

    void operator()(const Chunk& chunk)
    {
        places.push_back(chunk.offset);
        if (rows.empty() || rows.back().entries != chunk.entries) {
            rows.push_back({places.size(), chunk.entries});
        }
    }
};

class HeaderWriter {
public:
    HeaderWriter(const OutputPlan& plan, const PacketPlaces& places) : mPlan(plan), mPlaces(places)
    {
        places.ForEachPictureChunk(mPictureChunks);
        places.ForEachSoundChunk(mSoundChunks);
    }

    /// @param base        where packets begin
    /// @param wideOffsets  places need 64 bits
    [[nodiscard]] std::vector<std::byte> Write(std::int64_t base, bool wideOffsets)
    {
        mBase = base;
        mWideOffsets = wideOffsets;
        mOut = {};
        mOut.Atom("ftyp", [this] {
            mOut.PutText("qt  ");
            mOut.Put32(0x200);
            mOut.PutText("qt  ");
        });
        mOut.Atom("moov", [this] { PutMovie(); });
        const std::int64_t size = mPlaces.Size() + 8;
        if (wideOffsets) {
            mOut.Put32(1);
            mOut.PutText("mdat");
            mOut.Put64(static_cast<std::uint64_t>(size + 8));
        } else {
            mOut.Atom("wide", [] {});
            mOut.Put32(static_cast<std::uint64_t>(size));
            mOut.PutText("mdat");
        }
        return mOut.Take();
    }

private:
    [[nodiscard]] Track PictureTrack() const noexcept
    {
        const PictureGeometry& geometry = mPlan.video->geometry;
        Track track;
        // Fine enough for times that are not whole frames.
        constexpr std::int64_t kLeastScale = 10'000;
        std::int64_t unitsPerFrame = geometry.rateDenominator;
        track.scale = geometry.rateNumerator;
        while (track.scale < kLeastScale) {
            track.scale *= 2;
            unitsPerFrame *= 2;
        }
        track.length = mPlaces.Shape().pictureCount * unitsPerFrame;
        track.width = geometry.width;
        track.height = geometry.height;
        return track;
    }

    [[nodiscard]] Track SoundTrack() const noexcept
    {
        Track track;
        track.number = mPlan.video ? 2 : 1;
        track.scale = mPlan.audio->sampleRate;
        track.length = mPlaces.Shape().sampleCount;
        track.isPicture = false;
        return track;
    }

    void PutMatrix()
    {
        for (const std::uint64_t value : {0x10000U, 0U, 0U, 0U, 0x10000U, 0U, 0U, 0U, 0x40000000U}) {
            mOut.Put32(value);
        }
    }

    /// Of 32 bits, or of 64 in atoms of version 1.
    void PutNumber(std::int64_t number, std::uint32_t version)
    {
        version == 0 ? mOut.Put32(static_cast<std::uint64_t>(number))
                     : mOut.Put64(static_cast<std::uint64_t>(number));
    }

    void PutDates(std::uint32_t version) { mOut.PutZeros(version == 0 ? 8 : 16); }

    void PutMovie()
    {
        std::int64_t length = 0;
        std::uint32_t tracks = 0;
        if (mPlan.video) {
            length = ToMovieScale(PictureTrack());
            ++tracks;
        }
        if (mPlan.audio) {
            length = std::max(length, ToMovieScale(SoundTrack()));
            ++tracks;
        }
        const std::uint32_t version = VersionFor(length);
        mOut.FullAtom("mvhd", version, 0, [&] {
            PutDates(version);
            mOut.Put32(kMovieScale);
            PutNumber(length, version);
            mOut.Put32(0x10000); // plays at its own speed
            mOut.Put16(0x100);   // and at its own volume
            mOut.PutZeros(10);
            PutMatrix();
            mOut.PutZeros(24);
            mOut.Put32(tracks + 1); // the number of the next track
        });
        if (mPlan.video) {
            PutTrack(PictureTrack());
        }
        if (mPlan.audio) {
            PutTrack(SoundTrack());
        }
    }

    void PutTrack(const Track& track)
    {
        mOut.Atom("trak", [&] {
            const std::int64_t length = ToMovieScale(track);
            const std::uint32_t version = VersionFor(length);
            constexpr std::uint32_t kEnabledInMovie = 3;
            mOut.FullAtom("tkhd", version, kEnabledInMovie, [&] {
                PutDates(version);
                mOut.Put32(track.number);
                mOut.Put32(0);
                PutNumber(length, version);
                mOut.PutZeros(10);
                mOut.Put16(track.isPicture ? 0 : 1); // one group of alternatives for each kind
                mOut.Put16(track.isPicture ? 0 : 0x100);
                mOut.Put16(0);
                PutMatrix();
                mOut.PutFixed(track.width);
                mOut.PutFixed(track.height);
            });
            mOut.Atom("edts", [&] {
                mOut.FullAtom("elst", version, 0, [&] {
                    mOut.Put32(1);
                    PutNumber(length, version);
                    PutNumber(0, version);
                    mOut.Put32(0x10000);
                });
            });
            PutMedia(track);
            if (track.isPicture) {
                PutApertures();
            }
        });
    }

    /// For pixels that are not square: the size at which the picture shows.
    void PutApertures()
    {
        const PictureGeometry& geometry = mPlan.video->geometry;
        const std::int64_t numerator = geometry.aspectNumerator;
        const std::int64_t denominator = geometry.aspectDenominator;
        if (numerator == 0 || numerator == denominator) {
            return;
        }
        const std::int64_t shown = (2 * geometry.width * numerator + denominator) / (2 * denominator);
        mOut.Atom("tapt", [&] {
            for (const std::string_view type : {"clef", "prof", "enof"}) {
                mOut.FullAtom(type, 0, 0, [&] {
                    mOut.PutFixed(type == "enof" ? geometry.width : shown);
                    mOut.PutFixed(geometry.height);
                });
            }
        });
    }

    void PutHandler(std::string_view component, std::string_view kind, std::string_view name)
    {
        mOut.FullAtom("hdlr", 0, 0, [&] {
            mOut.PutText(component);
            mOut.PutText(kind);
            mOut.PutZeros(12);
            mOut.Put8(static_cast<std::uint32_t>(name.size()));
            mOut.PutText(name);
        });
    }

    void PutMedia(const Track& track)
    {
        mOut.Atom("mdia", [&] {
            const std::uint32_t version = VersionFor(track.length);
            mOut.FullAtom("mdhd", version, 0, [&] {
                constexpr std::uint32_t kNoLanguage = 0x7FFF;
                PutDates(version);
                mOut.Put32(static_cast<std::uint64_t>(track.scale));
                PutNumber(track.length, version);
                mOut.Put16(kNoLanguage);
                mOut.Put16(0);
            });
            PutHandler("mhlr", track.isPicture ? "vide" : "soun",
                       track.isPicture ? "VideoHandler" : "SoundHandler");
            mOut.Atom("minf", [&] {
                if (track.isPicture) {
                    mOut.FullAtom("vmhd", 0, 1, [this] { mOut.PutZeros(8); });
                } else {
                    mOut.FullAtom("smhd", 0, 0, [this] { mOut.PutZeros(4); });
                }
                PutHandler("dhlr", "url ", "DataHandler");
                mOut.Atom("dinf", [this] {
                    mOut.FullAtom("dref", 0, 0, [this] {
                        mOut.Put32(1);
                        mOut.FullAtom("url ", 0, 1, [] {}); // this file
                    });
                });
                mOut.Atom("stbl", [&] { PutTables(track); });
            });
        });
    }

    void PutTables(const Track& track)
    {
        const MovieShape& shape = mPlaces.Shape();
        const std::int64_t entries = track.isPicture ? shape.pictureCount : shape.sampleCount;
        mOut.FullAtom("stsd", 0, 0, [&] {
            mOut.Put32(1);
            if (track.isPicture) {
                PutPictureDescription(*mPlan.video, mOut);
            } else {
                PutSoundDescription(*mPlan.audio, mOut);
            }
        });
        mOut.FullAtom("stts", 0, 0, [&] {
            mOut.Put32(1);
            mOut.Put32(static_cast<std::uint64_t>(entries));
            mOut.Put32(static_cast<std::uint64_t>(track.length / entries));
        });
        PutChunkLengths(track);
        mOut.FullAtom("stsz", 0, 0, [&] {
            mOut.Put32(static_cast<std::uint64_t>(track.isPicture ? shape.pictureBytes : shape.sampleBytes));
            mOut.Put32(static_cast<std::uint64_t>(entries));
        });
        PutChunkPlaces(track);
    }

    [[nodiscard]] const ChunkTable& ChunksOf(const Track& track) const noexcept
    {
        return track.isPicture ? mPictureChunks : mSoundChunks;
    }

    void PutChunkLengths(const Track& track)
    {
        mOut.FullAtom("stsc", 0, 0, [&] {
            const ChunkTable& chunks = ChunksOf(track);
            mOut.Put32(chunks.rows.size());
            for (const ChunkTable::Row& row : chunks.rows) {
                mOut.Put32(row.first);
                mOut.Put32(static_cast<std::uint64_t>(row.entries));
                mOut.Put32(1); // the one sample description
            }
        });
    }

    void PutChunkPlaces(const Track& track)
    {
        mOut.FullAtom(mWideOffsets ? "co64" : "stco", 0, 0, [&] {
            const ChunkTable& chunks = ChunksOf(track);
            mOut.Put32(chunks.places.size());
            for (const std::int64_t place : chunks.places) {
                PutNumber(mBase + place, mWideOffsets ? 1 : 0);
            }
        });
    }

    const OutputPlan& mPlan;
    const PacketPlaces& mPlaces;
    ChunkTable mPictureChunks;
    ChunkTable mSoundChunks;
    std::int64_t mBase = 0;
    bool mWideOffsets = false;
    AtomWriter mOut;
};

} // namespace

std::vector<std::byte> MovieHeader(const OutputPlan& plan, const PacketPlaces& places)
{
    HeaderWriter writer(plan, places);
    // Only the widths of numbers change the size, not their values.
    auto size = static_cast<std::int64_t>(writer.Write(0, /*wideOffsets=*/false).size());
    const bool wideOffsets = size + places.Size() > kMost32;
    if (wideOffsets) {
        size = static_cast<std::int64_t>(writer.Write(0, wideOffsets).size());
    }
    return writer.Write(size, wideOffsets);
}

} // namespace tessel::exporting
