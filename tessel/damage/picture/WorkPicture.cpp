#include "WorkPicture.h"

#include <tessel/export/convert/Components.h>
#include <tessel/export/convert/V210Packing.h>

#include <cmath>
#include <cstddef>

namespace tessel::damage {
namespace {

using exporting::ColorFamily;
using exporting::ComponentTarget;
using exporting::LayoutInfo;
using exporting::Picture;
using exporting::PictureLayout;

/// v210 has no addressable samples; it is worked on as the planar layout with the same codes.
PictureLayout Addressable(PictureLayout layout)
{
    return layout == PictureLayout::V210 ? PictureLayout::Yuv422p10 : layout;
}

std::uint16_t* Row16(const Picture& picture, std::size_t plane, std::int32_t y)
{
    return reinterpret_cast<std::uint16_t*>(picture.planes[plane] + y * picture.rowBytes[plane]);
}

Picture Unpack(const Picture& packed)
{
    Picture planar = exporting::AllocatePicture(PictureLayout::Yuv422p10, packed.width, packed.height);
    exporting::UnpackV210(packed.planes[0], packed.rowBytes[0], planar);
    return planar;
}

Picture Pack(const Picture& planar)
{
    Picture packed = exporting::AllocatePicture(PictureLayout::V210, planar.width, planar.height);
    for (std::int32_t y = 0; y < planar.height; ++y) {
        exporting::PackV210Row(Row16(planar, 0, y), Row16(planar, 1, y), Row16(planar, 2, y), planar.width,
                               packed.planes[0] + y * packed.rowBytes[0]);
    }
    return packed;
}

bool IsChroma(const WorkPicture& picture, int component) noexcept
{
    return picture.IsYCbCr() && (component == 1 || component == 2);
}

} // namespace

CodeScale CodeScaleOf(const WorkPicture& picture, int component) noexcept
{
    if (picture.codeBits == 0) {
        return {0, 1, 0};
    }
    const double highest = std::exp2(picture.codeBits) - 1;
    const double unit = std::exp2(picture.codeBits - 8); // limited range codes are 8-bit codes times this
    if (!picture.IsYCbCr() || component == 3) {
        return {0, highest, highest};
    }
    if (IsChroma(picture, component)) {
        const double zero = 128 * unit;
        return {zero, picture.coding.fullRange ? highest : 224 * unit, highest};
    }
    return picture.coding.fullRange ? CodeScale{0, highest, highest}
                                    : CodeScale{16 * unit, 219 * unit, highest};
}

WorkPicture Load(const Picture& picture, const exporting::YCbCrCoding& coding)
{
    const Picture source = picture.layout == PictureLayout::V210 ? Unpack(picture) : picture;
    const LayoutInfo& info = exporting::InfoOf(source.layout);
    WorkPicture work;
    work.layout = picture.layout;
    work.family = info.family;
    work.coding = coding;
    work.codeBits = info.type == exporting::SampleType::F32 ? 0 : info.bits;
    work.chromaShiftX = info.chromaShiftX;
    work.chromaShiftY = info.chromaShiftY;
    work.width = picture.width;
    work.height = picture.height;
    for (int component = 0; component < 4; ++component) {
        const ComponentTarget samples = exporting::ComponentOf(source, component);
        if (samples.first == nullptr) {
            continue;
        }
        Plane& plane = work.planes[static_cast<std::size_t>(component)];
        plane = Plane(samples.width, samples.height);
        exporting::LoadFloats(
            {samples.first, samples.rowBytes, samples.step, samples.width, samples.height, samples.type},
            plane.samples.data(), plane.width);
        const CodeScale scale = CodeScaleOf(work, component);
        for (float& sample : plane.samples) {
            sample = static_cast<float>((static_cast<double>(sample) - scale.zero) / scale.span);
        }
    }
    return work;
}

Picture Store(const WorkPicture& work)
{
    Picture picture = exporting::AllocatePicture(Addressable(work.layout), work.width, work.height);
    const LayoutInfo& info = exporting::InfoOf(picture.layout);
    for (int component = 0; component < 4; ++component) {
        const ComponentTarget samples = exporting::ComponentOf(picture, component);
        const Plane& plane = work.planes[static_cast<std::size_t>(component)];
        if (samples.first == nullptr || plane.IsEmpty()) {
            continue;
        }
        const CodeScale scale = CodeScaleOf(work, component);
        exporting::StoreFloats(plane.samples.data(), plane.width, samples,
                               {scale.span, scale.zero, 0, scale.highest});
    }
    if (info.filler.plane >= 0) {
        // The spare byte of layouts without alpha: opaque, so that readers who take it for alpha see something.
        const std::size_t plane = static_cast<unsigned char>(info.filler.plane);
        for (std::int32_t y = 0; y < work.height; ++y) {
            std::byte* byte = picture.planes[plane] + y * picture.rowBytes[plane] + info.filler.offset;
            for (std::int32_t x = 0; x < work.width; ++x, byte += info.filler.step) {
                *byte = std::byte{255};
            }
        }
    }
    return work.layout == PictureLayout::V210 ? Pack(picture) : picture;
}

WorkPicture BlackLike(const WorkPicture& like, std::int32_t width, std::int32_t height)
{
    WorkPicture black = like;
    black.width = width;
    black.height = height;
    for (int component = 0; component < 4; ++component) {
        Plane& plane = black.planes[static_cast<std::size_t>(component)];
        if (plane.IsEmpty()) {
            continue;
        }
        const int shiftX = IsChroma(like, component) ? like.chromaShiftX : 0;
        const int shiftY = IsChroma(like, component) ? like.chromaShiftY : 0;
        plane = Plane((width + (1 << shiftX) - 1) >> shiftX, (height + (1 << shiftY) - 1) >> shiftY);
        if (component == 3) {
            plane.samples.assign(plane.samples.size(), 1.0F);
        }
    }
    return black;
}

} // namespace tessel::damage
