#include "TargetPicture.h"

#include "V210Packing.h"

#include <algorithm>
#include <cstddef>

namespace tessel::exporting {
namespace {

double HighestCode(int bits) noexcept
{
    return static_cast<double>((1U << bits) - 1U);
}

} // namespace

Picture StartPicture(PictureLayout target, std::int32_t width, std::int32_t height, BufferPool& pool)
{
    return AllocatePicture(target == PictureLayout::V210 ? PictureLayout::Yuv422p10 : target, width, height,
                           pool);
}

Picture FinishPicture(PictureLayout target, Picture picture, BufferPool& pool)
{
    if (target != PictureLayout::V210) {
        const ComponentPlace filler = InfoOf(target).filler;
        if (filler.plane >= 0) {
            FillSamples({picture.planes[0] + filler.offset, picture.rowBytes[0], filler.step, picture.width,
                         picture.height, SampleType::U8},
                        0xFF);
        }
        return picture;
    }
    Picture packed = AllocatePicture(PictureLayout::V210, picture.width, picture.height, pool);
    for (std::int32_t y = 0; y < picture.height; ++y) {
        const auto row = [&](std::size_t plane) {
            return reinterpret_cast<const std::uint16_t*>(picture.planes[plane] + y * picture.rowBytes[plane]);
        };
        PackV210Row(row(0), row(1), row(2), picture.width, packed.planes[0] + y * packed.rowBytes[0]);
    }
    return packed;
}

Rounding RoundingFor(const LayoutInfo& target, int component, int sourceBits, bool fullRange) noexcept
{
    Rounding rounding;
    const bool isFloat = target.type == SampleType::F32;
    const bool isLinearScale = target.family == ColorFamily::Rgb || component == 3;
    if (isLinearScale) {
        rounding.highest = isFloat ? 1.0 : HighestCode(target.bits);
        rounding.scale = rounding.highest / (sourceBits == 32 ? 1.0 : HighestCode(sourceBits));
        return rounding;
    }
    // Codes of 8 bits times this are codes of the target's.
    const auto unit = static_cast<double>(1U << (target.bits - 8));
    // Codes that are kept or widened stay as they are; those that are made, be it of more bits, keep clear of
    // the timing codes. The 1019 of 10 bits, for one, would round to the 255 of 8.
    const bool keepsClear = sourceBits > target.bits && !fullRange;
    rounding.lowest = keepsClear ? unit : 0.0;
    rounding.highest = keepsClear ? 255.0 * unit - 1.0 : HighestCode(target.bits);
    if (sourceBits != 32) {
        rounding.scale = unit / static_cast<double>(1U << (sourceBits - 8));
    } else if (fullRange) {
        rounding.scale = HighestCode(target.bits);
        rounding.offset = component == 0 ? 0.0 : 128.0 * unit;
    } else {
        rounding.scale = (component == 0 ? 219.0 : 224.0) * unit;
        rounding.offset = (component == 0 ? 16.0 : 128.0) * unit;
    }
    return rounding;
}

void WriteAlpha(const SourceInfo& info, const ComponentSource& source, const LayoutInfo& target,
                const ComponentTarget& samples, AlignedBuffer& scratch)
{
    if (!target.HasAlpha()) {
        return;
    }
    if (source.first == nullptr) {
        FillSamples(samples, static_cast<std::uint16_t>((1U << std::min<int>(target.bits, 16)) - 1U));
        return;
    }
    if (source.type == target.type && info.bits == target.bits) {
        MoveSamples(source, samples, 0);
        return;
    }
    const std::size_t count = static_cast<std::size_t>(source.width) * static_cast<std::size_t>(source.height);
    if (scratch.Size() < count * sizeof(float)) {
        scratch = AlignedBuffer(count * sizeof(float));
    }
    LoadFloats(source, scratch.As<float>(), source.width);
    StoreFloats(scratch.As<float>(), source.width, samples, RoundingFor(target, 3, info.bits, false));
}

} // namespace tessel::exporting
