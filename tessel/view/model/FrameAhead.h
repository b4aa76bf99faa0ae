/// Frames made on threads of their own, a few ahead of the one that is shown.
#pragma once

#include "ShownFrame.h"

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

    /// The frames to make, the most urgent one first; what was asked for before and is not named is forgotten,
    /// and frames that are ready are not made again.
    void Want(const std::vector<std::int64_t>& frames, const FrameWish& wish);

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

    std::shared_ptr<const ViewedClip> mClip;
    std::function<void()> mOnReady;
    mutable std::mutex mMutex;
    std::condition_variable mChanged;
    std::vector<std::int64_t> mWanted;
    FrameWish mWish;
    std::set<std::int64_t> mInWork; ///< with `mWish`
    std::map<std::int64_t, Made> mMade;
    std::uint64_t mWishNumber = 0; ///< counts changes of `mWish`
    bool mStops = false;
    std::vector<std::thread> mThreads;
};

} // namespace tessel::view
