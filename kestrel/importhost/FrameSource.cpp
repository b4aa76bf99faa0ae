#include "FrameSource.h"

#include <kestrel/importabi/ResultCodes.h>

#include <cstring>

namespace importhost {
namespace {

constexpr std::uint8_t kPoison = 0xA5;
constexpr std::uint8_t kOtherPoison = 0x5A;
static_assert((kPoison ^ kOtherPoison) == 0xFF, "the fillings must differ in every bit");

/// A side below which zeroing is cheap and a number plate may cover what nothing else paints.
constexpr std::int32_t kSmallestProvenSide = 128;

bool HaveEqualPictures(const FrameBuffer& a, const FrameBuffer& b) noexcept
{
    const FrameLayout& layout = a.Layout();
    if (layout.ByteCount() != b.Layout().ByteCount() || layout.rowBytes != b.Layout().rowBytes ||
        layout.format != b.Layout().format) {
        return false;
    }
    for (std::int32_t row = 0; row < layout.height; ++row) {
        const std::size_t offset = static_cast<std::size_t>(row) * static_cast<std::size_t>(layout.rowBytes);
        if (std::memcmp(a.Pixels() + offset, b.Pixels() + offset, layout.pictureRowBytes) != 0) {
            return false;
        }
    }
    return true;
}

bool IsWhole(const RenderedFrame& rendered) noexcept
{
    return rendered.result == ksResultServed && rendered.frame != nullptr;
}

} // namespace

FrameSource::FrameSource(FrameFilling filling) : mPool(std::make_shared<FramePool>()), mFilling(filling) {}

RenderedFrame FrameSource::Render(const Painter& paint)
{
    if (mFilling == FrameFilling::Poison) {
        return RenderOver(paint, NewFrameContent::Pattern, kPoison);
    }
    Coverage expected = Coverage::Unknown;
    if (mCoverage.compare_exchange_strong(expected, Coverage::BeingProven)) {
        return ProveAndRender(paint);
    }
    return RenderOver(paint, expected == Coverage::Whole ? NewFrameContent::Nothing : NewFrameContent::Zero);
}

bool FrameSource::SparesZeroing() const noexcept
{
    return mCoverage.load() == Coverage::Whole;
}

RenderedFrame FrameSource::RenderOver(const Painter& paint, NewFrameContent content, std::uint8_t pattern)
{
    FrameRequest request(mPool, content, pattern);
    ksFrameHandle handle = nullptr;
    RenderedFrame rendered;
    rendered.result = paint(request, handle);
    rendered.wasAsked = request.WasAsked();
    rendered.refusal = request.Refusal();
    rendered.frame = request.TakeFrame(handle);
    return rendered;
}

RenderedFrame FrameSource::ProveAndRender(const Painter& paint)
{
    RenderedFrame first = RenderOver(paint, NewFrameContent::Pattern, kOtherPoison);
    if (!IsWhole(first)) {
        mCoverage = Coverage::Partial;
        return first;
    }
    const FrameLayout& layout = first.frame->Layout();
    if (layout.width >= kSmallestProvenSide && layout.height >= kSmallestProvenSide) {
        RenderedFrame second = RenderOver(paint, NewFrameContent::Pattern, kPoison);
        if (IsWhole(second) && HaveEqualPictures(*first.frame, *second.frame)) {
            mCoverage = Coverage::Whole;
            return second;
        }
    }
    mCoverage = Coverage::Partial;
    first = {}; // its memory serves the next frame
    return RenderOver(paint, NewFrameContent::Zero);
}

} // namespace importhost
