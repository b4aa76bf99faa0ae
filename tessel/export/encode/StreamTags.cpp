#include "StreamTags.h"

namespace tessel::exporting {
namespace {

using importhost::FieldOrder;

/// What contexts, frames and parameters have under the same member names.
template <class Target>
void SetColors(Target& target, const ColorTags& tags) noexcept
{
    target.color_primaries = static_cast<AVColorPrimaries>(tags.primaries);
    target.color_trc = static_cast<AVColorTransferCharacteristic>(tags.transfer);
    target.color_range = tags.fullRange ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
}

} // namespace

AVFieldOrder LibavOrder(FieldOrder order) noexcept
{
    switch (order) {
    case FieldOrder::UpperFirst:
        return AV_FIELD_TB;
    case FieldOrder::LowerFirst:
        return AV_FIELD_BT;
    case FieldOrder::Progressive:
        break;
    }
    return AV_FIELD_PROGRESSIVE;
}

AVRational PixelAspect(const PictureGeometry& geometry) noexcept
{
    return {geometry.aspectNumerator, geometry.aspectDenominator};
}

AVChromaLocation ChromaLocation(ChromaPlace place) noexcept
{
    switch (place) {
    case ChromaPlace::OnRow:
        return AVCHROMA_LOC_TOPLEFT;
    case ChromaPlace::BetweenRows:
        return AVCHROMA_LOC_LEFT;
    case ChromaPlace::Unspecified:
        break;
    }
    return AVCHROMA_LOC_UNSPECIFIED;
}

void SetTags(AVCodecContext& context, const VideoPlan& plan) noexcept
{
    SetColors(context, plan.tags);
    context.colorspace = static_cast<AVColorSpace>(plan.tags.matrix);
    context.chroma_sample_location = ChromaLocation(plan.chromaPlace);
}

void SetTags(AVFrame& frame, const VideoPlan& plan) noexcept
{
    SetColors(frame, plan.tags);
    frame.colorspace = static_cast<AVColorSpace>(plan.tags.matrix);
    frame.chroma_location = ChromaLocation(plan.chromaPlace);
}

void SetTags(AVCodecParameters& parameters, const VideoPlan& plan) noexcept
{
    SetColors(parameters, plan.tags);
    parameters.color_space = static_cast<AVColorSpace>(plan.tags.matrix);
    parameters.chroma_location = ChromaLocation(plan.chromaPlace);
}

void DescribeRate(AVStream& stream, const PictureGeometry& geometry) noexcept
{
    stream.avg_frame_rate = {geometry.rateNumerator, geometry.rateDenominator};
    stream.r_frame_rate = stream.avg_frame_rate;
    stream.time_base = av_inv_q(stream.avg_frame_rate);
    stream.sample_aspect_ratio = PixelAspect(geometry);
    stream.codecpar->sample_aspect_ratio = stream.sample_aspect_ratio;
    stream.codecpar->field_order = LibavOrder(geometry.order);
}

} // namespace tessel::exporting
