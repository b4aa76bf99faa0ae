#include "Clip.h"

#include "Layouts.h"
#include "Results.h"

#include <kestrel/importhost/ClipFailure.h>
#include <tessel/export/ExportError.h>
#include <tessel/export/plan/ClipConversion.h>
#include <tessel/export/plan/PictureGeometry.h>
#include <tessel/export/plan/SoundShape.h>

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>
#include <utility>

namespace tessel::api {
namespace {

using document::ClipFacts;
using exporting::FrameView;
using exporting::LayoutInfo;
using exporting::Picture;
using exporting::PictureLayout;
using exporting::PixelKind;
using exporting::SoundShape;

/// What keeps pictures from being made becomes TESSEL_NOT_POSSIBLE.
template <typename Call>
auto Possible(Call&& call)
{
    try {
        return std::forward<Call>(call)();
    } catch (const exporting::ExportError& error) {
        throw CallError(TESSEL_NOT_POSSIBLE, error.what());
    }
}

/// The samples of frames as the plug-in paints them.
void DescribeOwnSamples(const PixelKind& kind, tessel_picture& picture) noexcept
{
    const auto describe = [&picture](std::int32_t type, std::int32_t bits, std::int32_t pixels,
                                     std::int32_t bytes) {
        picture.sample_type = type;
        picture.sample_bits = bits;
        picture.group_pixels = pixels;
        picture.group_bytes = bytes;
    };
    switch (kind.storage) {
    case exporting::Storage::InterleavedF:
        return describe(TESSEL_SAMPLES_F32, 32, 1, 16);
    case exporting::Storage::Pairs422:
        return describe(TESSEL_SAMPLES_U8, 8, 2, 4);
    case exporting::Storage::V210:
        return describe(TESSEL_SAMPLES_V210, 10, 6, 16);
    case exporting::Storage::Interleaved8:
    case exporting::Storage::Planar420: // files' layouts: frames of these formats come in others
    case exporting::Storage::Dv:
        break;
    }
    describe(TESSEL_SAMPLES_U8, 8, 1, 4);
}

/// The samples of a layout.
void DescribeSamples(const LayoutInfo& info, tessel_picture& picture) noexcept
{
    if (info.layout == PictureLayout::V210) {
        picture.sample_type = TESSEL_SAMPLES_V210;
        picture.group_pixels = 6;
        picture.group_bytes = 16;
    } else {
        const bool isPair = info.planes == 1 && info.chromaShiftX == 1;
        picture.sample_type = info.type == exporting::SampleType::F32  ? TESSEL_SAMPLES_F32
                              : info.type == exporting::SampleType::U8 ? TESSEL_SAMPLES_U8
                                                                       : TESSEL_SAMPLES_U16;
        picture.group_pixels = isPair ? 2 : 1;
        picture.group_bytes = isPair ? 4 : info.components[0].step;
    }
    picture.sample_bits = info.bits;
    if (info.planes > 1) {
        picture.chroma_shift_x = info.chromaShiftX;
        picture.chroma_shift_y = info.chromaShiftY;
    }
}

static_assert(TESSEL_MOST_CHANNELS == importhost::kMostChannels);

/// Why the clip's sound cannot be had; empty where it can, or where the clip has none.
std::string SoundObstacle(const ClipFacts& facts)
{
    const SoundShape sound = exporting::SoundShapeOf(facts);
    if (facts.channelCount < 1 || (sound.sampleRate > 0 && !sound.hostChannels.empty())) {
        return {};
    }
    return fmt::format(
        "the sound cannot be had: {} channels at {} samples per second, where at most {} channels and "
        "a whole number of samples are possible",
        facts.channelCount, facts.sampleRate, TESSEL_MOST_CHANNELS);
}

/// Rows of a picture in the caller's memory.
struct Rows {
    const std::byte* source = nullptr;
    std::ptrdiff_t sourceStride = 0;
    std::size_t bytes = 0;
    std::int32_t count = 0;
};

void CheckStride(std::ptrdiff_t stride, std::size_t bytes)
{
    const auto least = static_cast<std::ptrdiff_t>(bytes);
    Require(stride >= least || stride <= -least, "a stride is shorter than the row that is written");
}

void Copy(const Rows& rows, void* plane, std::ptrdiff_t stride) noexcept
{
    auto* target = static_cast<std::byte*>(plane);
    if (rows.sourceStride == stride && stride == static_cast<std::ptrdiff_t>(rows.bytes)) {
        std::memcpy(target, rows.source, rows.bytes * static_cast<std::size_t>(rows.count));
        return;
    }
    for (std::int32_t row = 0; row < rows.count; ++row) {
        std::memcpy(target + row * stride, rows.source + row * rows.sourceStride, rows.bytes);
    }
}

/// Clears what a layout's rows have behind the bytes that are painted: v210 ends its rows at multiples of 128.
void ClearBehind(std::size_t painted, const Rows& rows, void* plane, std::ptrdiff_t stride) noexcept
{
    auto* target = static_cast<std::byte*>(plane);
    for (std::int32_t row = 0; painted < rows.bytes && row < rows.count; ++row) {
        std::memset(target + row * stride + painted, 0, rows.bytes - painted);
    }
}

} // namespace

Clip::Clip(document::OpenedClip opened, std::string standIn)
    : mOpened(std::move(opened)), mStandIn(std::move(standIn)), mWarning(mOpened.warning), mSource(mOpened)
{
    const std::string obstacle = SoundObstacle(mOpened.facts);
    mWarning += (mWarning.empty() || obstacle.empty() ? "" : "\n") + obstacle;
}

tessel_description Clip::Describe() const noexcept
{
    const ClipFacts& facts = mOpened.facts;
    tessel_description description{};
    description.width = facts.width;
    description.height = facts.height;
    description.field_order = static_cast<std::int32_t>(facts.Order());
    description.frame_count = facts.frameCount;
    const exporting::PictureGeometry geometry = exporting::GeometryOf(facts);
    description.pixel_aspect_numerator = geometry.aspectNumerator;
    description.pixel_aspect_denominator = geometry.aspectDenominator;
    description.rate_numerator = geometry.rateNumerator;
    description.rate_denominator = geometry.rateDenominator;

    const SoundShape sound = exporting::SoundShapeOf(facts);
    description.sample_rate = sound.sampleRate;
    description.channel_count = facts.channelCount;
    description.is_surround_51 = sound.layout == exporting::SpeakerLayout::Surround51 ? 1 : 0;
    if (sound.sampleRate > 0 && geometry.rateNumerator > 0) {
        description.sample_count = exporting::FrameStartSample(facts.frameCount, geometry.rateNumerator,
                                                               geometry.rateDenominator, sound.sampleRate);
    }
    description.primaries = facts.colorCodes.primaries;
    description.transfer = facts.colorCodes.transfer;
    description.matrix = facts.colorCodes.matrix;
    description.full_range = facts.colorCodes.fullRange != 0 ? 1 : 0;
    description.color_space = facts.colorSpaceName.c_str();
    description.pixel_format = facts.pixelFormatCode;
    description.is_still = facts.isStill ? 1 : 0;
    return description;
}

ClipFacts Clip::FactsWithFormat()
{
    ClipFacts facts = mOpened.facts;
    if (facts.width < 1 || facts.height < 1) {
        throw CallError(TESSEL_NOT_POSSIBLE, "the clip has no picture");
    }
    const std::lock_guard lock(mFormatMutex);
    if (mFrameFormat == BR::PixelFormat::Unknown) {
        mFrameFormat = mSource.RenderFrame(0).format;
    }
    facts.frameFormat = mFrameFormat;
    return facts;
}

exporting::Conversion Clip::ConversionTo(PictureLayout layout)
{
    const ClipFacts facts = FactsWithFormat();
    return Possible([&] {
        return exporting::ConversionOf(facts, exporting::KindToKeep(facts), layout,
                                       exporting::CodeRanges::OnlyLimited);
    });
}

tessel_picture Clip::DescribePicture(tessel_layout layout)
{
    const ClipFacts facts = FactsWithFormat();
    tessel_picture picture{};
    picture.width = facts.width;
    picture.height = facts.height;
    if (layout == TESSEL_LAYOUT_OWN) {
        const PixelKind kind = exporting::KindOf(facts.frameFormat);
        DescribeOwnSamples(kind, picture);
        picture.plane_count = 1;
        picture.plane_rows[0] = facts.height;
        picture.row_bytes[0] = exporting::BytesOfRow(facts.frameFormat, facts.width);
        picture.format = BR::BEToSDKPixelFormat(facts.frameFormat);
        picture.matrix = static_cast<std::int32_t>(kind.matrix);
        picture.full_range = kind.family == exporting::ColorFamily::Rgb ? 1 : 0;
        picture.is_linear = kind.linear ? 1 : 0;
        return picture;
    }
    const PictureLayout target = PictureLayoutOf(layout);
    const LayoutInfo& info = exporting::InfoOf(target);
    DescribeSamples(info, picture);
    picture.plane_count = info.planes;
    for (int plane = 0; plane < info.planes; ++plane) {
        const exporting::PlaneSize size = exporting::SizeOfPlane(info, plane, facts.width, facts.height);
        const auto index = static_cast<std::size_t>(plane);
        picture.plane_rows[index] = size.height;
        picture.row_bytes[index] = static_cast<std::size_t>(exporting::BytesOfRow(info, plane, size.width));
    }
    const bool isRgb = info.family == exporting::ColorFamily::Rgb;
    const exporting::YCbCrCoding coding = ConversionTo(target).coding;
    picture.matrix = isRgb ? 0 : static_cast<std::int32_t>(coding.matrix);
    picture.full_range = isRgb || coding.fullRange ? 1 : 0;
    picture.is_linear =
        info.type == exporting::SampleType::F32 && exporting::KindOf(facts.frameFormat).linear ? 1 : 0;
    return picture;
}

Picture Clip::Convert(const FrameView& view, PictureLayout layout)
{
    std::unique_ptr<exporting::FrameConverter> converter;
    {
        const std::lock_guard lock(mConvertersMutex);
        auto& free = mConverters[layout];
        if (!free.empty()) {
            converter = std::move(free.back());
            free.pop_back();
        }
    }
    if (!converter) {
        const exporting::Conversion conversion = ConversionTo(layout);
        converter = Possible([&] { return std::make_unique<exporting::FrameConverter>(conversion); });
    }
    Picture picture = converter->Convert(view);
    const std::lock_guard lock(mConvertersMutex);
    mConverters[layout].push_back(std::move(converter));
    return picture;
}

importhost::FrameDestination Clip::DestinationOf(tessel_layout layout, void* const* planes,
                                                 const std::ptrdiff_t* strides)
{
    const bool keepsBytes = layout == TESSEL_LAYOUT_OWN ||
                            exporting::FrameConverter::KeepsBytes(ConversionTo(PictureLayoutOf(layout)));
    if (!keepsBytes) {
        return {};
    }
    const ClipFacts facts = FactsWithFormat();
    return {facts.frameFormat, facts.width, facts.height, static_cast<std::byte*>(planes[0]), strides[0]};
}

void Clip::Frame(std::int64_t frame, tessel_layout layout, void* const* planes, const std::ptrdiff_t* strides)
{
    const tessel_picture wanted = DescribePicture(layout);
    for (std::int32_t plane = 0; plane < wanted.plane_count; ++plane) {
        Require(planes[plane] != nullptr, "a plane is a null pointer");
        CheckStride(strides[plane], wanted.row_bytes[plane]);
    }
    // Painted where it is wanted if that can be, so that no pixel is written twice.
    const importhost::FrameDestination destination = DestinationOf(layout, planes, strides);
    const FrameView view =
        exporting::ViewOf(mOpened.clip.RenderFrame(frame, destination.top != nullptr ? &destination : nullptr));
    if (view.top == destination.top) {
        const std::size_t painted = exporting::BytesOfRow(view.format, view.width);
        ClearBehind(painted, {nullptr, 0, wanted.row_bytes[0], wanted.plane_rows[0]}, planes[0], strides[0]);
        return;
    }
    if (layout == TESSEL_LAYOUT_OWN) {
        Copy({view.top, view.rowBytes, wanted.row_bytes[0], wanted.plane_rows[0]}, planes[0], strides[0]);
        return;
    }
    const Picture picture = Convert(view, PictureLayoutOf(layout));
    for (std::int32_t plane = 0; plane < wanted.plane_count; ++plane) {
        const auto index = static_cast<std::size_t>(plane);
        Copy(
            {picture.planes[index], picture.rowBytes[index], wanted.row_bytes[plane], wanted.plane_rows[plane]},
            planes[plane], strides[plane]);
    }
}

void Clip::Samples(std::int64_t start, std::size_t count, std::span<float* const> channels)
{
    const ClipFacts& facts = mOpened.facts;
    const SoundShape sound = exporting::SoundShapeOf(facts);
    if (sound.sampleRate == 0 || sound.hostChannels.empty()) {
        throw CallError(TESSEL_NOT_POSSIBLE,
                        facts.channelCount < 1 ? "the clip has no sound" : SoundObstacle(facts));
    }
    Require(channels.size() == sound.hostChannels.size(), "the clip has another number of channels");
    constexpr std::int64_t kFurthest = std::numeric_limits<std::int64_t>::max() / 2;
    Require(start <= kFurthest && count <= static_cast<std::size_t>(kFurthest), "so many samples do not exist");

    const std::lock_guard lock(mSoundMutex);
    if (!mSound) {
        mSound.emplace(mSource, sound.sampleRate, facts.channelCount);
    }
    std::size_t done = 0;
    while (done < count) {
        const auto rest = static_cast<std::int64_t>(count - done);
        const auto got = static_cast<std::size_t>(mSound->Read(start + static_cast<std::int64_t>(done), rest));
        for (std::size_t channel = 0; channel < channels.size(); ++channel) {
            std::copy_n(mSound->Channel(sound.hostChannels[channel]), got, channels[channel] + done);
        }
        done += got;
    }
}

} // namespace tessel::api
