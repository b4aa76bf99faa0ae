/// A clip beside a movie that was made of it.
#pragma once

#include "ComparedPictures.h"
#include "FrameMap.h"

#include <tessel/verify/report/Report.h>
#include <tessel/view/model/ViewedClip.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace tessel::view {

struct ComparedFrame {
    std::int64_t frame = 0;
    int gain = 1;
    std::int64_t picture = -1; ///< of the movie; -1: none shows the frame
    bool isAligned = false;    ///< by verification; else picture n is taken for frame n
    ComparedPictures pictures; ///< empty where there is no picture
    std::string trouble;       ///< why there is no picture
};

/// Verifies the movie on one thread, and decodes what is looked at on another. Threads: all functions on one
/// thread; `onReady` is called on others.
class Comparison {
public:
    /// @throws verify::read::ReadError  where there is no such movie
    Comparison(std::shared_ptr<const ViewedClip> clip, std::string movie, std::function<void()> onReady);
    /// Waits for the picture that is being made; the verification is broken off.
    ~Comparison();
    Comparison(const Comparison&) = delete;
    Comparison& operator=(const Comparison&) = delete;

    [[nodiscard]] const std::string& Movie() const noexcept { return mMovie; }

    /// Makes this frame's comparison as soon as what is in work is done.
    void Want(std::int64_t frame, int gain);

    /// The frame that was made last; null: none yet.
    [[nodiscard]] std::shared_ptr<const ComparedFrame> Newest() const;

    /// What verification found; null while it runs, and where it failed.
    [[nodiscard]] std::shared_ptr<const verify::Report> Report() const;

    /// Whether verification is done, well or not.
    [[nodiscard]] bool IsVerified() const;

    /// "returned.mp4: not as expected, 3 findings", or how far it is.
    [[nodiscard]] std::string State() const;

private:
    void RunVerification();
    void RunPictures();

    std::shared_ptr<const ViewedClip> mClip;
    std::string mMovie;
    std::function<void()> mOnReady;
    mutable std::mutex mMutex;
    std::condition_variable mChanged;
    std::optional<std::int64_t> mWanted;
    int mGain = 1;
    std::shared_ptr<const ComparedFrame> mNewest;
    std::shared_ptr<const verify::Report> mReport;
    FrameMap mMap;
    bool mIsVerified = false;
    std::string mFailure; ///< of the verification
    std::int64_t mVerifiedPictures = 0;
    std::atomic<bool> mStops = false;
    std::thread mVerification;
    std::thread mPictures;
};

} // namespace tessel::view
