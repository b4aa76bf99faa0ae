/// The frames of one clip: what new ones are filled with, and whether that can be spared.
#pragma once

#include "Clip.h"
#include "FrameSuites.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

namespace importhost {

/// What became of one frame request.
struct RenderedFrame {
    std::int32_t result = 0; ///< the plug-in's answer
    bool wasAsked = false;   ///< whether the plug-in tried to make a frame
    FrameRefusal refusal = FrameRefusal::None;
    std::shared_ptr<const FrameBuffer> frame; ///< null where none was made
};

/// Has frames painted, each over zeros, so that a picture is a pure function of settings and time also
/// where the plug-in leaves rows alone.
///
/// Zeroing costs a pass over memory. The first frame is therefore painted twice, over two fillings that
/// differ in every bit: if all bytes of the picture come out equal, the plug-in wrote every one of them,
/// and later frames are handed out as they are. That holds for all times of a clip, because which pixels are
/// painted depends on the settings alone, but for the printed number, whose plate only grows: so the
/// proof is not tried on frames so small that a plate can be most of the picture.
/// Threads: [thread-safe].
class FrameSource {
public:
    /// Sends the frame request with the token of `request`; stores the created handle and returns the
    /// plug-in's answer.
    using Painter = std::function<std::int32_t(FrameRequest& request, ksFrameHandle& handle)>;

    explicit FrameSource(FrameFilling filling);

    /// @throws std::bad_alloc
    [[nodiscard]] RenderedFrame Render(const Painter& paint);

    /// Whether frames are handed out without zeroing by now.
    [[nodiscard]] bool SparesZeroing() const noexcept;

private:
    enum class Coverage : std::uint8_t { Unknown, BeingProven, Whole, Partial };

    [[nodiscard]] RenderedFrame RenderOver(const Painter& paint, NewFrameContent content,
                                           std::uint8_t pattern = 0);
    [[nodiscard]] RenderedFrame ProveAndRender(const Painter& paint);

    std::shared_ptr<FramePool> mPool;
    FrameFilling mFilling;
    std::atomic<Coverage> mCoverage = Coverage::Unknown;
};

} // namespace importhost
