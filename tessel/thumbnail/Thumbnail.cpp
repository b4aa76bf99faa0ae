#include "Thumbnail.h"

#include <tessel/export/Render.h>
#include <tessel/export/convert/FrameConverter.h>
#include <tessel/export/convert/FrameView.h>
#include <tessel/export/plan/Container.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace tessel::thumbnail {
namespace {

/// An image as a clip of one frame without sound, so that it is written as any other picture is.
class ImageSource final : public exporting::SignalSource {
public:
    explicit ImageSource(const Image& image) : mPixels(std::make_shared<std::vector<std::uint8_t>>())
    {
        mPixels->reserve(image.pixels.size() * 4);
        for (const Pixel& pixel : image.pixels) {
            mPixels->insert(mPixels->end(), {pixel[2], pixel[1], pixel[0], 255});
        }
        mFacts.width = image.width;
        mFacts.height = image.height;
        mFacts.pixelAspect = qelmediatypes::PixelAspectRatio(1, 1);
        mFacts.timeScale = 25;
        mFacts.sampleSize = 1;
        mFacts.frameCount = 1;
        mFacts.frameFormat = BR::PixelFormat::BGRX_4444_8u;
    }

    [[nodiscard]] const document::ClipFacts& Description() const override { return mFacts; }
    [[nodiscard]] exporting::FrameView RenderFrame(std::int64_t /*frame*/) const override
    {
        return {.format = mFacts.frameFormat,
                .width = mFacts.width,
                .height = mFacts.height,
                .top = reinterpret_cast<const std::byte*>(mPixels->data()),
                .rowBytes = std::ptrdiff_t{4} * mFacts.width,
                .owner = mPixels};
    }
    void RenderAudio(std::int64_t /*position*/, std::uint32_t /*sampleCount*/,
                     std::span<float* const> /*channels*/) const override
    {
    }

private:
    std::shared_ptr<std::vector<std::uint8_t>> mPixels;
    document::ClipFacts mFacts;
};

/// The part of `from` pixels that pixel `index` of `to` covers; at least one.
std::pair<std::int64_t, std::int64_t> Covered(int index, int to, std::int32_t from)
{
    const std::int64_t begin = std::int64_t{index} * from / to;
    const std::int64_t end = (std::int64_t{index} + 1) * from / to;
    return {begin, std::max(begin + 1, end)};
}

} // namespace

Extent ExtentFor(std::int32_t width, std::int32_t height, qelmediatypes::PixelAspectRatio aspect, int size)
{
    double shownWidth = width;
    double shownHeight = height;
    // One side shrinks, none grows: the shown picture has no more pixels than the clip.
    const double ratio = aspect.GetNumerator() > 0 && aspect.GetDenominator() > 0
                             ? static_cast<double>(aspect.GetNumerator()) / aspect.GetDenominator()
                             : 1.0;
    (ratio < 1.0 ? shownWidth : shownHeight) *= ratio < 1.0 ? ratio : 1.0 / ratio;
    const double scale = std::min(1.0, size / std::max(shownWidth, shownHeight));
    const auto whole = [scale](double length) {
        return std::max(1, static_cast<int>(std::lround(length * scale)));
    };
    return {whole(shownWidth), whole(shownHeight)};
}

Image Scaled(const exporting::Picture& picture, Extent extent)
{
    Image image(extent.width, extent.height);
    for (int y = 0; y < extent.height; ++y) {
        const auto [top, bottom] = Covered(y, extent.height, picture.height);
        for (int x = 0; x < extent.width; ++x) {
            const auto [left, right] = Covered(x, extent.width, picture.width);
            std::array<std::uint64_t, 3> sum{};
            for (std::int64_t row = top; row < bottom; ++row) {
                const std::byte* from = picture.planes[0] + row * picture.rowBytes[0] + left * 3;
                for (std::int64_t column = left; column < right; ++column) {
                    for (std::uint64_t& part : sum) {
                        part += std::to_integer<std::uint64_t>(*from++);
                    }
                }
            }
            const auto count = static_cast<std::uint64_t>((bottom - top) * (right - left));
            for (std::size_t part = 0; part < sum.size(); ++part) {
                image.At(x, y)[part] = static_cast<std::uint8_t>((sum[part] + count / 2) / count);
            }
        }
    }
    return image;
}

Image ThumbnailOf(const document::OpenedClip& clip, int size)
{
    const exporting::ClipSource source(clip);
    const exporting::FrameView frame = source.RenderFrame(clip.facts.frameCount / 2);
    exporting::FrameConverter converter({.source = frame.format,
                                         .target = exporting::PictureLayout::Rgb24,
                                         .width = frame.width,
                                         .height = frame.height,
                                         .coding = {}});
    return Scaled(converter.Convert(frame), ExtentFor(frame.width, frame.height, clip.facts.pixelAspect, size));
}

void WritePng(const Image& image, const std::filesystem::path& file)
{
    const ImageSource source(image);
    exporting::RenderJob job;
    job.output.container = exporting::ContainerNamed("png");
    job.output.streams = exporting::Streams::VideoOnly;
    job.target = file;
    job.frames = {.first = 0, .count = 1};
    static_cast<void>(exporting::Render(source, job));
}

} // namespace tessel::thumbnail
