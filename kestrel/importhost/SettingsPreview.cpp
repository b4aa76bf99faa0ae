#include "SettingsPreview.h"

#include "Frame.h"
#include "FrameCount.h"
#include "FrameSource.h"
#include "LegacySuite.h"

#include <kestrel/importabi/Records.h>
#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/importabi/Selectors.h>
#include <kestrel/qelcore/logging/Log.h>
#include <kestrel/qelmediatypes/Saturating.h>
#include <kestrel/qelmediatypes/TickTime.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <exception>

namespace importhost {
namespace {

using qelui::PreviewPicture;
using qelui::PreviewPictures;

constexpr std::int64_t kMostPixels = 64'000'000;

/// The plug-in's instance of the settings, for as long as this lives.
class SettingsInstance {
public:
    SettingsInstance(const Importer& importer, const std::string& settingsText) : mImporter(importer)
    {
        ksFileAccessRec access{};
        info.settingsText = settingsText.c_str();
        isDescribed = importer.Request(ksSelectorClipDescription, &access, &info) == ksResultServed;
        info.settingsText = nullptr;
    }
    ~SettingsInstance()
    {
        if (const ksInstance instance = info.instance; instance != nullptr) {
            static_cast<void>(mImporter.Request(ksSelectorDeleteInstance, nullptr, instance));
        }
    }
    SettingsInstance(const SettingsInstance&) = delete;
    SettingsInstance& operator=(const SettingsInstance&) = delete;

    ksFileInfoRec info{};
    bool isDescribed = false;

private:
    const Importer& mImporter;
};

std::uint32_t ToByte(float value)
{
    return qelmediatypes::SaturatingCast<std::uint8_t>(std::floor(value * 255.0F + 0.5F));
}

/// 0xAARRGGBB of one pixel of a BGRA frame.
std::uint32_t PixelAt(const Frame& frame, std::int32_t x, std::int32_t y)
{
    const std::byte* const row = frame.Row(y);
    if (frame.Format() == BR::PixelFormat::BGRA_4444_8u) {
        std::uint8_t bgra[4];
        std::memcpy(bgra, row + std::ptrdiff_t{x} * 4, sizeof bgra);
        return static_cast<std::uint32_t>(bgra[3]) << 24U | static_cast<std::uint32_t>(bgra[2]) << 16U |
               static_cast<std::uint32_t>(bgra[1]) << 8U | bgra[0];
    }
    float bgra[4];
    std::memcpy(bgra, row + std::ptrdiff_t{x} * 16, sizeof bgra);
    return ToByte(bgra[3]) << 24U | ToByte(bgra[2]) << 16U | ToByte(bgra[1]) << 8U | ToByte(bgra[0]);
}

/// The mean of the frame's pixels in a rectangle, of at most four by four of them.
std::uint32_t MeanPixel(const Frame& frame, std::int32_t left, std::int32_t right, std::int32_t top,
                        std::int32_t bottom)
{
    const std::int32_t stepX = std::max((right - left) / 4, 1);
    const std::int32_t stepY = std::max((bottom - top) / 4, 1);
    std::uint32_t sums[4] = {};
    std::uint32_t count = 0;
    for (std::int32_t y = top; y < bottom; y += stepY) {
        for (std::int32_t x = left; x < right; x += stepX) {
            const std::uint32_t pixel = PixelAt(frame, x, y);
            for (unsigned channel = 0; channel < 4; ++channel) {
                sums[channel] += pixel >> (8U * channel) & 0xFFU;
            }
            ++count;
        }
    }
    std::uint32_t mean = 0;
    for (unsigned channel = 0; channel < 4; ++channel) {
        mean |= (sums[channel] + count / 2) / count << (8U * channel);
    }
    return mean;
}

/// Where the `index`-th of `count` equal parts of `length` begins.
std::int32_t PartBegin(std::int32_t length, int index, int count)
{
    return static_cast<std::int32_t>(std::int64_t{length} * index / count);
}

PreviewPicture MakeSmall(const Frame& frame, double pixelAspect)
{
    const double shownWidth = frame.Width() * pixelAspect;
    const double shownHeight = frame.Height();
    const double scale = std::min({1.0, kPreviewWidth / shownWidth, kPreviewHeight / shownHeight});
    PreviewPicture picture;
    picture.width = std::clamp(qelmediatypes::SaturatingCast<int>(shownWidth * scale + 0.5), 1, kPreviewWidth);
    picture.height =
        std::clamp(qelmediatypes::SaturatingCast<int>(shownHeight * scale + 0.5), 1, kPreviewHeight);
    picture.pixels.reserve(static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height));
    for (int y = 0; y < picture.height; ++y) {
        const std::int32_t top = PartBegin(frame.Height(), y, picture.height);
        const std::int32_t bottom = std::max(PartBegin(frame.Height(), y + 1, picture.height), top + 1);
        for (int x = 0; x < picture.width; ++x) {
            const std::int32_t left = PartBegin(frame.Width(), x, picture.width);
            const std::int32_t right = std::max(PartBegin(frame.Width(), x + 1, picture.width), left + 1);
            picture.pixels.push_back(MeanPixel(frame, left, right, top, bottom));
        }
    }
    return picture;
}

/// One frame of the settings made small; without size where the plug-in paints none.
PreviewPicture RenderFrame(const Importer& importer, const ksFileInfoRec& info, qelmediatypes::TickTime time)
{
    FrameSource frames(FrameFilling::Zero);
    const RenderedFrame rendered = frames.Render([&](FrameRequest& request, ksFrameHandle& handle) {
        return RequestFrame(importer, info.instance, time, request, handle);
    });
    if (rendered.result != ksResultServed || rendered.frame == nullptr) {
        return {};
    }
    const Frame frame(rendered.frame);
    const bool isShown =
        frame.Format() == BR::PixelFormat::BGRA_4444_8u || frame.Format() == BR::PixelFormat::BGRA_4444_32f;
    if (!isShown || frame.Width() != info.frameWidth || frame.Height() != info.frameHeight) {
        return {};
    }
    const double aspect =
        static_cast<double>(info.parNumerator) / std::max(static_cast<double>(info.parDenominator), 1.0);
    return MakeSmall(frame, aspect > 0.0 ? aspect : 1.0);
}

PreviewPictures Render(const Importer& importer, const std::string& settingsText)
{
    const SettingsInstance settings(importer, settingsText);
    const ksFileInfoRec& info = settings.info;
    if (!settings.isDescribed || std::int64_t{info.frameWidth} * info.frameHeight > kMostPixels) {
        return {};
    }
    PreviewPictures pictures;
    pictures.first = RenderFrame(importer, info, {});
    const std::int64_t ticks = TicksFromTimeScale({info.videoTimeScale, info.videoSampleSize});
    const std::int64_t frames = FramesFromDuration(info.videoDuration, info.videoSampleSize);
    if (pictures.first.width > 0 && ticks > 0 && frames > 1) {
        pictures.lastFrame = frames - 1;
        pictures.last = RenderFrame(
            importer, info, qelmediatypes::TickTime(pictures.lastFrame, qelmediatypes::FrameRate{ticks}));
    }
    return pictures;
}

} // namespace

PreviewPictures RenderSettingsPreview(const Importer& importer, const std::string& settingsText) noexcept
{
    try {
        // Unfinished settings may be wrong: what the plug-in logs about them is dropped.
        const qelcore::logging::ScopedListener quiet([](const qelcore::logging::Message&) {});
        return Render(importer, settingsText);
    } catch (...) {
        return {};
    }
}

} // namespace importhost
