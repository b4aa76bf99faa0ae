/// The sound of a file, beside its pictures.
#pragma once

#include "AudioBlocks.h"
#include "RenderRecord.h"
#include "SignalSource.h"

#include <tessel/export/encode/Digests.h>
#include <tessel/export/encode/MovieWriter.h>
#include <tessel/export/plan/AudioPlan.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace tessel::exporting {

/// Feeds a writer with the samples of a span. Threads: one object, one thread at a time.
class SoundTrack {
public:
    /// Begins at the start of frame `firstFrame`.
    /// @param source  borrowed
    /// @param record  may be null
    SoundTrack(const SignalSource& source, const AudioPlan& plan, const RenderRecord* record,
               std::int64_t firstFrame);

    /// The sample at which a frame starts.
    [[nodiscard]] std::int64_t StartOf(std::int64_t frame) const noexcept;

    /// Writes up to, not including, sample `end`.
    void WriteTo(std::int64_t end, MovieWriter& writer);

    /// Tells the record of the last piece.
    void Finish();

private:
    const SignalSource& mSource;
    AudioPlan mPlan;
    std::optional<SoundHasher> mHasher;
    AudioBlockReader mReader;
    std::vector<const float*> mChannels;
    std::int64_t mPosition;
};

} // namespace tessel::exporting
