/// A source whose frames' format is known, because one of them was asked for it.
#pragma once

#include "SignalSource.h"

#include <mutex>
#include <optional>

namespace tessel::exporting {

/// Asks a source for one frame ahead of time and hands that one out when it is asked for it again, so that
/// learning the format costs no frame. Borrows the source. Threads: [thread-safe].
class AskedSource final : public SignalSource {
public:
    /// Asks for frame `frame`. @throws what the source throws
    AskedSource(const SignalSource& source, std::int64_t frame);

    /// The source's, with `frameFormat`.
    [[nodiscard]] const document::ClipFacts& Description() const override { return mFacts; }
    [[nodiscard]] FrameView RenderFrame(std::int64_t frame) const override;
    void RenderAudio(std::int64_t position, std::uint32_t sampleCount,
                     std::span<float* const> channels) const override;

private:
    const SignalSource& mSource;
    std::int64_t mNumber;
    mutable std::mutex mMutex;
    mutable std::optional<FrameView> mFrame; ///< until it is handed out
    document::ClipFacts mFacts;
};

} // namespace tessel::exporting
