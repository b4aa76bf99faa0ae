#include "TimeMapStage.h"

#include <algorithm>
#include <cmath>

namespace tessel::verify::judge {
namespace {

/// Time stretching lays pieces of sound over each other where they fit best: an edge may be that far from where
/// the speed puts it. FFmpeg's atempo moves its pieces by up to 21 ms, SoX's tempo by up to 15 ms.
constexpr double kSplice = 0.03;
constexpr std::size_t kLeastEdges = 4;
/// So few edges lie about some line by chance: they have to lie on it.
constexpr std::size_t kManyEdges = 6;
/// Edges that tell a first speed and shift.
constexpr std::size_t kFirst = 40;

/// Sound whose tones keep their frequencies and come sooner or later: its edges lie about a line that is
/// steeper or flatter than their pitch says.
class StretchMapping : public TimeMapStage {
public:
    explicit StretchMapping(TimeMapDraft& draft) noexcept : TimeMapStage(draft), mClipEnd(draft.clipEnd) {}

    void Run()
    {
        if (mMovieEdges.size() < kLeastEdges || mClipEdges.empty() || Unexplained() == 0) {
            return;
        }
        Line line = FirstLine();
        // Longer and longer beginnings tell the speed better and better.
        for (std::size_t count = kFirst; line.agreeing > 0; count *= 2) {
            const std::size_t taken = std::min(count, mMovieEdges.size());
            line = Fitted(MatchesOf(line, taken));
            if (taken == mMovieEdges.size()) {
                break;
            }
        }
        const std::vector<EdgeMatch> matches = MatchesOf(line, mMovieEdges.size());
        const std::size_t audible = CountBefore(line);
        const bool isSure = matches.size() >= kManyEdges ||
                            (matches.size() >= kLeastEdges && line.scatter < kEdgeTolerance / 2);
        const bool explainsAll = isSure && 10 * matches.size() >= 9 * audible;
        if (explainsAll && std::abs(line.tempo / mMap.pitch - 1) > kLeastStretch &&
            audible - matches.size() < Unexplained() && !StaysInSteps(matches, line.tempo)) {
            Take(line, matches);
        }
    }

private:
    struct Line {
        double tempo = 1;
        double shift = 0;
        double tempoSigma = 0;
        double scatter = 0; ///< seconds
        std::size_t agreeing = 0;
    };

    /// Edges that the map does not explain, and steps that it needs, which cost as much as two edges.
    [[nodiscard]] std::size_t Unexplained() const
    {
        std::size_t count = 2 * (mMap.pieces.size() - 1);
        for (std::size_t i = 0; i < mMovieEdges.size(); ++i) {
            count += mMatched[i] || mMap.ClipSeconds(mMovieEdges[i].seconds) > mClipEnd - kSplice ? 0U : 1U;
        }
        return count;
    }

    [[nodiscard]] std::size_t CountBefore(const Line& line) const
    {
        return static_cast<std::size_t>(
            std::count_if(mMovieEdges.begin(), mMovieEdges.end(), [&](const ToneEdge& edge) {
                return line.tempo * edge.seconds + line.shift < mClipEnd - kSplice;
            }));
    }

    /// The edges of a beginning that lie about a line, each with one of the clip's, in their order.
    [[nodiscard]] std::vector<EdgeMatch> MatchesOf(const Line& line, std::size_t count) const
    {
        std::vector<EdgeMatch> matches;
        for (std::size_t i = 0; i < count; ++i) {
            const ToneEdge& edge = mMovieEdges[i];
            const ToneEdge* other = Near(edge, line.tempo * edge.seconds + line.shift, kSplice);
            if (other != nullptr && (matches.empty() || other->seconds > matches.back().clip - kSplice)) {
                matches.push_back({edge.seconds, other->seconds});
            }
        }
        return matches;
    }

    /// By all pairs of one of the first edges and one of the last of a beginning.
    [[nodiscard]] Line FirstLine() const
    {
        const std::size_t count = std::min(kFirst, mMovieEdges.size());
        const std::size_t ends = std::min<std::size_t>(5, count);
        Line best;
        double bestScore = 0;
        for (std::size_t i = 0; i < ends; ++i) {
            for (std::size_t k = count - ends; k < count; ++k) {
                ForEachLine(mMovieEdges[i], mMovieEdges[k], [&](const Line& line) {
                    const std::size_t agreeing = MatchesOf(line, count).size();
                    const double score = static_cast<double>(agreeing) - 0.02 * std::abs(line.shift) -
                                         0.1 * std::abs(std::log(line.tempo));
                    if (score > bestScore) {
                        bestScore = score;
                        best = line;
                        best.agreeing = agreeing;
                    }
                });
            }
        }
        return best;
    }

    template <class Use>
    void ForEachLine(const ToneEdge& first, const ToneEdge& last, Use use) const
    {
        constexpr double kFastest = 2;
        if (last.seconds - first.seconds < 1) {
            return;
        }
        for (const ToneEdge& a : mClipEdges) {
            if (a.tone != first.tone || a.isOn != first.isOn || std::abs(a.seconds - first.seconds) > 1) {
                continue;
            }
            for (const ToneEdge& b : mClipEdges) {
                const double tempo = (b.seconds - a.seconds) / (last.seconds - first.seconds);
                if (b.tone == last.tone && b.isOn == last.isOn && tempo > 1 / kFastest && tempo < kFastest) {
                    use(Line{tempo, a.seconds - tempo * first.seconds, 0, 0, 0});
                }
            }
        }
    }

    [[nodiscard]] Line Fitted(const std::vector<EdgeMatch>& matches) const
    {
        Line line;
        line.agreeing = matches.size();
        if (matches.size() < kLeastEdges) {
            line.agreeing = 0;
            return line;
        }
        const auto count = static_cast<double>(matches.size());
        double movie = 0;
        double clip = 0;
        for (const EdgeMatch& match : matches) {
            movie += match.movie / count;
            clip += match.clip / count;
        }
        double xx = 0;
        double xy = 0;
        for (const EdgeMatch& match : matches) {
            xx += (match.movie - movie) * (match.movie - movie);
            xy += (match.movie - movie) * (match.clip - clip);
        }
        line.tempo = xy / xx;
        line.shift = clip - line.tempo * movie;
        double squares = 0;
        for (const EdgeMatch& match : matches) {
            const double off = match.clip - line.tempo * match.movie - line.shift;
            squares += off * off;
        }
        line.scatter = std::max(std::sqrt(squares / count), 0.5 / mMovie.rate);
        line.tempoSigma = line.scatter / std::sqrt(xx);
        return line;
    }

    void Take(const Line& line, const std::vector<EdgeMatch>& matches)
    {
        mMap.tempo = line.tempo;
        mMap.tempoSigma = line.tempoSigma;
        mMap.pieces = {{mMovie.start, line.shift, matches.size()}};
        mMap.hasEdges = true;
        mMatches = {matches};
        mMatched.assign(mMovieEdges.size(), true);
        mHasShift = true;
        mEdgeSigma = line.scatter;
    }

    double mClipEnd; ///< seconds
};

} // namespace

void MapStretch(TimeMapDraft& draft)
{
    StretchMapping(draft).Run();
}

} // namespace tessel::verify::judge
