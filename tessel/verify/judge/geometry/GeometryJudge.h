/// Judges where the frame lies in the pictures.
#pragma once

#include <tessel/verify/align/Alignment.h>
#include <tessel/verify/read/MovieFacts.h>
#include <tessel/verify/report/Findings.h>

#include <vector>

namespace tessel::verify::judge {

/// Collects exact placements of some pictures.
class GeometrySampler {
public:
    explicit GeometrySampler(const align::NumberReader& numbers) : mNumbers(numbers) {}

    /// Whether another placement is worth its cost.
    [[nodiscard]] bool WantsMore() const noexcept { return mPlacements.size() < 5; }

    /// @param start  near the place. Cost: some hundred comparisons of the plate.
    void Take(const read::Picture& picture, std::int64_t frame, const align::Placement& start);

    [[nodiscard]] const std::vector<align::Placement>& Placements() const noexcept { return mPlacements; }

private:
    const align::NumberReader& mNumbers;
    std::vector<align::Placement> mPlacements;
};

/// Puts findings of all `geometry.` checks.
/// @param alignment  whose placement stands in where no picture's number could be placed
void JudgeGeometry(const GeometrySampler& sampler, const align::Alignment& alignment,
                   const align::NumberReader& numbers, const read::PictureFacts& movie, Findings& findings);

} // namespace tessel::verify::judge
