#include "FrameView.h"

#include "PixelKind.h"

#include <cstring>
#include <utility>

namespace tessel::exporting {

std::size_t BytesOfRow(BR::PixelFormat format, std::int32_t width)
{
    const auto pixels = static_cast<std::size_t>(width);
    switch (KindOf(format).storage) {
    case Storage::InterleavedF:
        return pixels * 16;
    case Storage::Pairs422:
        return (pixels + 1) / 2 * 4;
    case Storage::V210:
        return (pixels + 5) / 6 * 16;
    case Storage::Interleaved8:
    case Storage::Planar420:
    case Storage::Dv:
        break;
    }
    return pixels * 4;
}

bool IsSameFrame(const FrameView& left, const FrameView& right)
{
    if (left.format != right.format || left.width != right.width || left.height != right.height) {
        return false;
    }
    const std::size_t bytes = BytesOfRow(left.format, left.width);
    for (std::int32_t y = 0; y < left.height; ++y) {
        if (std::memcmp(left.top + y * left.rowBytes, right.top + y * right.rowBytes, bytes) != 0) {
            return false;
        }
    }
    return true;
}

FrameView ViewOf(const importhost::Frame& frame)
{
    auto owner = std::make_shared<importhost::Frame>(frame);
    return {frame.Format(), frame.Width(), frame.Height(), frame.Row(0), frame.RowBytes(), std::move(owner)};
}

} // namespace tessel::exporting
