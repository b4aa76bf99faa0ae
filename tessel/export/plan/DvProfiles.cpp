#include "DvProfiles.h"

#include <tessel/export/ExportError.h>

#include <fmt/format.h>

#include <array>

namespace tessel::exporting {
namespace {

using BR::PixelFormat;

constexpr std::array<DvProfile, 8> kProfiles{{
    {PixelFormat::NTSCDV50, "NTSC DV50", 720, 480, 30000, 1001, PictureLayout::Yuv422p, Matrix::Smpte170M},
    {PixelFormat::PALDV50, "PAL DV50", 720, 576, 25, 1, PictureLayout::Yuv422p, Matrix::Bt470Bg},
    {PixelFormat::NTSCDV25, "NTSC DV25", 720, 480, 30000, 1001, PictureLayout::Yuv411p, Matrix::Smpte170M},
    {PixelFormat::PALDV25, "PAL DV25", 720, 576, 25, 1, PictureLayout::Yuv420p, Matrix::Bt470Bg},
    {PixelFormat::NTSCDV100_720p, "DV100 720p59.94", 960, 720, 60000, 1001, PictureLayout::Yuv422p,
     Matrix::Bt709},
    {PixelFormat::PALDV100_720p, "DV100 720p50", 960, 720, 50, 1, PictureLayout::Yuv422p, Matrix::Bt709},
    {PixelFormat::NTSCDV100_1080i, "DV100 1080i59.94", 1280, 1080, 30000, 1001, PictureLayout::Yuv422p,
     Matrix::Bt709},
    {PixelFormat::PALDV100_1080i, "DV100 1080i50", 1440, 1080, 25, 1, PictureLayout::Yuv422p, Matrix::Bt709},
}};

bool Fits(const DvProfile& profile, const importhost::ClipDescription& clip) noexcept
{
    return clip.width == profile.width && clip.height == profile.height &&
           static_cast<std::int64_t>(clip.timeScale) * profile.rateDenominator ==
               static_cast<std::int64_t>(clip.sampleSize) * profile.rateNumerator;
}

std::string Rate(std::int64_t numerator, std::int64_t denominator)
{
    return denominator == 1 ? fmt::format("{}", numerator) : fmt::format("{}/{}", numerator, denominator);
}

std::string Text(const DvProfile& profile)
{
    return fmt::format("{}x{} at {} frames a second", profile.width, profile.height,
                       Rate(profile.rateNumerator, profile.rateDenominator));
}

} // namespace

const DvProfile* DvProfileOf(PixelFormat format) noexcept
{
    for (const DvProfile& profile : kProfiles) {
        if (profile.format == format) {
            return &profile;
        }
    }
    return nullptr;
}

const DvProfile& DvProfileFor(const document::ClipFacts& clip)
{
    const std::string clipText =
        fmt::format("the clip is {}x{} at {}", clip.width, clip.height, Rate(clip.timeScale, clip.sampleSize));
    if (const DvProfile* named = DvProfileOf(clip.pixelFormat)) {
        if (!Fits(*named, clip)) {
            throw ExportError(fmt::format("{} is {}; {}", named->name, Text(*named), clipText));
        }
        return *named;
    }
    std::string valid;
    for (const DvProfile& profile : kProfiles) {
        if (Fits(profile, clip)) {
            return profile;
        }
        if (valid.find(Text(profile)) == std::string::npos) {
            valid += (valid.empty() ? "" : ", ") + Text(profile);
        }
    }
    throw ExportError(fmt::format("DV is {}; {}", valid, clipText));
}

} // namespace tessel::exporting
