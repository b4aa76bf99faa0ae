#include "TimeMapStage.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tessel::verify::judge {
namespace {

/// The phase of a tone in a run of the movie against the clip's.
struct PhasePoint {
    std::size_t channel = 0;
    std::size_t run = 0;
    double seconds = 0; ///< of the movie
    double begin = 0, end = 0;
    double frequency = 0; ///< the clip's, Hz
    double angle = 0;     ///< radians by which the movie is ahead of what the map says
    double weight = 0;
};

class PhaseMapping : public TimeMapStage {
public:
    explicit PhaseMapping(TimeMapDraft& draft) noexcept : TimeMapStage(draft) {}

    void Run()
    {
        mMap.signs.assign(mMovie.channels.size(), 0);
        if (mMap.IsStretched()) {
            mMap.sigma = std::max(mEdgeSigma, 1.5 / mMovie.rate);
            mMap.isAmbiguous = true;
            AddStepsOfPieces();
            return;
        }
        // The piece with most edges tells the channels' signs.
        std::size_t main = 0;
        for (std::size_t p = 0; p < mMap.pieces.size(); ++p) {
            main = mMap.pieces[p].edges > mMap.pieces[main].edges ? p : main;
        }
        const double edgeSigma = mMap.hasEdges ? std::max(mEdgeSigma, 1.5 / mMovie.rate) : 1e-4;
        const std::vector<PhasePoint> mainPoints = PointsOf(main);
        const double change = BestChange(mainPoints, edgeSigma, false);
        std::vector<double> sums(mMovie.channels.size(), 0.0);
        for (const PhasePoint& point : mainPoints) {
            sums[point.channel] += point.weight * std::cos(point.angle - kTwoPi * point.frequency * change);
        }
        for (std::size_t channel = 0; channel < sums.size(); ++channel) {
            mMap.signs[channel] = sums[channel] > 0 ? 1 : sums[channel] < 0 ? -1 : 0;
        }
        SettleAmbiguity(mainPoints, edgeSigma);
        mMap.period = mainPoints.empty() ? 0 : 1 / mainPoints.front().frequency;

        std::vector<TimePiece> pieces;
        std::vector<double> offs;
        for (std::size_t p = 0; p < mMap.pieces.size(); ++p) {
            const std::vector<PhasePoint> points = PointsOf(p);
            TimePiece piece = mMap.pieces[p];
            const double found = Polished(points, BestChange(points, edgeSigma, true));
            if (!points.empty()) {
                if (p > 0) {
                    AddStep(piece.begin, mMap.pieces[p].shift + found - pieces.back().shift, p);
                }
                piece.shift += found;
                SplitByPhases(points, found, piece, pieces, offs);
            } else {
                if (p > 0) {
                    AddStep(piece.begin, piece.shift - pieces.back().shift, p);
                }
                pieces.push_back(piece);
            }
        }
        mMap.pieces = std::move(pieces);
        mMap.sigma =
            offs.empty() ? edgeSigma : Scatter(offs) / std::sqrt(static_cast<double>(offs.size())) + 1e-8;
        if (!mMap.hasEdges && offs.empty()) {
            mMap.sigma = 1;
        }
    }

private:
    /// Phases of the runs that lie in a piece, against the clip's.
    [[nodiscard]] std::vector<PhasePoint> PointsOf(std::size_t piece) const
    {
        const double from = piece == 0 ? -std::numeric_limits<double>::max() : mMap.pieces[piece].begin - 0.001;
        const double to = piece + 1 < mMap.pieces.size() ? mMap.pieces[piece + 1].begin - 0.001
                                                         : std::numeric_limits<double>::max();
        std::vector<PhasePoint> points;
        for (std::size_t channel = 0; channel < mMovie.channels.size(); ++channel) {
            const std::vector<ToneRun>& runs = mMovie.channels[channel].runs;
            for (std::size_t r = 0; r < runs.size(); ++r) {
                const ToneRun& run = runs[r];
                const double begin = mMovie.SecondsOf(run.begin);
                const double end = mMovie.SecondsOf(run.end);
                const double middle = mMovie.SecondsOf(run.middle);
                if (end - begin < kShortRun || middle < from || middle >= to) {
                    continue;
                }
                for (const Tone& tone : run.tones) {
                    if (const auto angle = AngleOf(run, tone, mMap.pieces[piece].shift)) {
                        points.push_back({channel, r, middle, begin, end, mClip.frequencies[tone.index], *angle,
                                          std::min(end - begin, 10.0)});
                    }
                }
            }
        }
        std::sort(points.begin(), points.end(),
                  [](const PhasePoint& a, const PhasePoint& b) { return a.seconds < b.seconds; });
        return points;
    }

