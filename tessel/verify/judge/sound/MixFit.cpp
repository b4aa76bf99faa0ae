#include "MixFit.h"

#include <Eigen/Dense>

#include <algorithm>
#include <cmath>
#include <optional>

namespace tessel::verify::judge {
namespace {

/// Moments at which levels are compared, and how long before and behind nothing may change.
constexpr double kStep = 0.04;
constexpr double kMargin = 0.03;
/// The same in stretched sound, whose tones begin and end some hundredths of a second off their places.
constexpr double kStretchedMargin = 0.06;

/// What sounds at one moment: amplitude and sign of one tone in each channel.
struct Moment {
    double seconds = 0; ///< of the movie
    Eigen::VectorXd clip;
    Eigen::VectorXd movie;
    std::vector<bool> isKnown; ///< by channel of the movie: a run that can be compared
};

/// The run that a channel is in for the whole of a short stretch.
const ToneRun* Steady(const SoundTrack& track, std::size_t channel, double seconds, double margin)
{
    const ToneRun* run = track.RunAt(channel, seconds);
    if (run == nullptr) {
        return nullptr;
    }
    const double sample = track.SampleAt(seconds);
    const double width = margin * track.rate;
    const bool isSteady =
        (sample - width >= run->begin || run->isFirst) && (sample + width <= run->end || run->isLast);
    return isSteady ? run : nullptr;
}

class Fitting {
public:
    Fitting(const SoundTrack& clip, const SoundTrack& movie, const TimeMap& map, std::optional<int> lowChannel)
        : mClip(clip), mMovie(movie), mMap(map), mLowChannel(lowChannel),
          mSources(static_cast<Eigen::Index>(clip.channels.size())),
          mChannels(static_cast<Eigen::Index>(movie.channels.size())),
          mMargin(map.IsStretched() ? kStretchedMargin : kMargin)
    {
    }

    MixFit Run()
    {
        MixFit fit;
        const auto none = Eigen::MatrixXd::Zero(mSources, mSources);
        std::vector<Eigen::MatrixXd> moments(mMovie.channels.size(), none);
        std::vector<Eigen::VectorXd> products(mMovie.channels.size(), Eigen::VectorXd::Zero(mSources));
        std::vector<double> energy(mMovie.channels.size(), 0.0);
        std::vector<std::size_t> counts(mMovie.channels.size(), 0);
        const auto gather = [&](const std::vector<Eigen::VectorXd>* rows) {
            moments.assign(mMovie.channels.size(), none);
            products.assign(mMovie.channels.size(), Eigen::VectorXd::Zero(mSources));
            energy.assign(mMovie.channels.size(), 0.0);
            counts.assign(mMovie.channels.size(), 0);
            ForEachMoment([&](const Moment& moment) {
                for (std::size_t m = 0; m < moment.isKnown.size(); ++m) {
                    const double found = moment.movie(static_cast<Eigen::Index>(m));
                    if (!moment.isKnown[m] || (rows != nullptr && Deviates((*rows)[m], moment, found))) {
                        continue;
                    }
                    moments[m] += moment.clip * moment.clip.transpose();
                    products[m] += found * moment.clip;
                    energy[m] += found * found;
                    ++counts[m];
                }
            });
        };
        gather(nullptr);
        std::vector<Eigen::VectorXd> rows = Solve(moments, products);
        // What is otherwise for a while shall not bend what holds most of the time.
        gather(&rows);
        rows = Solve(moments, products);
        FillRows(fit, rows, moments, products, energy, counts);
        FindDeviations(fit, rows);
        return fit;
    }

private:
    static bool Deviates(const Eigen::VectorXd& row, const Moment& moment, double found)
    {
        const double expected = row.dot(moment.clip);
        const double scale = std::max(std::abs(expected), std::abs(found));
        return scale > 0.25 * moment.clip.cwiseAbs().maxCoeff() && std::abs(found - expected) > 0.5 * scale;
    }

    template <class Use>
    void ForEachMoment(Use use) const
    {
        double end = mMovie.start;
        for (const ChannelTrack& channel : mMovie.channels) {
            if (!channel.runs.empty()) {
                end = std::max(end, mMovie.SecondsOf(channel.runs.back().end));
            }
        }
        Moment moment;
        for (double seconds = mMovie.start + mMargin; seconds < end; seconds += kStep) {
            const double clipSeconds = mMap.ClipSeconds(seconds);
            const bool isStray =
                std::any_of(mMap.strays.begin(), mMap.strays.end(), [&](const StrayTone& stray) {
                    const bool isThere = seconds > stray.begin - kMargin && seconds < stray.end + kMargin;
                    const double length = stray.end - stray.begin;
                    const bool isMissing = clipSeconds > stray.clipBegin - kMargin &&
                                           clipSeconds < stray.clipBegin + length + kMargin;
                    return isThere || isMissing;
                });
            if (isStray) {
                continue;
            }
            const double jump = LargestStepAt(seconds);
            for (std::size_t tone = 0; tone < mClip.frequencies.size(); ++tone) {
                // A tone that a step moves by a small part of its period is upright or upside down as before.
                constexpr double kSmallPart = 0.1;
                if (jump * mClip.frequencies[tone] < kSmallPart &&
                    Compare(seconds, clipSeconds, tone, moment)) {
                    use(moment);
                }
            }
        }
    }

