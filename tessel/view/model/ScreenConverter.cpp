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

exporting::Picture ScreenConverter::Convert(const exporting::FrameView& frame, int rowStep)
{
    if (frame.width != mWidth || frame.height != mHeight) {
        throw exporting::ExportError("a frame comes in another size than the first one");
    }
    if (mIsShared) {
        return mConverter.Convert(frame);
    }
    mRows.Find(frame, rowStep);
    const auto rows = static_cast<std::int32_t>(mRows.Kinds().size());
    exporting::Picture screen = exporting::AllocatePicture(PictureLayout::Bgra, mWidth, rows);
    const std::size_t size = 4 * static_cast<std::size_t>(mWidth);
    const auto rowOf = [&screen](int index) { return screen.planes[0] + index * screen.rowBytes[0]; };
    const auto firstOf = [this, rowStep](int kind) {
        return mRows.Firsts()[static_cast<std::size_t>(kind)] / rowStep;
    };
    mBatches.ForEach(frame, mRows.Firsts(), [&](const exporting::FrameView& batch, int first, int count) {
        const exporting::Picture made = mConverter.Convert(batch);
        for (int i = 0; i < count; ++i) {
            std::memcpy(rowOf(firstOf(first + i)), made.planes[0] + i * made.rowBytes[0], size);
        }
    });
    for (int index = 0; index < rows; ++index) {
        const int first = firstOf(mRows.Kinds()[static_cast<std::size_t>(index)]);
        if (first != index) {
            std::memcpy(rowOf(index), rowOf(first), size);
        }
    }
    return screen;
}

} // namespace tessel::view