    /// How well phases agree if the map is moved by `change` seconds, 0..1, with the channels' signs left free
    /// or as they are.
    [[nodiscard]] double Agreement(const std::vector<PhasePoint>& points, double change, bool hasSigns) const
    {
        std::vector<double> sums(mMovie.channels.size(), 0.0);
        double weights = 0;
        for (const PhasePoint& point : points) {
            sums[point.channel] += point.weight * std::cos(point.angle - kTwoPi * point.frequency * change);
            weights += point.weight;
        }
        double total = 0;
        for (std::size_t channel = 0; channel < sums.size(); ++channel) {
            total += hasSigns && mMap.signs[channel] != 0 ? sums[channel] * mMap.signs[channel]
                                                          : std::abs(sums[channel]);
        }
        return weights > 0 ? total / weights : 0;
    }

    [[nodiscard]] double BestChange(const std::vector<PhasePoint>& points, double sigma, bool hasSigns) const
    {
        constexpr double kReach = 0.0008;
        const double highest =
            points.empty() ? 1000
                           : std::max_element(points.begin(), points.end(), [](const auto& a, const auto& b) {
                                 return a.frequency < b.frequency;
                             })->frequency;
        const double step = std::min(1 / highest / 40, 2e-5);
        const auto value = [&](double change) {
            const double off = change / sigma;
            return Agreement(points, change, hasSigns) - 0.02 * off * off;
        };
        double best = 0;
        double bestValue = value(0);
        for (double change = -kReach; change <= kReach; change += step) {
            if (value(change) > bestValue) {
                bestValue = value(change);
                best = change;
            }
        }
        return best;
    }

    /// The rest of the way to the top: the mean of what the phases are off, as times.
    [[nodiscard]] double Polished(const std::vector<PhasePoint>& points, double change) const
    {
        double sum = 0;
        double weights = 0;
        for (const PhasePoint& point : points) {
            const double off = OffOf(point, change);
            if (std::abs(off) * point.frequency < 0.2) {
                const double weight = point.weight * point.frequency * point.frequency;
                sum += weight * off;
                weights += weight;
            }
        }
        return weights > 0 ? change + sum / weights : change;
    }

    /// Seconds by which a point is off the moved map, the nearest of its periods.
    [[nodiscard]] double OffOf(const PhasePoint& point, double change) const
    {
        const double turned = mMap.signs[point.channel] < 0 ? std::numbers::pi : 0;
        return std::remainder(point.angle - turned - kTwoPi * point.frequency * change, kTwoPi) /
               (kTwoPi * point.frequency);
    }

    /// One frequency alone: half a period later, everything upside down looks the same unless edges tell.
    void SettleAmbiguity(const std::vector<PhasePoint>& points, double sigma)
    {
        if (points.empty()) {
            return;
        }
        const double frequency = points.front().frequency;
        const bool isSingle = std::all_of(points.begin(), points.end(), [&](const PhasePoint& point) {
            return std::abs(point.frequency - frequency) < 1e-3 * frequency;
        });
        if (!isSingle) {
            return;
        }
        mMap.isAmbiguous = 0.5 / frequency < 4 * sigma || !mMap.hasEdges;
        const auto turned = std::count(mMap.signs.begin(), mMap.signs.end(), -1);
        const auto upright = std::count(mMap.signs.begin(), mMap.signs.end(), 1);
        if (mMap.isAmbiguous && turned > upright) {
            for (int& sign : mMap.signs) {
                sign = -sign;
            }
        }
    }