    /// Of the steps that lie at or near that moment, how far the largest goes, in seconds; 0 without one.
    [[nodiscard]] double LargestStepAt(double seconds) const
    {
        double largest = 0;
        for (const TimeStep& step : mMap.steps) {
            if (seconds > step.first - kMargin && seconds < step.last + kMargin) {
                largest = std::max(largest, std::abs(step.skipped));
            }
        }
        return largest;
    }

    /// One tone at one moment; false where the clip has none of it, or something changes.
    bool Compare(double seconds, double clipSeconds, std::size_t tone, Moment& moment) const
    {
        moment.seconds = seconds;
        moment.clip = Eigen::VectorXd::Zero(mSources);
        moment.movie = Eigen::VectorXd::Zero(mChannels);
        moment.isKnown.assign(mMovie.channels.size(), false);
        std::optional<double> phase;
        for (std::size_t source = 0; source < mClip.channels.size(); ++source) {
            const ToneRun* run = Steady(mClip, source, clipSeconds, mMargin);
            if (run == nullptr) {
                return false;
            }
            if (const Tone* found = run->ToneOf(tone)) {
                const double angle = PhaseAt(mClip, *run, *found, clipSeconds);
                phase = phase.value_or(angle);
                moment.clip(static_cast<Eigen::Index>(source)) = found->amplitude * std::cos(angle - *phase);
            }
        }
        if (!phase) {
            return false;
        }
        std::optional<double> movieOrigin;
        for (std::size_t channel = 0; channel < mMovie.channels.size(); ++channel) {
            const ToneRun* run = Steady(mMovie, channel, seconds, kMargin / 2);
            if (run == nullptr || run->isOther || IsOutOfBand(channel, mMovie.frequencies[tone])) {
                continue;
            }
            moment.isKnown[channel] = true;
            if (const Tone* found = run->ToneOf(tone)) {
                const double heard = PhaseAt(mMovie, *run, *found, seconds);
                // Stretched sound has the clip's frequencies at other times: its channels are compared with
                // each other.
                if (mMap.IsStretched() && !movieOrigin) {
                    movieOrigin = heard;
                }
                const double angle = heard - movieOrigin.value_or(*phase);
                // What the map does not explain of the phase is a matter of time, not of level.
                const bool isTurned = std::cos(angle) < 0;
                moment.movie(static_cast<Eigen::Index>(channel)) = found->amplitude * (isTurned ? -1 : 1);
            }
        }
        return true;
    }

    [[nodiscard]] bool IsOutOfBand(std::size_t channel, double frequency) const noexcept
    {
        constexpr double kLfeTop = 120; // Hz
        return mLowChannel && static_cast<std::size_t>(*mLowChannel) == channel && frequency > kLfeTop;
    }

    [[nodiscard]] std::vector<Eigen::VectorXd> Solve(const std::vector<Eigen::MatrixXd>& moments,
                                                     const std::vector<Eigen::VectorXd>& products) const
    {
        std::vector<Eigen::VectorXd> rows;
        for (std::size_t m = 0; m < moments.size(); ++m) {
            const Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> solver(moments[m]);
            const Eigen::VectorXd& values = solver.eigenvalues();
            const double least = 1e-4 * std::max(values.maxCoeff(), 1e-30);
            Eigen::VectorXd row = Eigen::VectorXd::Zero(mSources);
            for (Eigen::Index i = 0; i < values.size(); ++i) {
                if (values(i) > least) {
                    const auto axis = solver.eigenvectors().col(i);
                    row += axis * (axis.dot(products[m]) / values(i));
                }
            }
            rows.push_back(row);
        }
        return rows;
    }

