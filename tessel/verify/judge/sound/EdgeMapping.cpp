#include "TimeMapStage.h"

#include <algorithm>
#include <cmath>

namespace tessel::verify::judge {
namespace {

class EdgeMapping : public TimeMapStage {
public:
    explicit EdgeMapping(TimeMapDraft& draft) noexcept : TimeMapStage(draft), mClipEnd(draft.clipEnd) {}

    void Run()
    {
        FindFirstShift();
        Walk();
    }

private:
    /// Of `count` edges from `first` on, how many are where speed and shift put them.
    [[nodiscard]] std::size_t Agreeing(std::size_t first, std::size_t count, double tempo, double shift,
                                       double slack) const
    {
        std::size_t agreeing = 0;
        const double base = mMovieEdges[first].seconds;
        for (std::size_t i = first; i < std::min(first + count, mMovieEdges.size()); ++i) {
            const ToneEdge& edge = mMovieEdges[i];
            const double tolerance = kEdgeTolerance + slack * (edge.seconds - base);
            agreeing += Near(edge, tempo * edge.seconds + shift, tolerance) != nullptr ? 1U : 0U;
        }
        return agreeing;
    }

    struct Shift {
        double tempo = 1;
        double shift = 0;
        double score = 0;
        std::size_t agreeing = 0;
    };

    /// The shift under which most of the edges from `first` on are in their place; among equals the smallest
    /// change from `usual`.
    [[nodiscard]] Shift BestShift(std::size_t first, std::size_t anchors, std::size_t count, double tempo,
                                  double usual) const
    {
        Shift best;
        best.tempo = tempo;
        best.score = -1;
        for (std::size_t i = first; i < std::min(first + anchors, mMovieEdges.size()); ++i) {
            const ToneEdge& edge = mMovieEdges[i];
            for (const ToneEdge& other : mClipEdges) {
                const double shift = other.seconds - tempo * edge.seconds;
                if (other.tone != edge.tone || other.isOn != edge.isOn ||
                    std::abs(shift - usual) > kMostShift) {
                    continue;
                }
                const std::size_t agreeing = Agreeing(first, count, tempo, shift, 2e-4);
                const double score = static_cast<double>(agreeing) - 0.02 * std::abs(shift - usual);
                if (score > best.score) {
                    best = {tempo, shift, score, agreeing};
                }
            }
        }
        return best;
    }

    void FindFirstShift()
    {
        mMap.tempo = mMap.pitch;
        mShift = 0;
        if (mMovieEdges.empty() || mClipEdges.empty()) {
            return;
        }
        std::vector<double> tempos{mMap.pitch};
        if (std::abs(mMap.pitch - 1) > 1e-3) {
            tempos.push_back(1);
        }
        AddTemposOfDurations(tempos);
        Shift best;
        best.score = -1;
        const std::size_t count = std::min<std::size_t>(mMovieEdges.size(), 40);
        for (const double tempo : tempos) {
            const Shift found = BestShift(0, 10, count, tempo, 0);
            if (found.score > best.score + (best.score < 0 ? 0 : 1.5)) {
                best = found;
            }
        }
        // One edge that agrees says little where there are many.
        if (best.agreeing * 4 < count && best.agreeing < 3 && count > 4) {
            return;
        }
        mMap.tempo = best.tempo;
        mShift = best.shift;
        mHasShift = best.agreeing > 0;
    }

    /// Tones that last longer or shorter than the clip's tell a speed of their own.
    void AddTemposOfDurations(std::vector<double>& tempos) const
    {
        const auto durations = [](const std::vector<ToneEdge>& edges) {
            std::vector<std::pair<std::size_t, double>> list;
            for (std::size_t i = 0; i < edges.size() && list.size() < 12; ++i) {
                for (std::size_t k = i + 1; edges[i].isOn && k < edges.size(); ++k) {
                    if (edges[k].tone == edges[i].tone) {
                        if (!edges[k].isOn) {
                            list.emplace_back(edges[i].tone, edges[k].seconds - edges[i].seconds);
                        }
                        break;
                    }
                }
            }
            return list;
        };
        std::vector<double> ratios;
        const auto ofClip = durations(mClipEdges);
        for (const auto& [tone, seconds] : durations(mMovieEdges)) {
            for (const auto& [clipTone, clipSeconds] : ofClip) {
                const double ratio = clipSeconds / seconds;
                if (tone == clipTone && ratio > 0.5 && ratio < 2) {
                    ratios.push_back(ratio);
                    break;
                }
            }
        }
        const double ratio = Median(ratios);
        if (ratios.size() >= 2 && std::abs(ratio / mMap.pitch - 1) > 2e-3 && std::abs(ratio - 1) > 2e-3) {
            tempos.push_back(ratio);
        }
    }

