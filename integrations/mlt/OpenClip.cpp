#include "OpenClip.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <limits>

namespace tessel::mlt {
namespace {

/// The layout of the C interface whose samples MLT's format holds.
tessel_layout LayoutOf(mlt_image_format format)
{
    switch (format) {
    case mlt_image_rgb:
        return TESSEL_LAYOUT_RGB;
    case mlt_image_yuv422:
        return TESSEL_LAYOUT_YUYV;
    case mlt_image_yuv420p:
        return TESSEL_LAYOUT_YUV420P;
    case mlt_image_yuv422p16:
        return TESSEL_LAYOUT_YUV422P10;
    default:
        return TESSEL_LAYOUT_RGBA;
    }
}

tessel_picture Describe(tessel_clip* clip, tessel_layout layout)
{
    tessel_picture picture{};
    picture.size = sizeof picture;
    if (tessel_describe_picture(clip, layout, &picture) != TESSEL_OK) {
        picture.plane_count = 0;
    }
    return picture;
}

mlt_image_format FormatFor(tessel_clip* clip)
{
    const tessel_picture own = Describe(clip, TESSEL_LAYOUT_OWN);
    if (own.plane_count == 0 || own.matrix == 0) {
        return mlt_image_rgba;
    }
    return own.sample_bits > 8 ? mlt_image_yuv422p16 : mlt_image_yuv422;
}

/// A plane in MLT's memory. MLT cuts an odd width's last chroma sample off, so its rows may be shorter than the
/// clip's.
struct MltPlane {
    std::uint8_t* top;
    std::ptrdiff_t stride;
    std::int32_t rows;
};

/// 10 bits become MLT's 16: codes move up by 6 bits.
void WidenTo16(const MltPlane& plane)
{
    constexpr int kShift = 6;
    for (std::int32_t row = 0; row < plane.rows; ++row) {
        std::uint8_t* bytes = plane.top + row * plane.stride;
        for (std::ptrdiff_t at = 0; at + 1 < plane.stride; at += 2) {
            std::uint16_t sample = 0;
            std::memcpy(&sample, bytes + at, sizeof sample);
            sample = static_cast<std::uint16_t>(sample << kShift);
            std::memcpy(bytes + at, &sample, sizeof sample);
        }
    }
}

} // namespace

std::shared_ptr<OpenClip> OpenClip::Open(const char* path)
{
    tessel_clip* clip = nullptr;
    if (tessel_open_file(path, nullptr, &clip) != TESSEL_OK) {
        mlt_log_error(nullptr, "[producer tessel] %s\n", tessel_error_text());
        return nullptr;
    }
    std::shared_ptr<OpenClip> opened(new OpenClip(clip));
    const std::string obstacle = opened->Obstacle();
    if (!obstacle.empty()) {
        const bool isNamed = obstacle.starts_with(path);
        mlt_log_error(nullptr, "[producer tessel] %s%s%s\n", isNamed ? "" : path, isNamed ? "" : ": ",
                      obstacle.c_str());
        return nullptr;
    }
    if (const std::string warning = tessel_warning(clip); !warning.empty()) {
        mlt_log_warning(nullptr, "[producer tessel] %s: %s\n", path, warning.c_str());
    }
    return opened;
}

OpenClip::OpenClip(tessel_clip* clip) : mClip(clip)
{
    mFacts.size = sizeof mFacts;
    (void)tessel_describe(clip, &mFacts); // fails for null pointers alone
    if (HasPicture()) {
        mOwnFormat = FormatFor(clip);
    }
}

std::string OpenClip::Obstacle() const
{
    if (!HasPicture() && !HasSound()) {
        return "the clip has neither picture nor sound";
    }
    if (mFacts.rate_numerator < 1) {
        // A profile of 0 frames a second never ends.
        return "mVideoFrameRate is no frame rate that can be played";
    }
    if (!HasPicture()) {
        return {};
    }
    // MLT counts a picture's bytes as an int; no format has more than four a pixel.
    constexpr std::int64_t kMostPixels = std::numeric_limits<int>::max() / 4;
    if (std::int64_t{mFacts.width} * mFacts.height > kMostPixels) {
        return std::to_string(mFacts.width) + " x " + std::to_string(mFacts.height) +
               " pixels are more than MLT holds";
    }
    tessel_picture picture{};
    picture.size = sizeof picture;
    return tessel_describe_picture(mClip.get(), TESSEL_LAYOUT_OWN, &picture) == TESSEL_OK ? ""
                                                                                          : tessel_error_text();
}

bool OpenClip::HasPicture() const noexcept
{
    return mFacts.width > 0 && mFacts.height > 0;
}

bool OpenClip::HasSound() const noexcept
{
    return mFacts.sample_rate > 0 && mFacts.channel_count > 0 && mFacts.channel_count <= TESSEL_MOST_CHANNELS;
}

int OpenClip::ColorSpace(mlt_image_format format) const
{
    switch (Describe(mClip.get(), LayoutOf(format)).matrix) {
    case 5:
    case 6:
        return 601;
    case 7:
        return 240;
    case 9:
    case 10:
        return 2020;
    default:
        return 709;
    }
}

MltPicture OpenClip::Paint(std::int64_t frame, mlt_image_format format) const
{
    const tessel_layout layout = LayoutOf(format);
    const tessel_picture needed = Describe(mClip.get(), layout);
    mlt_image_s image{};
    mlt_image_set_values(&image, nullptr, format, mFacts.width, mFacts.height);
    const int bytes = mlt_image_calculate_size(&image);
    MltPicture picture{decltype(picture.memory)(static_cast<std::uint8_t*>(mlt_pool_alloc(bytes))), bytes};
    if (!picture.memory || needed.plane_count == 0) {
        return {};
    }
    mlt_image_set_values(&image, picture.memory.get(), format, mFacts.width, mFacts.height);
    if (format == mlt_image_yuv420p) {
        // Planes follow each other. MLT 7.12 computes another place for the last one, inside the second.
        image.planes[2] = image.planes[1] + static_cast<std::ptrdiff_t>(image.strides[1]) * (mFacts.height / 2);
    }

    std::array<void*, 4> planes{};
    std::array<std::ptrdiff_t, 4> strides{};
    std::array<std::vector<std::uint8_t>, 4> wider; // planes that are cut
    std::array<MltPlane, 4> targets{};
    for (std::size_t plane = 0; plane < static_cast<std::size_t>(needed.plane_count); ++plane) {
        const bool isChroma420 = format == mlt_image_yuv420p && plane > 0;
        targets[plane] = {image.planes[plane], image.strides[plane],
                          isChroma420 ? mFacts.height / 2 : mFacts.height};
        planes[plane] = targets[plane].top;
        strides[plane] = targets[plane].stride;
        const auto rowBytes = static_cast<std::ptrdiff_t>(needed.row_bytes[plane]);
        if (rowBytes > targets[plane].stride || needed.plane_rows[plane] > targets[plane].rows) {
            wider[plane].resize(needed.row_bytes[plane] * static_cast<std::size_t>(needed.plane_rows[plane]));
            planes[plane] = wider[plane].data();
            strides[plane] = rowBytes;
        }
    }
    if (tessel_frame(mClip.get(), frame, layout, planes.data(), strides.data()) != TESSEL_OK) {
        mlt_log_error(nullptr, "[producer tessel] frame %lld: %s\n", static_cast<long long>(frame),
                      tessel_error_text());
        return {};
    }
    for (std::size_t plane = 0; plane < static_cast<std::size_t>(needed.plane_count); ++plane) {
        const MltPlane& target = targets[plane];
        for (std::int32_t row = 0; !wider[plane].empty() && row < target.rows; ++row) {
            const std::ptrdiff_t kept = std::min(target.stride, strides[plane]);
            std::memcpy(target.top + row * target.stride, wider[plane].data() + row * strides[plane],
                        static_cast<std::size_t>(kept));
        }
        if (format == mlt_image_yuv422p16) {
            WidenTo16(target);
        }
    }
    return picture;
}

MltPicture OpenClip::Picture(std::int64_t frame, mlt_image_format format)
{
    if (mFacts.is_still == 0) {
        return Paint(frame, format);
    }
    const std::lock_guard lock(mStillMutex);
    MltPicture& still = mStills[format];
    if (!still.memory) {
        still = Paint(0, format);
    }
    if (!still.memory) {
        return {};
    }
    MltPicture copy{decltype(copy.memory)(static_cast<std::uint8_t*>(mlt_pool_alloc(still.bytes))),
                    still.bytes};
    if (copy.memory) {
        std::memcpy(copy.memory.get(), still.memory.get(), static_cast<std::size_t>(still.bytes));
    }
    return copy;
}

bool OpenClip::Samples(std::int64_t start, int count, float* planes) const
{
    std::vector<float*> channels(static_cast<std::size_t>(mFacts.channel_count));
    for (std::size_t channel = 0; channel < channels.size(); ++channel) {
        channels[channel] = planes + channel * static_cast<std::size_t>(count);
    }
    if (tessel_samples(mClip.get(), start, static_cast<std::size_t>(count), channels.data(), channels.size()) !=
        TESSEL_OK) {
        mlt_log_error(nullptr, "[producer tessel] sound from sample %lld on: %s\n",
                      static_cast<long long>(start), tessel_error_text());
        return false;
    }
    return true;
}

} // namespace tessel::mlt