    void FillRows(MixFit& fit, const std::vector<Eigen::VectorXd>& rows,
                  const std::vector<Eigen::MatrixXd>& moments, const std::vector<Eigen::VectorXd>& products,
                  const std::vector<double>& energy, const std::vector<std::size_t>& counts) const
    {
        Eigen::MatrixXd all = Eigen::MatrixXd::Zero(mSources, mSources);
        for (const Eigen::MatrixXd& matrix : moments) {
            all += matrix;
        }
        Identify(fit, all);
        for (std::size_t m = 0; m < rows.size(); ++m) {
            MixRow row;
            row.gains.assign(rows[m].data(), rows[m].data() + rows[m].size());
            row.moments.assign(moments[m].data(), moments[m].data() + moments[m].size());
            const auto count = static_cast<double>(std::max<std::size_t>(counts[m], 1));
            fit.seconds = std::max(fit.seconds, count * kStep);
            row.level = std::sqrt(energy[m] / count);
            row.expectedLevel = std::sqrt(std::max(0.0, moments[m].diagonal().maxCoeff()) / count);
            // Of a channel that the clip itself leaves silent, nothing is expected.
            row.isSilent = row.level < 0.003 * row.expectedLevel || energy[m] <= 0;
            const std::vector<double>& tones = mMovie.frequencies;
            row.isOutOfBand =
                std::all_of(tones.begin(), tones.end(), [&](double tone) { return IsOutOfBand(m, tone); });
            if (!row.isSilent) {
                const double rest =
                    energy[m] - 2 * rows[m].dot(products[m]) + rows[m].dot(moments[m] * rows[m]);
                row.unexplained = std::max(0.0, rest) / energy[m];
                ChooseSource(row, m, moments[m], products[m], energy[m]);
            }
            fit.rows.push_back(row);
        }
    }

    void ChooseSource(MixRow& row, std::size_t m, const Eigen::MatrixXd& moments,
                      const Eigen::VectorXd& products, double energy) const
    {
        double best = 2;
        for (Eigen::Index source = 0; source < mSources; ++source) {
            const double own = moments(source, source);
            if (own <= 0) {
                continue;
            }
            const double gain = products(source) / own;
            const double rest = std::max(0.0, energy - gain * products(source)) / energy;
            // Among channels that are the same, a channel is itself.
            const bool isOwn = static_cast<Eigen::Index>(m) == source;
            if (rest < best - 1e-3 || (isOwn && rest < best + 1e-3)) {
                best = rest;
                row.source = static_cast<int>(source);
                row.gain = gain;
            }
        }
        row.alone = best;
    }

    static void Identify(MixFit& fit, const Eigen::MatrixXd& all)
    {
        const Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> solver(all);
        const double least = 1e-4 * std::max(solver.eigenvalues().maxCoeff(), 1e-30);
        for (Eigen::Index source = 0; source < all.rows(); ++source) {
            double seen = 0;
            for (Eigen::Index i = 0; i < all.rows(); ++i) {
                if (solver.eigenvalues()(i) > least) {
                    seen += solver.eigenvectors()(source, i) * solver.eigenvectors()(source, i);
                }
            }
            fit.isHeard.push_back(all(source, source) > 0);
            fit.isIdentified.push_back(seen > 0.99);
        }
    }

    void FindDeviations(MixFit& fit, const std::vector<Eigen::VectorXd>& rows) const
    {
        std::vector<std::optional<Deviation>> open(rows.size());
        const auto close = [&](std::optional<Deviation>& deviation) {
            if (deviation && deviation->end - deviation->begin >= 2 * kStep) {
                fit.deviations.push_back(*deviation);
            }
            deviation.reset();
        };
        ForEachMoment([&](const Moment& moment) {
            for (std::size_t m = 0; m < rows.size(); ++m) {
                const double found = moment.movie(static_cast<Eigen::Index>(m));
                if (!moment.isKnown[m] || !Deviates(rows[m], moment, found)) {
                    close(open[m]);
                } else if (!open[m]) {
                    open[m] = Deviation{m, moment.seconds, moment.seconds, found == 0};
                } else {
                    open[m]->end = moment.seconds;
                    open[m]->isSilent = open[m]->isSilent && found == 0;
                }
            }
        });
        for (std::optional<Deviation>& deviation : open) {
            close(deviation);
        }
    }

