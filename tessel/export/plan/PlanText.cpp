#include "PlanText.h"

#include <fmt/format.h>

#include <array>
#include <cstdint>
#include <utility>

namespace tessel::exporting {
namespace {

using importhost::FieldOrder;

std::string RateText(const PictureGeometry& geometry)
{
    return geometry.rateDenominator == 1
               ? fmt::format("{} fps", geometry.rateNumerator)
               : fmt::format("{}/{} fps", geometry.rateNumerator, geometry.rateDenominator);
}

std::string CountedChannels(std::int64_t count)
{
    return fmt::format("{} {}", count, count == 1 ? "channel" : "channels");
}

std::string AspectText(const PictureGeometry& geometry)
{
    return fmt::format("pixel aspect {}:{}", geometry.aspectNumerator, geometry.aspectDenominator);
}

std::string ColorText(const ColorTags& tags)
{
    return fmt::format("primaries {}, transfer {}, matrix {}", tags.primaries, tags.transfer, tags.matrix);
}

/// What a file of the codec in the container tells its readers.
Keeps KeptOf(const VideoCodec& codec, const Container& container) noexcept
{
    const Keeps notByContainer =
        codec.streamDecides | (container.isQuickTime ? codec.notInQuickTime : Keeps::Nothing);
    return Without(container.keeps, notByContainer) | codec.keeps;
}

/// Whether the picture's shape is one that streams have a code for.
bool HasCommonShape(const PictureGeometry& geometry) noexcept
{
    const std::int64_t width = std::int64_t{geometry.width} * geometry.aspectNumerator;
    const std::int64_t height = std::int64_t{geometry.height} * geometry.aspectDenominator;
    constexpr std::array<std::pair<int, int>, 2> kShapes{{{4, 3}, {16, 9}}};
    for (const auto& [across, down] : kShapes) {
        if (width * down == height * across) {
            return true;
        }
    }
    return false;
}

/// The frame size that a container announces beside the stream's own. DV's is a standard's, whatever is stored.
void AddSizeLoss(const VideoPlan& video, const Container& container, std::vector<std::string>& losses)
{
    const int step = container.announcedWidthStep;
    if (step == 1 || video.codec->rule == LayoutRule::DvProfile) {
        return;
    }
    const PictureGeometry& geometry = video.geometry;
    const int width = (geometry.width + step - 1) / step * step;
    const bool hasFields = geometry.order != FieldOrder::Progressive && video.codec->codesFields;
    const int height = hasFields ? geometry.height / 2 * 2 : geometry.height;
    if (width != geometry.width || height != geometry.height) {
        losses.push_back(fmt::format("frame size ({}x{} in the stream; {} says {}x{})", geometry.width,
                                     geometry.height, container.name, width, height));
    }
}

/// The fields of DV frames follow from their height: 720 lines are progressive, all others have two fields,
/// those of progressive clips the lower one first.
FieldOrder OrderInDv(const PictureGeometry& geometry) noexcept
{
    if (geometry.height == 720) {
        return FieldOrder::Progressive;
    }
    return geometry.order == FieldOrder::Progressive ? FieldOrder::LowerFirst : geometry.order;
}

/// What MXF announces of DV, whatever the frames say.
FieldOrder OrderOfDvInMxf(std::int32_t height) noexcept
{
    switch (height) {
    case 576:
        return FieldOrder::LowerFirst;
    case 720:
        return FieldOrder::Progressive;
    default:
        return FieldOrder::UpperFirst;
    }
}

/// In containers that do not hold the order of a DV clip themselves.
void AddDvOrderLoss(const PictureGeometry& geometry, const Container& container,
                    std::vector<std::string>& losses)
{
    const FieldOrder inStream = OrderInDv(geometry);
    const FieldOrder announced = container.namesOrderOfMpeg2Only ? OrderOfDvInMxf(geometry.height) : inStream;
    if (inStream != geometry.order) {
        losses.push_back(fmt::format("field order ({}; DV frames of {} lines are {})",
                                     FieldOrderName(geometry.order), geometry.height,
                                     FieldOrderName(inStream)));
    } else if (announced != geometry.order) {
        losses.push_back(fmt::format("field order ({} in the stream; {} says {})",
                                     FieldOrderName(geometry.order), container.name,
                                     FieldOrderName(announced)));
    }
}

void AddOrderLoss(const VideoPlan& video, const Container& container, Keeps kept,
                  std::vector<std::string>& losses)
{
    const FieldOrder order = video.geometry.order;
    if (video.codec->rule == LayoutRule::DvProfile) {
        if (!Holds(container.keeps, Keeps::FieldOrder)) {
            AddDvOrderLoss(video.geometry, container, losses);
        }
    } else if (order != FieldOrder::Progressive && !Holds(kept, Keeps::FieldOrder)) {
        losses.push_back(fmt::format("field order ({})", FieldOrderName(order)));
    } else if (container.namesOrderOfMpeg2Only && order == FieldOrder::LowerFirst &&
               video.codec->name == "h264") {
        losses.push_back(fmt::format("field order ({} in the stream; {} does not name it)",
                                     FieldOrderName(order), container.name));
    }
}

void AddLosses(const VideoPlan& video, const Container& container, std::vector<std::string>& losses)
{
    AddSizeLoss(video, container, losses);
    const Keeps kept = KeptOf(*video.codec, container);
    const PictureGeometry& geometry = video.geometry;
    const bool isSquare = geometry.aspectNumerator == geometry.aspectDenominator;
    const bool saysShape = video.codec->saysDisplayAspect && HasCommonShape(geometry);
    if (geometry.aspectNumerator != 0 && !isSquare && !saysShape && !Holds(kept, Keeps::PixelAspect)) {
        losses.push_back(AspectText(geometry));
    }
    AddOrderLoss(video, container, kept, losses);
    const ColorTags& tags = video.tags;
    const bool isRgb = InfoOf(video.conversion.target).family == ColorFamily::Rgb;
    // The matrix of R'G'B' pixels needs no telling; of others it may be the only code, where the space has
    // none.
    const bool saysColors = tags.primaries != h273::kUnspecified || tags.transfer != h273::kUnspecified ||
                            (!isRgb && tags.matrix != h273::kUnspecified);
    if (saysColors && !Holds(kept, Keeps::Colors)) {
        losses.push_back(fmt::format("colours ({})", ColorText(tags)));
    }
    // JPEG is BT.601 by its own rules, and readers keep to them whatever the container says.
    const bool isBt601 = tags.matrix == h273::kBt470Bg || tags.matrix == h273::kBt601;
    if (video.codec->isFullRange && !isBt601 && tags.matrix != h273::kUnspecified) {
        losses.push_back(fmt::format("matrix {} (readers take JPEG for BT.601)", tags.matrix));
    }
    // Readers take Y'CbCr for limited range, and R'G'B' for full range, unless they are told.
    if (!isRgb && tags.fullRange && !Holds(kept, Keeps::Range)) {
        losses.emplace_back("full range");
    }
}

} // namespace

std::string DescribeVideo(const VideoPlan& plan)
{
    const PictureGeometry& geometry = plan.geometry;
    const std::string_view layout = InfoOf(plan.conversion.target).name;
    return fmt::format("{}{}{}, {}x{}, {}, {}", plan.codec->name, layout == plan.codec->name ? "" : " ",
                       layout == plan.codec->name ? "" : layout, geometry.width, geometry.height,
                       RateText(geometry), FieldOrderName(geometry.order));
}

std::string DescribeTags(const VideoPlan& plan)
{
    return fmt::format("{}{}{}, {} range", plan.geometry.aspectNumerator != 0 ? AspectText(plan.geometry) : "",
                       plan.geometry.aspectNumerator != 0 ? ", " : "", ColorText(plan.tags),
                       plan.tags.fullRange ? "full" : "limited");
}

std::string DescribeAudio(const AudioPlan& plan)
{
    return fmt::format("{}, {} Hz, {}{}", plan.codec->name, plan.sampleRate,
                       CountedChannels(static_cast<std::int64_t>(plan.hostChannels.size())),
                       plan.layout == SpeakerLayout::Surround51 ? " (5.1)" : "");
}

std::vector<std::string> LossesOf(const OutputPlan& plan)
{
    std::vector<std::string> losses;
    if (plan.video) {
        AddLosses(*plan.video, *plan.container, losses);
    }
    if (plan.channelsLeftOut > 0) {
        losses.push_back(fmt::format("sound ({})", CountedChannels(plan.channelsLeftOut)));
    }
    if (plan.audio && plan.audio->layout == SpeakerLayout::Surround51 &&
        !Holds(plan.container->keeps | plan.audio->codec->keeps, Keeps::ChannelLayout)) {
        losses.emplace_back("channel layout (5.1)");
    }
    if (plan.audio && plan.audio->codec->hasDelay && !Holds(plan.container->keeps, Keeps::CoderDelay)) {
        losses.push_back(fmt::format("the delay of its coder ({})", plan.audio->codec->name));
    }
    return losses;
}

} // namespace tessel::exporting
