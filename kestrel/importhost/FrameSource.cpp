#include "FrameSource.h"

namespace importhost {
namespace {

/// Stands out in pictures, and its 32-bit float is no color (-2.9e-16).
constexpr std::uint8_t kPoison = 0xA5;

} // namespace

FrameSource::FrameSource(FrameFilling filling) : mPool(std::make_shared<FramePool>()), mFilling(filling) {}

RenderedFrame FrameSource::Render(const Painter& paint, const FrameDestination* destination)
{
    NewFrameContent content = mIsPaintedWhole ? NewFrameContent::Nothing : NewFrameContent::Zero;
    if (mFilling == FrameFilling::Poison) {
        content = NewFrameContent::Pattern;
    }
    FrameRequest request(mPool, content, kPoison, destination);
    ksFrameHandle handle = nullptr;
    RenderedFrame rendered;
    rendered.result = paint(request, handle);
    rendered.refusal = request.Refusal();
    rendered.frame = request.TakeFrame(handle);
    rendered.isForeign = rendered.frame == nullptr && handle != nullptr;
    return rendered;
}

} // namespace importhost
