#include "FrameSource.h"

#include <kestrel/importabi/Selectors.h>

#include <cstring>

namespace importhost {
namespace {

/// Stands out in pictures, and its 32-bit float is no color (-2.9e-16).
constexpr std::uint8_t kPoison = 0xA5;

} // namespace

std::int32_t RequestFrame(const Importer& importer, ksInstance instance, qelmediatypes::TickTime time,
                          FrameRequest& request, ksFrameHandle& handle)
{
    ksFrameRec record{};
    record.instance = instance;
    record.time = time.Ticks();
    record.frame = &handle;
    const auto token = request.Token();
    static_assert(sizeof record.extra16 == sizeof token);
    std::memcpy(record.extra16, token.data(), token.size());
    return importer.Request(ksSelectorFrame, nullptr, &record);
}

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
