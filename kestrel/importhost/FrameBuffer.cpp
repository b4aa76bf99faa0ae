#include "FrameBuffer.h"

#include <kestrel/pixmill/PixelFormatCodes.h>

#include <cstring>
#include <limits>
#include <utility>

namespace importhost {
namespace {

constexpr std::uint64_t kRowAlignment = 64;
constexpr std::uint64_t kV210RowAlignment = 128;

} // namespace

std::optional<FrameLayout> LayOutFrame(std::uint32_t pixelFormat, std::int32_t width, std::int32_t height,
                                       FrameRefusal& refusal) noexcept
{
    const BR::PixelFormat format = BR::SDKToBEPixelFormat(pixelFormat);
    const std::uint32_t code = PM_QELPixelFormatToPMPixelFormat(format);
    if (!pixmill::IsPaintable(code)) {
        refusal = FrameRefusal::FormatCannotBePainted;
        return std::nullopt;
    }
    if (width < 1 || height < 1 || width > kLargestFrameSide || height > kLargestFrameSide) {
        refusal = FrameRefusal::SizeOutOfRange;
        return std::nullopt;
    }
    const std::uint64_t pictureRow = pixmill::BytesPerRow(code, static_cast<std::uint32_t>(width));
    const std::uint64_t alignment = (code & pixmill::kBitV210) != 0 ? kV210RowAlignment : kRowAlignment;
    const std::uint64_t row = (pictureRow + alignment - 1) / alignment * alignment;
    if (row * static_cast<std::uint64_t>(height) > kLargestFrameBytes) {
        refusal = FrameRefusal::TooLarge;
        return std::nullopt;
    }
    FrameLayout layout;
    layout.format = format;
    layout.width = width;
    layout.height = height;
    layout.pictureRowBytes = pictureRow;
    layout.rowBytes = static_cast<std::int32_t>(row); // 100000 × 16 bytes at most
    layout.bottomRowFirst = pixmill::IsBottomRowFirst(code);
    refusal = FrameRefusal::None;
    return layout;
}

bool Fits(const FrameLayout& layout, const FrameDestination& destination) noexcept
{
    return destination.top != nullptr && layout.format == destination.format && !layout.bottomRowFirst &&
           layout.width == destination.width && layout.height == destination.height &&
           destination.rowBytes >= static_cast<std::ptrdiff_t>(layout.pictureRowBytes) &&
           destination.rowBytes <= std::numeric_limits<std::int32_t>::max();
}

FrameBuffer::FrameBuffer(std::shared_ptr<FramePool> pool, const FrameLayout& layout)
    : mPool(std::move(pool)), mLayout(layout), mBlock(mPool->Take(layout.ByteCount())),
      mPixels(mBlock.memory.Data())
{
}

FrameBuffer::FrameBuffer(const FrameLayout& layout, const FrameDestination& destination) noexcept
    : mLayout(layout), mPixels(destination.top)
{
    mLayout.rowBytes = static_cast<std::int32_t>(destination.rowBytes);
}

FrameBuffer::~FrameBuffer()
{
    if (mPool != nullptr) {
        mPool->Return(std::move(mBlock.memory));
    }
}

void FrameBuffer::Fill(std::uint8_t byte) noexcept
{
    if (mPool == nullptr) {
        for (std::int32_t row = 0; row < mLayout.height; ++row) {
            std::memset(mPixels + static_cast<std::ptrdiff_t>(row) * mLayout.rowBytes, byte,
                        mLayout.pictureRowBytes);
        }
        return;
    }
    std::memset(Pixels(), byte, mLayout.ByteCount());
    mBlock.isZero = byte == 0;
}

} // namespace importhost
