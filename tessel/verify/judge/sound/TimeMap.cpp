#include "TimeMap.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>
#include <utility>

namespace tessel::verify::judge {
namespace {

constexpr double kTwoPi = 2 * std::numbers::pi;
/// How far an edge may be from where it is expected, seconds: codecs smear it.
constexpr double kEdgeTolerance = 0.004;
/// How far a movie may be off: a bit more than the longest identification's cycle.
constexpr double kMostShift = 15;
/// Runs shorter than that tell their phase badly.
constexpr double kShortRun = 0.08;

double Median(std::vector<double> values)
{
    if (values.empty()) {
        return 0;
    }
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// What is usual of the distances from the median, as a standard deviation.
double Scatter(const std::vector<double>& values)
{
    const double median = Median(values);
    std::vector<double> off;
    off.reserve(values.size());
    for (const double value : values) {
        off.push_back(std::abs(value - median));
    }
    return 1.4826 * Median(off);
}

/// An edge of the movie and the clip's.
struct Match {
    double movie = 0;
    double clip = 0;
};

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

class Mapping {
public:
    Mapping(const SoundTrack& clip, const SoundTrack& movie, double pitch, double least)
        : mClip(clip), mMovie(movie), mLeast(least), mClipEdges(EdgesOf(clip, StreamStart::IsAnEdge)),
          mMovieEdges(EdgesOf(movie, StreamStart::IsNoEdge))
    {
        mMap.pitch = pitch;
        for (const ChannelTrack& channel : clip.channels) {
            if (!channel.runs.empty()) {
                mClipEnd = std::max(mClipEnd, clip.SecondsOf(channel.runs.back().end));
            }
        }
    }

    TimeMap Run()
    {
        MeasurePitch();
        FindFirstShift();
        Walk();
        RefineByPhases();
        FindStrays();
        return mMap;
    }

private:
    /// Frequencies by the slopes of phases.
    void MeasurePitch()
    {
        const double nominal = mMap.pitch;
        double sum = 0;
        double weights = 0;
        for (const ChannelTrack& channel : mMovie.channels) {
            for (const ToneRun& run : channel.runs) {
                if (run.tones.size() != 1 || run.slopeSigma <= 0 ||
                    run.end - run.begin < kShortRun * mMovie.rate) {
                    continue;
                }
                const Tone& tone = run.tones.front();
                const double cycle = kTwoPi * mMovie.frequencies[tone.index] / mMovie.rate;
                const double sigma = run.slopeSigma / cycle + 1e-10;
                sum += (tone.slope / cycle - ClipSlope(tone.index)) / (sigma * sigma);
                weights += 1 / (sigma * sigma);
            }
        }
        if (weights > 0) {
            mMap.pitch = nominal * (1 + sum / weights);
            mMap.pitchSigma = 1 / std::sqrt(weights) + 2e-9;
        } else {
            mMap.pitchSigma = 1e-4;
        }
    }

    /// How far off the list's frequency is from the clip's own.
    double ClipSlope(std::size_t tone) const
    {
        for (const ChannelTrack& channel : mClip.channels) {
            for (const ToneRun& run : channel.runs) {
                const Tone* found = run.ToneOf(tone);
                if (found != nullptr && run.slopeSigma > 0) {
                    return found->slope / (kTwoPi * mClip.frequencies[tone] / mClip.rate);
                }
            }
        }
        return 0;
    }

    /// The clip's edge of the same kind that is nearest to a clip time; null where none is near.
    const ToneEdge* Near(const ToneEdge& edge, double clipSeconds, double tolerance) const
    {
        auto at = std::lower_bound(mClipEdges.begin(), mClipEdges.end(), clipSeconds - tolerance,
                                   [](const ToneEdge& e, double seconds) { return e.seconds < seconds; });
        const ToneEdge* best = nullptr;
        for (; at != mClipEdges.end() && at->seconds <= clipSeconds + tolerance; ++at) {
            if (at->tone == edge.tone && at->isOn == edge.isOn &&
                (best == nullptr ||
                 std::abs(at->seconds - clipSeconds) < std::abs(best->seconds - clipSeconds))) {
                best = &*at;
            }
        }
        return best;
    }

    /// Of `count` edges from `first` on, how many are where speed and shift put them.
    std::size_t Agreeing(std::size_t first, std::size_t count, double tempo, double shift, double slack) const
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
    Shift BestShift(std::size_t first, std::size_t anchors, std::size_t count, double tempo, double usual) const
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
        std::vector<Match> matches;
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
        for (const Match& match : *longest) {
            meanMovie += match.movie / count;
            meanClip += match.clip / count;
        }
        double xx = 0;
        double xy = 0;
        for (const Match& match : *longest) {
            xx += (match.movie - meanMovie) * (match.movie - meanMovie);
            xy += (match.movie - meanMovie) * (match.clip - meanClip);
        }
        const double slope = xy / xx;
        std::vector<double> rest;
        for (const Match& match : *longest) {
            rest.push_back(match.clip - meanClip - slope * (match.movie - meanMovie));
        }
        const double scatter = std::max(Scatter(rest), 0.5 / mMovie.rate);
        mMap.tempoSigma = scatter / std::sqrt(xx);
        // Sound that runs at the speed of its pitch is told better by phases.
        if (std::abs(slope - mMap.pitch) < 4 * mMap.tempoSigma + 3e-6) {
            mMap.tempo = mMap.pitch;
            mMap.tempoSigma = std::min(mMap.tempoSigma, mMap.pitchSigma);
        } else if (std::abs(slope - mMap.tempo) > 4 * mMap.tempoSigma) {
            mMap.tempo = slope;
        }
    }

    double OffBy(const Match& match) const { return match.clip - mMap.tempo * match.movie; }

    /// Small steps that stay: edges before and behind disagree by more than they scatter.
    void SplitByEdges()
    {
        std::vector<double> steps;
        for (const std::vector<Match>& matches : mMatches) {
            for (std::size_t i = 1; i < matches.size(); ++i) {
                steps.push_back(OffBy(matches[i]) - OffBy(matches[i - 1]));
            }
        }
        mEdgeSigma = std::max(Scatter(steps) / std::numbers::sqrt2, 0.4 / mMovie.rate);
        const double threshold = std::max({mLeast, 6 * mEdgeSigma, 2.5 / mMovie.rate});
        std::vector<TimePiece> pieces;
        std::vector<std::vector<Match>> split;
        for (std::size_t p = 0; p < mMatches.size(); ++p) {
            const std::vector<Match>& matches = mMatches[p];
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
            for (const Match& match : split[p]) {
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
    double FirstRunOf(double from, const TimePiece& piece, const TimePiece& before) const
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

    /// By how much a tone is ahead of the clip's under a shift, radians; nothing where the clip has none there.
    std::optional<double> AngleOf(const ToneRun& run, const Tone& tone, double shift) const
    {
        const double middle = mMovie.SecondsOf(run.middle);
        const double clipSeconds = mMap.tempo * middle + shift;
        for (std::size_t source = 0; source < mClip.channels.size(); ++source) {
            const ToneRun* other = mClip.RunAt(source, clipSeconds);
            const Tone* wanted = other != nullptr ? other->ToneOf(tone.index) : nullptr;
            if (wanted != nullptr) {
                return std::remainder(
                    PhaseAt(mMovie, run, tone, middle) - PhaseAt(mClip, *other, *wanted, clipSeconds), kTwoPi);
            }
        }
        return std::nullopt;
    }

    /// Phases of the runs that lie in a piece, against the clip's.
    std::vector<PhasePoint> PointsOf(std::size_t piece) const
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
    double Agreement(const std::vector<PhasePoint>& points, double change, bool hasSigns) const
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

    double BestChange(const std::vector<PhasePoint>& points, double sigma, bool hasSigns) const
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
    double Polished(const std::vector<PhasePoint>& points, double change) const
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
    double OffOf(const PhasePoint& point, double change) const
    {
        const double turned = mMap.signs[point.channel] < 0 ? std::numbers::pi : 0;
        return std::remainder(point.angle - turned - kTwoPi * point.frequency * change, kTwoPi) /
               (kTwoPi * point.frequency);
    }

    void RefineByPhases()
    {
        mMap.signs.assign(mMovie.channels.size(), 0);
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

    /// Where a tone jumps on its way, or is interrupted.
    std::optional<std::pair<double, double>> SpliceBetween(double first, double last) const
    {
        std::optional<std::pair<double, double>> place;
        for (const ChannelTrack& channel : mMovie.channels) {
            for (std::size_t r = 1; r < channel.runs.size(); ++r) {
                const ToneRun& before = channel.runs[r - 1];
                const ToneRun& run = channel.runs[r];
                const double at = mMovie.SecondsOf(run.begin);
                const bool isSameTone = !run.tones.empty() && !before.tones.empty() &&
                                        run.tones.front().index == before.tones.front().index;
                if (isSameTone && at >= first && at <= last) {
                    place = {mMovie.SecondsOf(before.end), at};
                }
            }
            for (const Gap& gap : channel.gaps) {
                const double at = mMovie.SecondsOf(gap.first);
                if (!place && gap.isSilent && at > first && mMovie.SecondsOf(gap.last) < last) {
                    place = {at, mMovie.SecondsOf(gap.last)};
                }
            }
        }
        return place;
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

    /// Tones of the movie that are nowhere near where the map puts them, but elsewhere in the clip; where there
    /// are none, pauses.
    void FindStrays()
    {
        FindStrays(/*arePauses=*/false);
        if (mMap.strays.empty()) {
            FindStrays(/*arePauses=*/true);
        }
    }

    void FindStrays(bool arePauses)
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

    const SoundTrack& mClip;
    const SoundTrack& mMovie;
    double mLeast;
    double mClipEnd = 0; ///< seconds
    std::vector<ToneEdge> mClipEdges;
    std::vector<ToneEdge> mMovieEdges;
    std::vector<bool> mMatched;
    std::vector<std::vector<Match>> mMatches; ///< by piece
    double mShift = 0;
    bool mHasShift = false;
    double mEdgeSigma = 0;
    TimeMap mMap;
};

} // namespace

double TimeMap::ClipSeconds(double movieSeconds) const noexcept
{
    double shift = pieces.empty() ? 0 : pieces.front().shift;
    for (const TimePiece& piece : pieces) {
        if (piece.begin <= movieSeconds) {
            shift = piece.shift;
        }
    }
    return tempo * movieSeconds + shift;
}

TimeMap MapTime(const SoundTrack& clip, const SoundTrack& movie, double pitch, double leastSeconds)
{
    return Mapping(clip, movie, pitch, leastSeconds).Run();
}

} // namespace tessel::verify::judge
