/// A source without a plug-in: pictures and samples that tell where they come from.
#pragma once

#include <tessel/export/SignalSource.h>
#include <tessel/export/convert/PixelKind.h>

#include <array>
#include <cstring>
#include <mutex>
#include <utility>
#include <vector>

namespace tessel::exporting {

/// Sets what a document names, and with it the format in which the plug-in paints.
inline void SetFormat(document::ClipFacts& clip, BR::PixelFormat format)
{
    clip.pixelFormat = format;
    clip.frameFormat = format;
    const PixelKind kind = KindOf(format);
    if (kind.storage == Storage::Planar420 || kind.storage == Storage::Dv) {
        clip.frameFormat = kind.storage == Storage::Dv && kind.matrix != Matrix::Bt709
                               ? BR::PixelFormat::BGRA_4444_8u
                               : BR::PixelFormat::VUYA_4444_8u_709;
    }
}

[[nodiscard]] inline document::ClipFacts DescriptionOf(BR::PixelFormat format, std::int32_t width = 16,
                                                       std::int32_t height = 8)
{
    document::ClipFacts clip;
    clip.width = width;
    clip.height = height;
    clip.timeScale = 30000;
    clip.sampleSize = 1001;
    clip.frameCount = 100;
    clip.sampleRate = 48000.0F;
    clip.channelCount = 2;
    clip.channelType = 2;
    SetFormat(clip, format);
    clip.colorCodes = {1, 1, 1, 0};
    return clip;
}

/// 8-bit BGRX frames whose every byte is the frame's number; the sample at position p of channel c is
/// c / 8 + (p mod 1000) / 2^20. Notes what it was asked for.
class CountingSource final : public SignalSource {
public:
    explicit CountingSource(document::ClipFacts clip) : mClip(std::move(clip)) {}

    [[nodiscard]] const document::ClipFacts& Description() const override { return mClip; }

    [[nodiscard]] FrameView RenderFrame(std::int64_t frame) const override
    {
        const std::size_t rowBytes = static_cast<std::size_t>(mClip.width) * 4;
        auto bytes = std::make_shared<std::vector<std::byte>>(rowBytes * static_cast<std::size_t>(mClip.height),
                                                              static_cast<std::byte>(frame));
        return {BR::PixelFormat::BGRX_4444_8u,         mClip.width, mClip.height, bytes->data(),
                static_cast<std::ptrdiff_t>(rowBytes), bytes};
    }

    void RenderAudio(std::int64_t position, std::uint32_t count,
                     std::span<float* const> channels) const override
    {
        {
            const std::lock_guard lock(mMutex);
            mAudioRequests.emplace_back(position, count);
        }
        for (std::size_t channel = 0; channel < channels.size(); ++channel) {
            for (std::uint32_t i = 0; i < count; ++i) {
                channels[channel][i] = Sample(position + i, channel);
            }
        }
    }

    [[nodiscard]] static float Sample(std::int64_t position, std::size_t channel)
    {
        return static_cast<float>(channel) / 8.0F + static_cast<float>(position % 1000) / 1048576.0F;
    }

    [[nodiscard]] std::vector<std::pair<std::int64_t, std::uint32_t>> AudioRequests() const
    {
        const std::lock_guard lock(mMutex);
        return mAudioRequests;
    }

private:
    document::ClipFacts mClip;
    mutable std::mutex mMutex;
    mutable std::vector<std::pair<std::int64_t, std::uint32_t>> mAudioRequests;
};

} // namespace tessel::exporting
