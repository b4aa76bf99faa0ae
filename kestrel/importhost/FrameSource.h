/// The frames of one clip, and what new ones are filled with.
#pragma once

#include "Clip.h"
#include "FrameSuites.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace importhost {

/// What became of one frame request.
struct RenderedFrame {
    std::int32_t result = 0; ///< the plug-in's answer
    FrameRefusal refusal = FrameRefusal::None;
    std::shared_ptr<const FrameBuffer> frame; ///< null where none was made
    bool isForeign = false; ///< the plug-in gave a handle that the host did not make for the request
};

/// Sends the frame request (47) for `time` with the token of `request`. @return the plug-in's answer.
[[nodiscard]] std::int32_t RequestFrame(const Importer& importer, ksInstance instance,
                                        qelmediatypes::TickTime time, FrameRequest& request,
                                        ksFrameHandle& handle);

/// Has frames painted. A new frame is zero before the plug-in paints it, so that a picture is a pure function
/// of settings and time also where the plug-in leaves rows alone. Zeroing costs a pass over memory; it is left
/// out where the program knows that the plug-in paints whole frames.
/// Threads: [thread-safe], except `SetPaintedWhole`, which comes before the first frame.
class FrameSource {
public:
    /// `RequestFrame` for one frame: stores the created handle and returns the plug-in's answer.
    using Painter = std::function<std::int32_t(FrameRequest& request, ksFrameHandle& handle)>;

    explicit FrameSource(FrameFilling filling);

    /// @param destination  as of `Clip::RenderFrame`
    /// @throws std::bad_alloc
    [[nodiscard]] RenderedFrame Render(const Painter& paint, const FrameDestination* destination = nullptr);

    /// Whether the plug-in writes every byte of every picture. False at first.
    void SetPaintedWhole(bool isPaintedWhole) noexcept { mIsPaintedWhole = isPaintedWhole; }

private:
    std::shared_ptr<FramePool> mPool;
    FrameFilling mFilling;
    bool mIsPaintedWhole = false;
};

} // namespace importhost
