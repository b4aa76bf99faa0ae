/// An open clip of the C interface, with what MLT asks of it most.
#pragma once

#include <tessel/api/tessel.h>

#include <framework/mlt.h>

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace tessel::mlt {

/// A picture in one of MLT's formats, in MLT's own memory.
struct MltPicture {
    struct Release {
        void operator()(std::uint8_t* memory) const noexcept { mlt_pool_release(memory); }
    };
    std::unique_ptr<std::uint8_t, Release> memory; ///< null where the picture cannot be had
    int bytes = 0;
};

/// Threads: [thread-safe]. Frames keep it, so that it lives as long as any of them, whatever becomes of the
/// producer.
class OpenClip {
public:
    /// Null, and a line in MLT's log, where the document cannot be opened or its clip cannot be played.
    [[nodiscard]] static std::shared_ptr<OpenClip> Open(const char* path);

    [[nodiscard]] const tessel_description& Facts() const noexcept { return mFacts; }
    [[nodiscard]] bool HasPicture() const noexcept;
    [[nodiscard]] bool HasSound() const noexcept;

    /// MLT's format that holds the clip's own samples best.
    [[nodiscard]] mlt_image_format OwnFormat() const noexcept { return mOwnFormat; }

    /// A frame in rgb, rgba, yuv422, yuv420p or yuv422p16, in the clip's size.
    [[nodiscard]] MltPicture Picture(std::int64_t frame, mlt_image_format format);

    /// The Y'CbCr matrix of pictures in that format, by MLT's numbers: 601, 709, 240, 2020.
    [[nodiscard]] int ColorSpace(mlt_image_format format) const;

    /// Planar floats, `count` of each channel. False, and a line in the log, where they cannot be had.
    [[nodiscard]] bool Samples(std::int64_t start, int count, float* planes) const;

private:
    struct Close {
        void operator()(tessel_clip* clip) const noexcept { tessel_close(clip); }
    };

    explicit OpenClip(tessel_clip* clip);

    /// Why the clip cannot be played; empty where it can.
    [[nodiscard]] std::string Obstacle() const;

    [[nodiscard]] MltPicture Paint(std::int64_t frame, mlt_image_format format) const;

    std::unique_ptr<tessel_clip, Close> mClip;
    tessel_description mFacts{};
    mlt_image_format mOwnFormat = mlt_image_rgba;
    std::mutex mStillMutex;
    std::map<mlt_image_format, MltPicture> mStills; ///< the one picture of a clip whose frames are all alike
};

} // namespace tessel::mlt
