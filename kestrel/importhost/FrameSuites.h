/// The suites through which a plug-in makes and sees frames, and the request that a frame belongs to.
#pragma once

#include "FrameBuffer.h"

#include <kestrel/importabi/Records.h>
#include <kestrel/importabi/Suites.h>

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace importhost {

/// What new frames hold. Only `Nothing` is free; it leaves what an earlier frame left.
enum class NewFrameContent : std::uint8_t { Zero, Nothing, Pattern };

/// One frame request under way, on one thread. Frames made for it live here until they are taken;
/// the rest goes back to the pool with the request, whatever the plug-in did with their handles.
class FrameRequest {
public:
    /// @param destination  where the first frame goes that fits there, or null; borrowed
    FrameRequest(std::shared_ptr<FramePool> pool, NewFrameContent content, std::uint8_t pattern = 0,
                 const FrameDestination* destination = nullptr);

    /// The 16 bytes that travel with the frame request: the creator knows its request by them.
    [[nodiscard]] std::array<std::uint8_t, 16> Token() noexcept;

    /// The request that `token` belongs to, or null for null and for bytes that are no token.
    [[nodiscard]] static FrameRequest* FromToken(const void* token) noexcept;

    /// Makes a frame; null with `Refusal` set where it cannot be had.
    [[nodiscard]] ksFrameHandle Create(std::uint32_t pixelFormat, std::int32_t width,
                                       std::int32_t height) noexcept;

    /// Hands over the frame of that handle; null where this request made no such frame.
    [[nodiscard]] std::shared_ptr<const FrameBuffer> TakeFrame(ksFrameHandle handle) noexcept;

    /// Why the last frame was refused.
    [[nodiscard]] FrameRefusal Refusal() const noexcept { return mRefusal; }

private:
    [[nodiscard]] std::shared_ptr<FrameBuffer> NewBuffer(const FrameLayout& layout);

    std::shared_ptr<FramePool> mPool;
    std::vector<std::shared_ptr<FrameBuffer>> mFrames;
    NewFrameContent mContent;
    std::uint8_t mPattern;
    const FrameDestination* mDestination; ///< null also when it is in use
    FrameRefusal mRefusal = FrameRefusal::None;
};

/// The tables, for the life of the process.
[[nodiscard]] const ksFrameCreatorSuite4& FrameCreatorSuite4() noexcept;
[[nodiscard]] const ksFrameSuite1& FrameSuite1() noexcept;
/// Nothing in this system calls into it; it is there because plug-ins acquire it.
[[nodiscard]] const void* PixelFormatSuite1() noexcept;

} // namespace importhost
