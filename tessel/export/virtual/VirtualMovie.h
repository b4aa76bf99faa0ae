/// A clip as the bytes of a QuickTime movie file, made as they are read.
#pragma once

#include "MovieHeader.h"
#include "PacketPlaces.h"

#include <tessel/export/AskedSource.h>
#include <tessel/export/AudioBlocks.h>
#include <tessel/export/SignalSource.h>
#include <tessel/export/convert/FrameConverter.h>
#include <tessel/export/convert/SampleQuantizer.h>
#include <tessel/export/plan/OutputPlan.h>

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

namespace tessel::exporting {

/// Has the packets, times and tags of the file that `render` writes with the same codecs. Pictures and sound
/// are made when their bytes are read; the last few pictures are kept. Threads: [thread-safe].
class VirtualMovie {
public:
    struct Request {
        Streams streams = Streams::All;
        const VideoCodec* videoCodec = nullptr; ///< raw, v210 or v408; null: what keeps the clip's samples best
        const AudioCodec* audioCodec = nullptr; ///< PCM; null: 24 bits
    };

    /// @param source  borrowed
    /// @throws ExportError  where the clip cannot be such a movie; says what would be right
    VirtualMovie(const SignalSource& source, const Request& request);
    ~VirtualMovie();
    VirtualMovie(const VirtualMovie&) = delete;
    VirtualMovie& operator=(const VirtualMovie&) = delete;

    /// Bytes in all.
    [[nodiscard]] std::int64_t Size() const noexcept { return mSize; }

    /// Fills `bytes` from `offset` on, as far as the movie goes.
    /// @param offset  0 or more
    /// @return how many bytes were filled: 0 at the end
    /// @throws what the source throws
    [[nodiscard]] std::size_t Read(std::int64_t offset, std::span<std::byte> bytes);

private:
    using Bytes = std::shared_ptr<const std::vector<std::byte>>;

    /// A picture that was read not long ago.
    struct KeptPicture {
        std::int64_t index;
        Bytes bytes;
    };

    /// The clip's frames, known to have a format where they become pictures.
    [[nodiscard]] const SignalSource& Source() const noexcept { return mAsked ? *mAsked : mClip; }

    [[nodiscard]] Bytes PictureBytes(std::int64_t index);
    [[nodiscard]] Bytes MakePicture(std::int64_t index);
    /// Bytes of the samples from the one at `offset` of all sound's bytes on.
    void ReadSound(std::int64_t offset, std::span<std::byte> bytes);
    [[nodiscard]] std::size_t ReadPackets(std::int64_t offset, std::span<std::byte> bytes);

    const SignalSource& mClip;
    std::optional<AskedSource> mAsked;
    OutputPlan mPlan;
    std::optional<PacketPlaces> mPlaces;
    std::vector<std::byte> mHeader;
    std::int64_t mSize = 0;

    std::mutex mPicturesMutex;
    std::list<KeptPicture> mPictures;                         ///< the last one that was read stands first
    std::vector<std::unique_ptr<FrameConverter>> mConverters; ///< those that are free: one serves one thread

    std::mutex mSoundMutex;
    std::optional<AudioBlockReader> mSound;
};

} // namespace tessel::exporting