    const SoundTrack& mClip;
    const SoundTrack& mMovie;
    const TimeMap& mMap;
    std::optional<int> mLowChannel;
    Eigen::Index mSources;
    Eigen::Index mChannels;
    double mMargin; ///< seconds
};

// -3 dB, and the two weights of a matrix surround encoder: sqrt(2/3) and sqrt(1/3).
constexpr double kH = 0.70710678;
constexpr double kW = 0.81649658;
constexpr double kV = 0.57735027;

/// Channels in file order: L R C LFE Ls Rs.
const std::vector<KnownMix>& KnownMixes()
{
    static const std::vector<KnownMix> kList{
        {"Lo/Ro of ITU-R BS.775 (center and surrounds at -3 dB)", {{1, 0, kH, 0, kH, 0}, {0, 1, kH, 0, 0, kH}}},
        {"Lo/Ro with surrounds at -6 dB", {{1, 0, kH, 0, 0.5, 0}, {0, 1, kH, 0, 0, 0.5}}},
        {"Lo/Ro without surrounds", {{1, 0, kH, 0, 0, 0}, {0, 1, kH, 0, 0, 0}}},
        {"Lo/Ro without center", {{1, 0, 0, 0, kH, 0}, {0, 1, 0, 0, 0, kH}}},
        {"Lo/Ro with LFE at -3 dB", {{1, 0, kH, kH, kH, 0}, {0, 1, kH, kH, 0, kH}}},
        {"Lo/Ro with LFE at -6 dB", {{1, 0, kH, 0.5, kH, 0}, {0, 1, kH, 0.5, 0, kH}}},
        {"all channels of a side at full level", {{1, 0, 1, 0, 1, 0}, {0, 1, 1, 0, 0, 1}}},
        {"Lt/Rt, one surround", {{1, 0, kH, 0, -kH, -kH}, {0, 1, kH, 0, kH, kH}}},
        {"Lt/Rt, two surrounds", {{1, 0, kH, 0, -kW, -kV}, {0, 1, kH, 0, kV, kW}}},
        {"mono of ITU-R BS.775", {{kH, kH, 1, 0, 0.5, 0.5}}},
        {"the sum of all channels", {{1, 1, 1, 1, 1, 1}}},
        {"the sum of all channels but LFE", {{1, 1, 1, 0, 1, 1}}},
        {"the sum of left and right", {{1, 1}}},
        {"the difference of left and right", {{1, -1}}},
        {"the sum of left and right on both channels", {{1, 1}, {1, 1}}},
        {"sum and difference", {{1, 1}, {1, -1}}},
        {"mono on both channels", {{1}, {1}}},
        {"mono on every channel", {{1}, {1}, {1}, {1}, {1}, {1}}},
        {"fronts with surrounds at -3 dB and the sum at -9 dB in the center",
         {{1, 0}, {0, 1}, {kH / 2, kH / 2}, {0, 0}, {kH, 0}, {0, kH}}},
        {"fronts with the sum at -6 dB in the center", {{1, 0}, {0, 1}, {0.5, 0.5}, {0, 0}, {0, 0}, {0, 0}}},
        {"fronts with the sum at -3 dB in the center", {{1, 0}, {0, 1}, {kH, kH}, {0, 0}, {0, 0}, {0, 0}}},
        {"fronts copied to the surrounds", {{1, 0}, {0, 1}, {0, 0}, {0, 0}, {1, 0}, {0, 1}}},
    };
    return kList;
}

} // namespace

MixFit FitMix(const SoundTrack& clip, const SoundTrack& movie, const TimeMap& map,
              std::optional<int> lowChannel)
{
    return Fitting(clip, movie, map, lowChannel).Run();
}

MixMatch NearestMix(const MixFit& fit, std::size_t clipChannels)
{
    MixMatch match;
    const auto sources = static_cast<Eigen::Index>(clipChannels);
    for (const KnownMix& known : KnownMixes()) {
        if (known.rows.size() != fit.rows.size() || known.rows.front().size() != clipChannels) {
            continue;
        }
        // Over what sounded: energies of the found and the known mixture, and of their product.
        double found = 0;
        double both = 0;
        double wanted = 0;
        for (std::size_t m = 0; m < fit.rows.size(); ++m) {
            const Eigen::Map<const Eigen::VectorXd> row(fit.rows[m].gains.data(), sources);
            const Eigen::Map<const Eigen::VectorXd> target(known.rows[m].data(), sources);
            const Eigen::Map<const Eigen::MatrixXd> moments(fit.rows[m].moments.data(), sources, sources);
            found += row.dot(moments * row);
            both += row.dot(moments * target);
            wanted += target.dot(moments * target);
        }
        if (found <= 0 || wanted <= 0) {
            continue;
        }
        const double gain = both / wanted;
        const double residual = gain > 0 ? std::sqrt(std::max(0.0, 1 - gain * both / found)) : 1.0;
        if (residual < match.residual) {
            match.runnerUp = std::move(match.name);
            match.runnerUpResidual = match.residual;
            match = {known.name, gain, residual, match.runnerUp, match.runnerUpResidual};
        } else if (residual < match.runnerUpResidual) {
            match.runnerUp = known.name;
            match.runnerUpResidual = residual;
        }
    }
    return match;
}

} // namespace tessel::verify::judge
