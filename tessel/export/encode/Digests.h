/// Hashes of what encoders are handed, cut and laid out as FFmpeg's `framehash` output has them.
#pragma once

#include "AudioEncoder.h"
#include "Digest.h"
#include "VideoEncoder.h"

#include <tessel/export/convert/FrameView.h>
#include <tessel/export/convert/Picture.h>
#include <tessel/export/plan/AudioPlan.h>
#include <tessel/export/plan/VideoPlan.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

struct AVHashContext;

namespace tessel::exporting {

/// Threads: one object, one thread at a time.
class Hasher {
public:
    /// @param algorithm  "SHA256", "MD5", ... @throws ExportError  for one that FFmpeg's libraries do not have
    explicit Hasher(const std::string& algorithm);

    void Add(std::span<const std::byte> bytes);
    /// The digest of what was added since the last one.
    [[nodiscard]] Digest Take();

private:
    struct Free {
        void operator()(AVHashContext* context) const noexcept;
    };
    std::unique_ptr<AVHashContext, Free> mContext;
    std::int64_t mBytes = 0;
};

/// The rows of a frame from top to bottom, without padding. @throws ExportError  for a format without pixels
[[nodiscard]] Digest DigestOf(const FrameView& frame, Hasher& hasher);

/// Threads: one object, one thread at a time.
class PictureHasher {
public:
    /// @param plan  its conversion's target is the layout of the pictures to come
    PictureHasher(const VideoPlan& plan, const std::string& algorithm);

    /// A picture that equals the last one costs nothing.
    [[nodiscard]] Digest Of(const Picture& picture);

private:
    std::unique_ptr<VideoEncoder> mRaw;
    Hasher mHasher;
    std::optional<Picture> mLast;
    Digest mDigest;
    std::int64_t mIndex = 0;
};

/// Threads: one object, one thread at a time.
class SoundHasher {
public:
    using Sink = std::function<void(std::int64_t start, std::int64_t count, const Digest& digest)>;

    /// Hashes PCM of as many bits as the plan's codec takes, in pieces as long as that codec's packets.
    SoundHasher(const AudioPlan& plan, const std::string& algorithm, Sink sink);

    /// As `AudioEncoder::Encode`.
    void Add(const std::vector<const float*>& channels, std::int64_t count, std::int64_t clipPosition);
    /// The rest, a short piece.
    void Finish();

private:
    void Flush(std::size_t least);

    AudioEncoder mRaw;
    Hasher mHasher;
    Sink mSink;
    std::size_t mSampleBytes;    ///< of all channels together
    std::size_t mPieceBytes = 0; ///< 0: pieces are as they come
    std::vector<std::byte> mPending;
    std::int64_t mStart = 0;
};

} // namespace tessel::exporting
