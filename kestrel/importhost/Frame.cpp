#include "Frame.h"

#include "FrameBuffer.h"

#include <utility>

namespace importhost {

Frame::Frame(std::shared_ptr<const FrameBuffer> buffer) : mBuffer(std::move(buffer)) {}

BR::PixelFormat Frame::Format() const noexcept
{
    return mBuffer->Layout().format;
}

std::int32_t Frame::Width() const noexcept
{
    return mBuffer->Layout().width;
}

std::int32_t Frame::Height() const noexcept
{
    return mBuffer->Layout().height;
}

const std::byte* Frame::Row(std::int32_t row) const noexcept
{
    const FrameLayout& layout = mBuffer->Layout();
    const std::int32_t rowInMemory = layout.bottomRowFirst ? layout.height - 1 - row : row;
    return mBuffer->Pixels() + static_cast<std::ptrdiff_t>(rowInMemory) * layout.rowBytes;
}

std::ptrdiff_t Frame::RowBytes() const noexcept
{
    const FrameLayout& layout = mBuffer->Layout();
    return layout.bottomRowFirst ? -std::ptrdiff_t{layout.rowBytes} : std::ptrdiff_t{layout.rowBytes};
}

} // namespace importhost
