#include "TimeMapStage.h"

#include <cmath>

namespace tessel::verify::judge {
namespace {

class StraySearch : public TimeMapStage {
public:
    explicit StraySearch(TimeMapDraft& draft) noexcept : TimeMapStage(draft) {}

    /// Finds tones of the movie that lie far from where the map puts them, but elsewhere in the clip. If it
    /// finds no such tone, it looks for such pauses.
    void Run()
    {
        Find(/*arePauses=*/false);
        if (mMap.strays.empty()) {
            Find(/*arePauses=*/true);
        }
    }

private:
    void Find(bool arePauses)
    {
        for (std::size_t i = 0; i < mMovieEdges.size(); ++i) {
            const ToneEdge& first = mMovieEdges[i];
            if (!mHasShift || mMatched[i] || first.isOn == arePauses) {
                continue;
            }
            for (std::size_t k = i + 1; k < mMovieEdges.size(); ++k) {
                const ToneEdge& last = mMovieEdges[k];
                if (last.tone != first.tone) {
                    continue;
                }
                if (last.isOn != first.isOn && !mMatched[k]) {
                    AddStray(first, last);
                }
                break;
            }
        }
    }

    void AddStray(const ToneEdge& first, const ToneEdge& last)
    {
        const double wanted = mMap.ClipSeconds(first.seconds);
        const double duration = mMap.tempo * (last.seconds - first.seconds);
        const ToneEdge* best = nullptr;
        for (const ToneEdge& edge : mClipEdges) {
            if (edge.isOn == first.isOn && edge.tone == first.tone &&
                std::abs(edge.seconds - wanted) < kMostShift &&
                Near(last, edge.seconds + duration, kEdgeTolerance) != nullptr &&
                (best == nullptr || std::abs(edge.seconds - wanted) < std::abs(best->seconds - wanted))) {
                best = &edge;
            }
        }
        if (best != nullptr && std::abs(best->seconds - wanted) > 2 * kEdgeTolerance) {
            mMap.strays.push_back({first.seconds, last.seconds, first.tone, best->seconds, !first.isOn});
        }
    }
};

} // namespace

void FindStrays(TimeMapDraft& draft)
{
    StraySearch(draft).Run();
}

} // namespace tessel::verify::judge
