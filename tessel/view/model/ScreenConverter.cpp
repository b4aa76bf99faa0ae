#include "ScreenConverter.h"

#include <tessel/export/ExportError.h>
#include <tessel/export/convert/PixelKind.h>

#include <cstring>
#include <vector>

namespace tessel::view {
namespace {

using exporting::PictureLayout;

bool IsBgr(const exporting::PixelKind& kind) noexcept
{
    return kind.storage == exporting::Storage::Interleaved8 && kind.family == exporting::ColorFamily::Rgb &&
           !kind.swapped;
}

exporting::Conversion ConversionFor(BR::PixelFormat format, std::int32_t width, std::int32_t height)
{
    const exporting::PixelKind kind = exporting::KindOf(format);
    const bool isShared = IsBgr(kind);
    return {.source = format,
            .target = isShared && !kind.HasAlpha() ? PictureLayout::Bgr0 : PictureLayout::Bgra,
            .width = width,
            .height = isShared ? height : RowBatches::kRows,
            .coding = {}};
}

} // namespace

ScreenConverter::ScreenConverter(BR::PixelFormat format, std::int32_t width, std::int32_t height)
    : mIsShared(IsBgr(exporting::KindOf(format))), mWidth(width), mHeight(height),
      mConverter(ConversionFor(format, width, height)), mBatches(format, width)
{
}

exporting::Picture ScreenConverter::Convert(const exporting::FrameView& frame)
{
    if (frame.width != mWidth || frame.height != mHeight) {
        throw exporting::ExportError("a frame comes in another size than the first one");
    }
    if (mIsShared) {
        return mConverter.Convert(frame);
    }
    mRows.Find(frame, 1);
    exporting::Picture screen = exporting::AllocatePicture(PictureLayout::Bgra, mWidth, mHeight);
    const std::size_t size = 4 * static_cast<std::size_t>(mWidth);
    const auto rowOf = [&screen](int y) { return screen.planes[0] + y * screen.rowBytes[0]; };
    mBatches.ForEach(frame, mRows.Firsts(), [&](const exporting::FrameView& batch, int first, int count) {
        const exporting::Picture made = mConverter.Convert(batch);
        for (int i = 0; i < count; ++i) {
            std::memcpy(rowOf(mRows.Firsts()[static_cast<std::size_t>(first + i)]),
                        made.planes[0] + i * made.rowBytes[0], size);
        }
    });
    for (int y = 0; y < mHeight; ++y) {
        const int first = mRows.Firsts()[static_cast<std::size_t>(mRows.Kinds()[static_cast<std::size_t>(y)])];
        if (first != y) {
            std::memcpy(rowOf(y), rowOf(first), size);
        }
    }
    return screen;
}

} // namespace tessel::view
