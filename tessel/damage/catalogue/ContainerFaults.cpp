#include "Fault.h"

#include <tessel/damage/picture/GeometryFaults.h>
#include <tessel/verify/catalogue/Names.h>

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <string_view>

namespace tessel::damage {
namespace {

namespace id = verify::id;
using exporting::OutputPlan;
using exporting::VideoPlan;

/// Changes the file's tags and facts, not its pictures.
template <class Change>
void Announce(DamagePlan& plan, Change change)
{
    plan.announcements.emplace_back([change](OutputPlan& output) {
        if (output.video) {
            change(*output.video);
        }
    });
}

void ChangeSize(DamagePlan& plan, FaultValue& value, Truth&)
{
    const auto width = static_cast<std::int32_t>(value.Whole(2, 32768));
    const auto height = static_cast<std::int32_t>(value.Whole(2, 32768));
    plan.pictures.emplace_back([=](const PictureAt& before, std::int64_t position) {
        return Scaled(before(position), width, height);
    });
    plan.width = width;
    plan.height = height;
    Announce(plan, [=](VideoPlan& video) {
        video.geometry.width = width;
        video.geometry.height = height;
    });
}

void ChangeSampleRate(DamagePlan& plan, FaultValue& value, Truth&)
{
    const auto rate = static_cast<double>(value.Whole(8000, 192000));
    plan.soundTime.Speed(static_cast<double>(plan.described.sampleRate) / rate);
    plan.described.sampleRate = static_cast<float>(rate);
}

void SkipTimes(DamagePlan& plan, FaultValue& value, Truth&)
{
    const std::int64_t every = value.Whole(2, 1'000'000);
    plan.pictureTime = [every](std::int64_t position) { return position + position / every; };
}

/// A choice of an H.273 code.
template <auto Member>
void AnnounceCode(DamagePlan& plan, FaultValue& value, Truth&)
{
    const auto code = static_cast<int>(value.Whole(1, 22));
    Announce(plan, [code](VideoPlan& video) { video.tags.*Member = code; });
}

/// Files cannot name a layout that has another number of channels than their sound.
exporting::SpeakerLayout ReadLayout(const DamagePlan& plan, FaultValue& value)
{
    struct Layout {
        std::string_view name;
        std::int32_t channels;
    };
    constexpr std::array kLayouts{Layout{"none", 0}, Layout{"mono", 1}, Layout{"stereo", 2}, Layout{"5.1", 6}};
    const std::size_t place = value.OneOf({"none", "mono", "stereo", "5.1"});
    const auto& [name, channels] = kLayouts[place];
    if (channels != 0 && channels != plan.described.channelCount) {
        value.Refuse(fmt::format("{} is a layout of {} {}, and the file has {}", name, channels,
                                 channels == 1 ? "channel" : "channels", plan.described.channelCount));
    }
    return static_cast<exporting::SpeakerLayout>(place);
}

constexpr std::array kContainerFaults = std::to_array<Fault>({
    {id::kContainerSize, "WIDTH:HEIGHT", "640:360", "the pictures are stretched to another size", ChangeSize},
    {id::kContainerRate, "NUMERATOR:DENOMINATOR", "24:1", "the same frames at another rate",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         const std::int64_t numerator = value.Whole(1, 1'000'000'000);
         ChangeRate(plan, numerator, value.Whole(1, 1'000'000'000));
     }},
    {id::kContainerConstantRate, "COUNT", "10", "after every COUNT pictures one is shown for two frames' time",
     SkipTimes},
    {id::kContainerAspect, "NUMERATOR:DENOMINATOR", "4:3", "the file says another pixel aspect ratio",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         const auto numerator = static_cast<std::int32_t>(value.Whole(1, 65535));
         const auto denominator = static_cast<std::int32_t>(value.Whole(1, 65535));
         Announce(plan, [=](VideoPlan& video) {
             video.geometry.aspectNumerator = numerator;
             video.geometry.aspectDenominator = denominator;
         });
     }},
    {id::kContainerFields, "progressive|upper|lower", "upper", "the file says another field order",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         const auto order = static_cast<importhost::FieldOrder>(value.OneOf({"progressive", "upper", "lower"}));
         Announce(plan, [=](VideoPlan& video) { video.geometry.order = order; });
     }},
    {id::kContainerPrimaries, "CODE", "9", "the file says other primaries, by their H.273 code",
     AnnounceCode<&exporting::ColorTags::primaries>},
    {id::kContainerTransfer, "CODE", "16", "the file says another transfer, by its H.273 code",
     AnnounceCode<&exporting::ColorTags::transfer>},
    {id::kContainerMatrix, "CODE", "9", "the file says another matrix, by its H.273 code",
     AnnounceCode<&exporting::ColorTags::matrix>},
    {id::kContainerRange, "limited|full", "full", "the file says another range",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         const bool isFull = value.OneOf({"limited", "full"}) == 1;
         Announce(plan, [=](VideoPlan& video) { video.tags.fullRange = isFull; });
     }},
    {id::kContainerSiting, "left|topleft|unspecified", "left", "the file says another place of chroma",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         constexpr std::array kPlaces{exporting::ChromaPlace::BetweenRows, exporting::ChromaPlace::OnRow,
                                      exporting::ChromaPlace::Unspecified};
         const exporting::ChromaPlace place = kPlaces[value.OneOf({"left", "topleft", "unspecified"})];
         Announce(plan, [=](VideoPlan& video) { video.chromaPlace = place; });
     }},
    {id::kContainerDuration, "SECONDS", "1", "the sound goes on behind the last picture, or ends before it",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         plan.soundTailSamples =
             std::llround(value.Number(-1e5, 1e5) * static_cast<double>(plan.described.sampleRate));
     }},
    {id::kContainerStart, "FRAMES", "10", "the first picture and its sound come at a later time than zero",
     [](DamagePlan& plan, FaultValue& value, Truth&) { plan.startFrames = value.Whole(1, 1'000'000); }},
    {id::kContainerChannels, "COUNT", "1", "channels are left out behind the first ones, or silent ones added",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         const std::int64_t count = value.Whole(1, 64);
         plan.channels.push_back(KeepChannels(static_cast<std::size_t>(count)));
         plan.described.channelCount = static_cast<std::int32_t>(count);
     }},
    {id::kContainerLayout, "none|mono|stereo|5.1", "none", "the file says another place of its channels",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         const exporting::SpeakerLayout layout = ReadLayout(plan, value);
         plan.announcements.emplace_back([=](OutputPlan& output) {
             if (output.audio) {
                 output.audio->layout = layout;
             }
         });
     }},
    {id::kContainerSampleRate, "HERTZ", "44100", "the sound is resampled to another rate", ChangeSampleRate},
    {id::kContainerDepth, "pcm16|pcm24|pcm32", "pcm16", "the sound has another sample depth",
     [](DamagePlan& plan, FaultValue& value, Truth&) {
         constexpr std::array kNames{"pcm16", "pcm24", "pcm32"};
         plan.soundCodec = kNames[value.OneOf({"pcm16", "pcm24", "pcm32"})];
     }},
    {id::kContainerAlpha, "", "", "the file has no alpha",
     [](DamagePlan& plan, FaultValue&, Truth&) { plan.dropsAlpha = true; }},
});

} // namespace

std::span<const Fault> ContainerFaults() noexcept
{
    return kContainerFaults;
}

} // namespace tessel::damage