    /// Steps that are too small for edges, or inside a tone.
    void SplitByPhases(const std::vector<PhasePoint>& points, double change, TimePiece piece,
                       std::vector<TimePiece>& pieces, std::vector<double>& offs)
    {
        std::vector<double> off;
        std::vector<double> steps;
        for (const PhasePoint& point : points) {
            off.push_back(OffOf(point, change) -
                          (mMap.pitch - mMap.tempo) * (point.seconds - points.front().seconds));
            if (off.size() > 1) {
                steps.push_back(off.back() - off[off.size() - 2]);
            }
        }
        const double sigma = Scatter(steps) / std::numbers::sqrt2;
        const double threshold = std::max({mLeast, 6 * sigma, 0.02 / mMovie.rate});
        if (pieces.empty() && SplitBeginning(points, off, threshold, piece, pieces, offs)) {
            return;
        }
        double level = off.front();
        std::size_t since = 0;
        const std::size_t firstStep = mMap.steps.size();
        const bool isBeginning = pieces.empty();
        piece.shift += level;
        pieces.push_back(piece);
        for (std::size_t i = 1; i < points.size(); ++i) {
            const double step = std::remainder(off[i] - level, 1 / points[i].frequency);
            const bool isLast = i + 1 == points.size();
            const double next = isLast ? step : std::remainder(off[i + 1] - level, 1 / points[i + 1].frequency);
            const bool stays = isLast ? points[i].end - points[i].begin > 2 * kShortRun
                                      : std::abs(next - step) < std::max(threshold, 0.3 * std::abs(step));
            if (std::abs(step) > threshold && stays && points[i].begin > points[since].begin) {
                TimeStep jump;
                jump.skipped = step;
                jump.uncertainty = 3 * sigma + 0.02 / mMovie.rate;
                jump.first = points[i - 1].end;
                jump.last = points[i].begin;
                if (jump.first > jump.last) {
                    std::swap(jump.first, jump.last);
                }
                jump.period = mMap.hasEdges && piece.edges > 0 ? 0 : 1 / points[i].frequency;
                mMap.steps.push_back(jump);
                level = off[i];
                since = i;
                pieces.push_back({points[i].begin, pieces.back().shift + step, 0});
            } else if (std::abs(step) <= threshold) {
                offs.push_back(step);
                level += step / static_cast<double>(i - since + 1);
            }
        }
        if (isBeginning && mMap.steps.size() == firstStep + 1) {
            SettleBeginning(mMap.steps.back(), pieces, 1 / points.front().frequency);
        }
    }

    /// Before the first edge, phases alone tell the shift, each modulo its own period, and a tone that loses
    /// whole periods goes on as if nothing had happened. Where the phases that do not fit the piece fit a
    /// beginning in its place, that is what it is.
    bool SplitBeginning(const std::vector<PhasePoint>& points, const std::vector<double>& off, double threshold,
                        const TimePiece& piece, std::vector<TimePiece>& pieces, std::vector<double>& offs)
    {
        const auto fits = [&](std::size_t i, double shift) {
            return std::abs(std::remainder(off[i] - shift, 1 / points[i].frequency)) <= threshold;
        };
        const double inPlace = -piece.shift;
        std::size_t split = points.size(); // behind the last point that does not fit the piece
        while (split > 0 && fits(split - 1, 0)) {
            --split;
        }
        if (split == 0 || split == points.size() || !mMap.hasEdges || std::abs(inPlace) <= mLeast) {
            return false;
        }
        for (std::size_t i = 0; i < split; ++i) {
            if (!fits(i, inPlace)) {
                return false;
            }
        }
        TimeStep step;
        step.skipped = piece.shift;
        step.uncertainty = std::max(mEdgeSigma, 0.5 / mMovie.rate);
        step.first = step.last = points[split - 1].end;
        mMap.steps.push_back(step);
        pieces.push_back({piece.begin, 0, 0});
        pieces.push_back({step.last, piece.shift, piece.edges});
        for (std::size_t i = split; i < points.size(); ++i) {
            offs.push_back(std::remainder(off[i], 1 / points[i].frequency));
        }
        return true;
    }

    /// No edge lies before the first jump: whole periods more or less would do as well. A beginning that is in
    /// its place is the simplest of these.
    void SettleBeginning(TimeStep& step, std::vector<TimePiece>& pieces, double period) const
    {
        const bool hasEdge = std::any_of(mMovieEdges.begin(), mMovieEdges.end(),
                                         [&](const ToneEdge& edge) { return edge.seconds < step.first; });
        TimePiece& first = pieces.front();
        const double inPlace = std::remainder(first.shift, period);
        if (hasEdge || std::abs(inPlace) > mLeast || !mMap.hasEdges) {
            return;
        }
        step.skipped += first.shift - inPlace;
        first.shift = inPlace;
    }

    void AddStepsOfPieces()
    {
        for (std::size_t p = 1; p < mMap.pieces.size(); ++p) {
            AddStep(mMap.pieces[p].begin, mMap.pieces[p].shift - mMap.pieces[p - 1].shift, p);
        }
    }

    /// Between the last edge that agrees with what was and the first one that does not.
    void AddStep(double begin, double skipped, std::size_t piece)
    {
        TimeStep step;
        step.skipped = skipped;
        step.last = mMatches[piece].empty() ? begin : mMatches[piece].front().movie;
        step.first = mMatches[piece - 1].empty() ? mMovie.start : mMatches[piece - 1].back().movie;
        step.uncertainty = std::max(mEdgeSigma, 0.5 / mMovie.rate);
        if (const std::optional<std::pair<double, double>> place = SpliceBetween(step.first, step.last)) {
            step.first = place->first;
            step.last = place->second;
        }
        mMap.steps.push_back(step);
    }
};

} // namespace

void RefineByPhases(TimeMapDraft& draft)
{
    PhaseMapping(draft).Run();
}

} // namespace tessel::verify::judge