    /// From edge to edge; where edges stop agreeing, another shift under which those that follow do.
    void Walk()
    {
        mMap.pieces.push_back({mMovie.start, mShift, 0});
        mMatches.emplace_back();
        mMatched.assign(mMovieEdges.size(), false);
        if (!mHasShift) {
            return;
        }
        double shift = mShift;
        for (std::size_t i = 0; i < mMovieEdges.size(); ++i) {
            const ToneEdge& edge = mMovieEdges[i];
            const ToneEdge* other = Near(edge, mMap.tempo * edge.seconds + shift, kEdgeTolerance);
            if (other == nullptr && mMap.tempo * edge.seconds + shift > mClipEnd - kEdgeTolerance) {
                continue; // behind the clip's end, it has nothing to be compared with
            }
            if (other == nullptr) {
                constexpr std::size_t kAhead = 8;
                const std::size_t left = std::min(kAhead, mMovieEdges.size() - i);
                const std::size_t now = Agreeing(i, left, mMap.tempo, shift, 0);
                const Shift found = BestShift(i, 1, left, mMap.tempo, shift);
                if (found.agreeing < std::min<std::size_t>(left, 3) || found.agreeing <= now + 1 || left < 2) {
                    continue;
                }
                shift = found.shift;
                if (mMatches.back().empty()) {
                    mMap.pieces.back().shift = shift; // no edge agrees with the first shift until later
                } else {
                    mMap.pieces.push_back({edge.seconds, shift, 0});
                    mMatches.emplace_back();
                }
                other = Near(edge, mMap.tempo * edge.seconds + shift, kEdgeTolerance);
            }
            if (other != nullptr) {
                mMatched[i] = true;
                mMatches.back().push_back({edge.seconds, other->seconds});
                shift += 0.3 * (other->seconds - mMap.tempo * edge.seconds - shift);
            }
        }
        ExplainBeginning();
        MeasureTempo();
        SplitByEdges();
    }

    /// Most edges told the first shift. Those before the first that agrees may have one of their own.
    void ExplainBeginning()
    {
        const auto first =
            static_cast<std::size_t>(std::find(mMatched.begin(), mMatched.end(), true) - mMatched.begin());
        if (first < 2 || first == mMatched.size()) {
            return;
        }
        const Shift found = BestShift(0, 2, first, mMap.tempo, 0);
        if (found.agreeing < first) {
            return;
        }
        // Something missing that the same amount of something added puts right again: a segment that is out of
        // order is simpler.
        if (std::abs(mShift) < kEdgeTolerance && std::abs(found.shift) > kEdgeTolerance) {
            return;
        }
        std::vector<EdgeMatch> matches;
        for (std::size_t i = 0; i < first; ++i) {
            const double wanted = mMap.tempo * mMovieEdges[i].seconds + found.shift;
            mMatched[i] = true;
            matches.push_back({mMovieEdges[i].seconds, Near(mMovieEdges[i], wanted, kEdgeTolerance)->seconds});
        }
        mMap.pieces.front().begin = mMovieEdges[first].seconds;
        mMap.pieces.insert(mMap.pieces.begin(), {mMovie.start, found.shift, 0});
        mMatches.insert(mMatches.begin(), matches);
    }

    /// Speed by the edges of the piece that has most.
    void MeasureTempo()
    {
        const auto longest = std::max_element(mMatches.begin(), mMatches.end(),
                                              [](const auto& a, const auto& b) { return a.size() < b.size(); });
        const auto count = static_cast<double>(longest->size());
        if (longest->size() < 4) {
            return;
        }
        double meanMovie = 0;
        double meanClip = 0;
        for (const EdgeMatch& match : *longest) {
            meanMovie += match.movie / count;
            meanClip += match.clip / count;
        }
        double xx = 0;
        double xy = 0;
        for (const EdgeMatch& match : *longest) {
            xx += (match.movie - meanMovie) * (match.movie - meanMovie);
            xy += (match.movie - meanMovie) * (match.clip - meanClip);
        }
        const double slope = xy / xx;
        std::vector<double> rest;
        for (const EdgeMatch& match : *longest) {
            rest.push_back(match.clip - meanClip - slope * (match.movie - meanMovie));
        }
        const double scatter = std::max(Scatter(rest), 0.5 / mMovie.rate);
        mMap.tempoSigma = scatter / std::sqrt(xx);
        // Sound that runs at the speed of its pitch is told better by phases.
        if (std::abs(slope - mMap.pitch) < 4 * mMap.tempoSigma + 3e-6) {
            mMap.tempo = mMap.pitch;
            mMap.tempoSigma = std::min(mMap.tempoSigma, mMap.pitchSigma);
        } else if (std::abs(slope / mMap.pitch - 1) <= kLeastStretch || StaysInSteps(*longest, slope)) {
            mMap.tempo = mMap.pitch;
            mMap.tempoSigma = mMap.pitchSigma;
        } else if (std::abs(slope - mMap.tempo) > 4 * mMap.tempoSigma) {
            mMap.tempo = slope;
        }
    }

