/// What the stages that make a `TimeMap` share.
#pragma once

#include "TimeMap.h"

#include <numbers>
#include <optional>
#include <utility>
#include <vector>

namespace tessel::verify::judge {

constexpr double kTwoPi = 2 * std::numbers::pi;
/// How far an edge may be from where it is expected, seconds: codecs smear it.
constexpr double kEdgeTolerance = 0.004;
/// How far a movie may be off: a bit more than the longest identification's cycle.
constexpr double kMostShift = 15;
/// Runs shorter than that tell their phase badly.
constexpr double kShortRun = 0.08;

[[nodiscard]] double Median(std::vector<double> values);

/// What is usual of the distances from the median, as a standard deviation.
[[nodiscard]] double Scatter(const std::vector<double>& values);

/// An edge of the movie and the clip's, seconds.
struct EdgeMatch {
    double movie = 0;
    double clip = 0;
};

/// A map in the making.
struct TimeMapDraft {
    TimeMapDraft(const SoundTrack& clip, const SoundTrack& movie, double pitch, double leastSeconds);

    const SoundTrack& clip;
    const SoundTrack& movie;
    double least;       ///< seconds; a smaller step does not count
    double clipEnd = 0; ///< seconds
    std::vector<ToneEdge> clipEdges;
    std::vector<ToneEdge> movieEdges;
    std::vector<bool> matched;                   ///< by edge of the movie
    std::vector<std::vector<EdgeMatch>> matches; ///< by piece
    bool hasShift = false;                       ///< edges told how the sound is shifted
    double edgeSigma = 0;                        ///< seconds
    TimeMap map;
};

/// One stage: what it reads and writes of a draft, and what all stages look up. Threads: one object, one thread
/// at a time.
class TimeMapStage {
protected:
    explicit TimeMapStage(TimeMapDraft& draft) noexcept
        : mClip(draft.clip), mMovie(draft.movie), mLeast(draft.least), mClipEdges(draft.clipEdges),
          mMovieEdges(draft.movieEdges), mMatched(draft.matched), mMatches(draft.matches),
          mHasShift(draft.hasShift), mEdgeSigma(draft.edgeSigma), mMap(draft.map)
    {
    }

    /// The clip's edge of the same kind that is nearest to a clip time; null where none is near.
    [[nodiscard]] const ToneEdge* Near(const ToneEdge& edge, double clipSeconds, double tolerance) const;

    /// By how much a tone is ahead of the clip's under a shift, radians; nothing where the clip has none there.
    [[nodiscard]] std::optional<double> AngleOf(const ToneRun& run, const Tone& tone, double shift) const;

    /// Whether edges keep their distances at the speed of the pitch and jump now and then, rather than drift
    /// away at another speed. Lost samples alone bend a line through all edges.
    /// @param slope  the other speed
    [[nodiscard]] bool StaysInSteps(const std::vector<EdgeMatch>& matches, double slope) const;

    /// Where a tone jumps on its way, or is interrupted, between two times of the movie.
    [[nodiscard]] std::optional<std::pair<double, double>> SpliceBetween(double first, double last) const;

    const SoundTrack& mClip;
    const SoundTrack& mMovie;
    double mLeast;
    const std::vector<ToneEdge>& mClipEdges;
    const std::vector<ToneEdge>& mMovieEdges;
    std::vector<bool>& mMatched;
    std::vector<std::vector<EdgeMatch>>& mMatches;
    bool& mHasShift;
    double& mEdgeSigma;
    TimeMap& mMap;
};

/// The stages, in this order. @{
/// Speed and pieces by beginnings and ends of tones.
void MapByEdges(TimeMapDraft& draft);
/// Sound that was made longer or shorter with its pitch kept, where edges tell it better than steps do.
void MapStretch(TimeMapDraft& draft);
/// Shifts to parts of a sample, steps inside tones and the channels' signs, by the phases of tones.
void RefineByPhases(TimeMapDraft& draft);
/// Tones and pauses that stand elsewhere in the clip.
void FindStrays(TimeMapDraft& draft);
/// @}

} // namespace tessel::verify::judge
