/// Keeps the picture and the sound of one clip in step. Each has its own thread.
#pragma once

#include <gst/gst.h>

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <vector>

namespace tessel::gstreamer {

/// Where the streams of one clip are. A linked stream is paced by who takes it; an unlinked one would run to
/// its end at full speed, so it waits for the linked ones instead, as if one thread served them all. Threads:
/// [thread-safe], except `Add`.
class Pace {
public:
    using Id = std::size_t;

    /// Before any stream starts.
    [[nodiscard]] Id Add();

    /// The stream begins a segment.
    void Begin(Id id);
    /// @param progress  time of the segment that is behind it
    void Advance(Id id, GstClockTime progress);
    /// Nothing more comes in this segment.
    void End(Id id);

    /// A buffer is on its way, so everything that comes before buffers has arrived.
    void Start(Id id);

    /// What became of the last buffer.
    void SetLinked(Id id, bool isLinked);
    /// Links have changed: the stream counts as linked until a buffer shows otherwise.
    void Reconfigure(Id id);

    void SetFlushing(Id id, bool isFlushing);

    /// Returns at once for a linked stream, else when no linked stream is behind it. False where it is
    /// flushing.
    [[nodiscard]] bool WaitForTurn(Id id);

    /// Returns when every stream has started or ended: players confuse streams of which one ends before they
    /// know the other. False where it is flushing.
    [[nodiscard]] bool WaitForOthersToStart(Id id);

private:
    struct Place {
        GstClockTime progress = 0;
        bool isStarted = false;
        bool isEnded = false;
        bool isLinked = true;
        bool isReconfigured = false; ///< since its last turn
        bool isFlushing = false;
    };

    [[nodiscard]] bool HasTurn(const Place& place) const;
    template <typename Change>
    void Apply(Id id, Change&& change);

    std::mutex mMutex;
    std::condition_variable mChanged;
    std::vector<Place> mPlaces;
};

} // namespace tessel::gstreamer
