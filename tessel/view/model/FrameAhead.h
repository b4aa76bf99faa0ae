/// Frames made on threads of their own, a few ahead of the one that is shown.
#pragma once

#include "ShownFrame.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace tessel::view {

/// Threads: all functions on one thread; `onReady` is called on others.
class FrameAhead {
public:
    /// @param onReady  called when a frame is ready or could not be made; must return soon
    FrameAhead(std::shared_ptr<const ViewedClip> clip, int threads, std::function<void()> onReady);
    /// Waits for frames that are being made.
    ~FrameAhead();
    FrameAhead(const FrameAhead&) = delete;
    FrameAhead& operator=(const FrameAhead&) = delete;

    /// The frames to make, the most urgent one first. Frames that are ready are not made again; what is ready
    /// and in neither list is forgotten.
    /// @param keep  frames that are not to be begun any more, but are still of use where they are made already
    void Want(const std::vector<std::int64_t>& frames, const FrameWish& wish,
              const std::vector<std::int64_t>& keep = {});

    /// All frames that are ready with the last wish, or could not be made; also those that were being made when
    /// they were wanted no more, until the next `Want`.
    [[nodiscard]] std::vector<std::int64_t> AllReady() const;

    /// Seconds from the beginning of a frame's making to its end, the mean of the last few; 0 before the first.
    [[nodiscard]] double SecondsToMake() const;

    /// A wanted frame; null while it is being made, or where it could not be.
    [[nodiscard]] std::shared_ptr<const ShownFrame> Ready(std::int64_t frame) const;

    /// Why a wanted frame could not be made; nothing where it could.
    [[nodiscard]] std::optional<std::string> Failure(std::int64_t frame) const;

private:
    struct Made {
        std::shared_ptr<const ShownFrame> frame; ///< null: it failed
        std::string failure;
    };
    void Run();
    /// The most urgent frame that no thread has begun; the end if all are begun. Needs `mMutex` locked.
    [[nodiscard]] std::vector<std::int64_t>::const_iterator NextToMake() const;
    /// The wish for a frame that is begun now: without scopes where it is too soon for them.
    [[nodiscard]] FrameWish WishNow();

    std::shared_ptr<const ViewedClip> mClip;
    std::function<void()> mOnReady;
    mutable std::mutex mMutex;
    std::condition_variable mChanged;
    std::vector<std::int64_t> mWanted;
    FrameWish mWish;
    std::set<std::int64_t> mInWork; ///< with `mWish`
    std::map<std::int64_t, Made> mMade;
    std::uint64_t mWishNumber = 0;                                  ///< counts changes of `mWish`
    std::optional<std::chrono::steady_clock::time_point> mScopesAt; ///< begun last with `mWish`
    double mSecondsToMake = 0;
    bool mStops = false;
    std::vector<std::thread> mThreads;
};

} // namespace tessel::view