    [[nodiscard]] double OffBy(const EdgeMatch& match) const { return match.clip - mMap.tempo * match.movie; }

    /// Small steps that stay: edges before and behind disagree by more than they scatter.
    void SplitByEdges()
    {
        std::vector<double> steps;
        for (const std::vector<EdgeMatch>& matches : mMatches) {
            for (std::size_t i = 1; i < matches.size(); ++i) {
                steps.push_back(OffBy(matches[i]) - OffBy(matches[i - 1]));
            }
        }
        mEdgeSigma = std::max(Scatter(steps) / std::numbers::sqrt2, 0.4 / mMovie.rate);
        const double threshold = std::max({mLeast, 6 * mEdgeSigma, 2.5 / mMovie.rate});
        std::vector<TimePiece> pieces;
        std::vector<std::vector<EdgeMatch>> split;
        for (std::size_t p = 0; p < mMatches.size(); ++p) {
            const std::vector<EdgeMatch>& matches = mMatches[p];
            pieces.push_back(mMap.pieces[p]);
            split.emplace_back();
            for (std::size_t i = 0; i < matches.size(); ++i) {
                if (split.back().size() >= 2 && i + 1 < matches.size()) {
                    std::vector<double> before;
                    for (std::size_t k = split.back().size() - 2; k < split.back().size(); ++k) {
                        before.push_back(OffBy(split.back()[k]));
                    }
                    const double level = (before[0] + before[1]) / 2;
                    const bool isStep = std::abs(OffBy(matches[i]) - level) > threshold &&
                                        std::abs(OffBy(matches[i + 1]) - level) > threshold &&
                                        std::abs(OffBy(matches[i + 1]) - OffBy(matches[i])) < threshold;
                    if (isStep) {
                        pieces.push_back({matches[i].movie, 0, 0});
                        split.emplace_back();
                    }
                }
                split.back().push_back(matches[i]);
            }
        }
        for (std::size_t p = 0; p < pieces.size(); ++p) {
            std::vector<double> shifts;
            for (const EdgeMatch& match : split[p]) {
                shifts.push_back(OffBy(match));
            }
            pieces[p].edges = shifts.size();
            if (!shifts.empty()) {
                pieces[p].shift = Median(shifts);
            }
            // The change lies before the first edge that shows it.
            if (p > 0) {
                const double from = split[p - 1].empty() ? mMovie.start : split[p - 1].back().movie;
                if (const auto place = SpliceBetween(from, pieces[p].begin)) {
                    pieces[p].begin = place->second;
                } else {
                    pieces[p].begin = FirstRunOf(from, pieces[p], pieces[p - 1]);
                }
            }
        }
        mMap.pieces = std::move(pieces);
        mMatches = std::move(split);
        mMap.hasEdges =
            std::any_of(mMatches.begin(), mMatches.end(), [](const auto& matches) { return !matches.empty(); });
    }

    /// Where a tone begins that by its phase belongs to the piece, though its beginning does not tell; else
    /// where the piece begins.
    [[nodiscard]] double FirstRunOf(double from, const TimePiece& piece, const TimePiece& before) const
    {
        double begin = piece.begin;
        for (const ChannelTrack& channel : mMovie.channels) {
            for (const ToneRun& run : channel.runs) {
                const double at = mMovie.SecondsOf(run.begin);
                if (run.tones.size() != 1 || at < from - kEdgeTolerance || at >= begin) {
                    continue;
                }
                const std::optional<double> now = AngleOf(run, run.tones.front(), piece.shift);
                const std::optional<double> then = AngleOf(run, run.tones.front(), before.shift);
                if (now && (!then || std::abs(std::sin(*now)) + 0.05 < std::abs(std::sin(*then)))) {
                    begin = at;
                }
            }
        }
        return begin;
    }

    double mClipEnd;   ///< seconds
    double mShift = 0; ///< under which most of the first edges are in their place, seconds
};

} // namespace

void MapByEdges(TimeMapDraft& draft)
{
    EdgeMapping(draft).Run();
}

} // namespace tessel::verify::judge
