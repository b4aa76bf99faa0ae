/// Where pictures and samples come from: a clip, or what stands in its place.
#pragma once

#include <tessel/document/OpenClip.h>
#include <tessel/export/convert/FrameView.h>

#include <cstdint>
#include <span>

namespace tessel::exporting {

/// Threads: [thread-safe].
class SignalSource {
public:
    SignalSource() = default;
    SignalSource(const SignalSource&) = delete;
    SignalSource& operator=(const SignalSource&) = delete;
    virtual ~SignalSource() = default;

    [[nodiscard]] virtual const document::ClipFacts& Description() const = 0;
    [[nodiscard]] virtual FrameView RenderFrame(std::int64_t frame) const = 0;
    /// As `importhost::Clip::RenderAudio`.
    virtual void RenderAudio(std::int64_t position, std::uint32_t sampleCount,
                             std::span<float* const> channels) const = 0;
};

/// An opened clip. Borrows it.
class ClipSource final : public SignalSource {
public:
    explicit ClipSource(const document::OpenedClip& opened) : mClip(opened.clip), mFacts(opened.facts) {}

    [[nodiscard]] const document::ClipFacts& Description() const override { return mFacts; }
    [[nodiscard]] FrameView RenderFrame(std::int64_t frame) const override
    {
        return ViewOf(mClip.RenderFrame(frame));
    }
    void RenderAudio(std::int64_t position, std::uint32_t sampleCount,
                     std::span<float* const> channels) const override
    {
        mClip.RenderAudio(position, sampleCount, channels);
    }

private:
    const importhost::Clip& mClip;
    const document::ClipFacts& mFacts;
};

} // namespace tessel::exporting
