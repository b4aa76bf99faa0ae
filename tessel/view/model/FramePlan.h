/// Which frames are made before they are due.
#pragma once

#include "Transport.h"

#include <cstdint>
#include <vector>

namespace tessel::view {

/// How fast frames are made.
struct MakingPace {
    double seconds = 0; ///< from the beginning of a frame's making to its end; 0: not known yet
    int threads = 1;    ///< that make frames at once
};

struct FramePlan {
    std::vector<std::int64_t> frames; ///< to make, the most urgent one first
    std::vector<std::int64_t> keep;   ///< due too soon to be begun, of use where they are made already
};

/// While it plays. Frames that take longer than they are shown are begun that much earlier. In real time, where
/// the threads cannot make all frames, they make every second, third, ... one, each in time: frames that are
/// made for nothing would cost the ones behind them.
/// @param ahead  how many frames are made before they are due
[[nodiscard]] FramePlan PlanFrames(const Transport& transport, std::int64_t due, const MakingPace& pace,
                                   int ahead);

} // namespace tessel::view
