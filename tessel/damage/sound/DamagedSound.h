/// The sound of a clip with its faults.
#pragma once

#include <tessel/damage/DamagePlan.h>
#include <tessel/export/AudioBlocks.h>
#include <tessel/export/SignalSource.h>

#include <cstdint>
#include <mutex>
#include <span>
#include <vector>

namespace tessel::damage {

/// A clip whose sound is damaged; its frames are the clip's own. Borrows source and plan.
/// Threads: [thread-safe]; requests for sound wait for each other.
class DamagedSource final : public exporting::SignalSource {
public:
    DamagedSource(const exporting::SignalSource& clean, const DamagePlan& plan);

    [[nodiscard]] const document::ClipFacts& Description() const override { return mPlan.described; }
    [[nodiscard]] exporting::FrameView RenderFrame(std::int64_t frame) const override
    {
        return mClean.RenderFrame(frame);
    }
    /// Positions and channels are the file's, counted from its beginning.
    void RenderAudio(std::int64_t position, std::uint32_t sampleCount,
                     std::span<float* const> channels) const override;

private:
    /// The clip's samples around a stretch of the file, by channel.
    struct Window {
        std::int64_t first = 0; ///< clip position of sample 0
        std::vector<std::vector<float>> channels;
    };

    void ReadWindow(std::int64_t first, std::int64_t last) const;
    /// All channels at a place of the clip, which may lie between two samples.
    void ReadMoment(double position, Moment& moment) const noexcept;

    const exporting::SignalSource& mClean;
    const DamagePlan& mPlan;
    mutable std::mutex mMutex;
    mutable exporting::AudioBlockReader mReader;
    std::int64_t mStart; ///< clip position of the file's first sample, where nothing shifts it
    mutable Window mWindow;
};

} // namespace tessel::damage
