#include "SourceFrame.h"

#include "V210Packing.h"

#include <tessel/export/ExportError.h>

namespace tessel::exporting {

SourceInfo SourceInfoOf(BR::PixelFormat format)
{
    SourceInfo info;
    info.kind = KindOf(format);
    const bool isRgb = info.kind.family == ColorFamily::Rgb;
    const auto interleaved = [&](std::uint8_t bytes) {
        // BGRA and VUYA have their first component third; ARGB has alpha first.
        std::array<std::uint8_t, 4> order{2, 1, 0, 3};
        if (isRgb && info.kind.swapped) {
            order = {1, 2, 3, 0};
        }
        for (std::size_t i = 0; i < 4; ++i) {
            info.components[i] = {0, static_cast<std::uint8_t>(order[i] * bytes),
                                  static_cast<std::uint8_t>(4 * bytes)};
        }
        if (!info.kind.HasAlpha()) {
            info.components[3] = {};
        }
    };
    switch (info.kind.storage) {
    case Storage::Interleaved8:
        interleaved(1);
        break;
    case Storage::InterleavedF:
        info.type = SampleType::F32;
        info.bits = 32;
        interleaved(4);
        break;
    case Storage::Pairs422:
        info.chromaShiftX = 1;
        info.components = InfoOf(info.kind.swapped ? PictureLayout::Yuyv : PictureLayout::Uyvy).components;
        break;
    case Storage::V210:
        info.type = SampleType::U16;
        info.bits = 10;
        info.chromaShiftX = 1;
        info.components = InfoOf(PictureLayout::Yuv422p10).components;
        break;
    case Storage::Planar420:
    case Storage::Dv:
        throw ExportError("frames do not come in planar or compressed formats");
    }
    return info;
}

SourceReader::SourceReader(const SourceInfo& info, std::int32_t width, std::int32_t height) : mInfo(info)
{
    if (info.kind.storage == Storage::V210) {
        mUnpacked = AllocatePicture(PictureLayout::Yuv422p10, width, height);
    }
}

void SourceReader::Take(const FrameView& frame) noexcept
{
    mFrame = &frame;
    if (mInfo.kind.storage != Storage::V210) {
        return;
    }
    UnpackV210(frame.top, frame.rowBytes, mUnpacked);
}

ComponentSource SourceReader::Component(int index) const noexcept
{
    if (mInfo.kind.storage == Storage::V210) {
        const ComponentTarget samples = ComponentOf(mUnpacked, index);
        return {samples.first, samples.rowBytes, samples.step, samples.width, samples.height, samples.type};
    }
    const ComponentPlace place = mInfo.components[static_cast<std::size_t>(index)];
    if (place.plane < 0) {
        return {};
    }
    const bool isChroma = index == 1 || index == 2;
    const int shift = isChroma ? mInfo.chromaShiftX : 0;
    return {mFrame->top + place.offset,
            mFrame->rowBytes,
            place.step,
            (mFrame->width + (1 << shift) - 1) >> shift,
            mFrame->height,
            mInfo.type};
}

} // namespace tessel::exporting
