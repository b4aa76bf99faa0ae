#include "Spectrum.h"

#include <fftw3.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <memory>
#include <numbers>
#include <optional>
#include <utility>

namespace tessel::verify::judge {
namespace {

constexpr double kWindowSeconds = 0.35;
/// Frequencies that are the same, as a part of them: neighbouring tones of an identification are 12 % apart.
constexpr double kSame = 0.004;
/// Peaks below this part of the loudest one come from tones that begin and end inside a window.
constexpr double kLeast = 0.1;

struct FreeFftw {
    void operator()(void* memory) const noexcept { fftw_free(memory); }
};
template <class T>
using FftwArray = std::unique_ptr<T[], FreeFftw>;

/// A bin of a spectrum, from the window in which it is loudest.
struct Bin {
    double amplitude = 0;
    std::size_t channel = 0;
    std::int64_t start = 0; ///< sample at which that window begins
};

double Hann(int place, int length) noexcept
{
    return 0.5 - 0.5 * std::cos(2 * std::numbers::pi * (place + 0.5) / length);
}

std::vector<Bin> LoudestSpectrum(const reference::Samples& samples, int length)
{
    const auto bins = static_cast<std::size_t>(length / 2 + 1);
    std::vector<Bin> loudest(bins);
    const FftwArray<double> in(fftw_alloc_real(static_cast<std::size_t>(length)));
    const FftwArray<fftw_complex> out(fftw_alloc_complex(bins));
    const fftw_plan plan = fftw_plan_dft_r2c_1d(length, in.get(), out.get(), FFTW_ESTIMATE);
    for (std::size_t channel = 0; channel < samples.size(); ++channel) {
        const auto count = static_cast<std::int64_t>(samples[channel].size());
        for (std::int64_t start = 0; start + length / 2 <= count; start += length / 2) {
            bool isSilent = true;
            for (int i = 0; i < length; ++i) {
                const std::int64_t at = start + i;
                const double value =
                    at < count ? static_cast<double>(samples[channel][static_cast<std::size_t>(at)]) : 0.0;
                // The window's mean is 1/2: with the factor 4 / length a tone's peak is its amplitude.
                in[static_cast<std::size_t>(i)] = value * Hann(i, length) * 4 / length;
                isSilent = isSilent && value == 0;
            }
            if (isSilent) {
                continue;
            }
            fftw_execute(plan);
            for (std::size_t bin = 0; bin < bins; ++bin) {
                const double amplitude = std::hypot(out[bin][0], out[bin][1]);
                if (amplitude > loudest[bin].amplitude) {
                    loudest[bin] = {amplitude, channel, start};
                }
            }
        }
    }
    fftw_destroy_plan(plan);
    return loudest;
}

/// A better value for a frequency, in cycles per sample: by how much the phase runs ahead from the first half
/// of the window to the second.
double Refined(const std::vector<float>& samples, std::int64_t start, int length, double cycles)
{
    const int half = length / 2;
    for (int round = 0; round < 3; ++round) {
        std::complex<double> sums[2];
        for (int part = 0; part < 2; ++part) {
            for (int i = 0; i < half; ++i) {
                const std::int64_t at = start + part * half + i;
                if (at < static_cast<std::int64_t>(samples.size())) {
                    const double angle = -2 * std::numbers::pi * cycles * (part * half + i);
                    sums[part] += static_cast<double>(samples[static_cast<std::size_t>(at)]) * Hann(i, half) *
                                  std::polar(1.0, angle);
                }
            }
        }
        // Where one half has none of the tone, there is nothing to compare.
        if (std::abs(sums[0]) < 0.2 * std::abs(sums[1]) || std::abs(sums[1]) < 0.2 * std::abs(sums[0])) {
            return cycles;
        }
        cycles += std::arg(sums[1] * std::conj(sums[0])) / (2 * std::numbers::pi * half);
    }
    return cycles;
}

bool IsSame(double a, double b) noexcept
{
    return std::abs(a / b - 1) < kSame;
}

/// The ratio that all tones near `about` agree on best: their median, high tones counting for more because they
/// tell it more exactly. A tone that jumps inside its window tells a wrong frequency, which a mean would
/// follow.
std::optional<double> MedianRatio(const std::vector<SpectralPeak>& peaks, const std::vector<double>& tones,
                                  double about)
{
    std::vector<std::pair<double, double>> ratios; // and their weights
    double total = 0;
    for (const SpectralPeak& peak : peaks) {
        for (const double tone : tones) {
            if (IsSame(peak.frequency, tone * about)) {
                ratios.emplace_back(peak.frequency / tone, peak.amplitude * tone * tone);
                total += ratios.back().second;
            }
        }
    }
    std::sort(ratios.begin(), ratios.end());
    double sum = 0;
    for (const auto& [ratio, weight] : ratios) {
        sum += weight;
        if (sum >= total / 2) {
            return ratio;
        }
    }
    return std::nullopt;
}

} // namespace

std::vector<SpectralPeak> PeaksOf(const reference::Samples& samples, int sampleRate, std::size_t most)
{
    if (samples.empty()) {
        return {};
    }
    // A window that is longer than the sound would tell frequencies from its beginning alone.
    const int whole = static_cast<int>(kWindowSeconds * sampleRate);
    const int length =
        static_cast<int>(std::min(samples.front().size(), static_cast<std::size_t>(whole)) / 2) * 2;
    if (length < 16) {
        return {};
    }
    const double windowSeconds = static_cast<double>(length) / sampleRate;
    const std::vector<Bin> spectrum = LoudestSpectrum(samples, length);
    std::vector<SpectralPeak> peaks;
    for (std::size_t bin = 2; bin + 1 < spectrum.size(); ++bin) {
        const double before = spectrum[bin - 1].amplitude;
        const double here = spectrum[bin].amplitude;
        const double behind = spectrum[bin + 1].amplitude;
        if (here <= 0 || here < before || here <= behind) {
            continue;
        }
        // A Hann window's main lobe: the larger neighbour tells how far the tone is from the bin.
        const double ratio = std::max(before, behind) / here;
        const double offset = (2 * ratio - 1) / (1 + ratio) * (behind > before ? 1 : -1);
        peaks.push_back({(static_cast<double>(bin) + offset) * sampleRate / length, here});
    }
    std::sort(peaks.begin(), peaks.end(),
              [](const SpectralPeak& a, const SpectralPeak& b) { return a.amplitude > b.amplitude; });
    // Side lobes and what switching a tone adds lie around it.
    std::vector<SpectralPeak> kept;
    for (const SpectralPeak& peak : peaks) {
        const bool isLobe = std::any_of(kept.begin(), kept.end(), [&](const SpectralPeak& other) {
            return std::abs(peak.frequency - other.frequency) < 16 / windowSeconds &&
                   peak.amplitude < 0.3 * other.amplitude;
        });
        if (!isLobe && peak.amplitude > kLeast * peaks.front().amplitude) {
            kept.push_back(peak);
            const Bin& bin = spectrum[static_cast<std::size_t>(peak.frequency * length / sampleRate + 0.5)];
            kept.back().frequency =
                sampleRate * Refined(samples[bin.channel], bin.start, length, peak.frequency / sampleRate);
        }
        if (kept.size() == most) {
            break;
        }
    }
    return kept;
}

double PitchRatio(const std::vector<SpectralPeak>& peaks, const std::vector<double>& tones)
{
    double total = 0;
    for (const SpectralPeak& peak : peaks) {
        total += peak.amplitude;
    }
    const auto explained = [&](double ratio) {
        double sum = 0;
        for (const SpectralPeak& peak : peaks) {
            const bool isTone = std::any_of(tones.begin(), tones.end(),
                                            [&](double tone) { return IsSame(peak.frequency, tone * ratio); });
            sum += isTone ? peak.amplitude : 0;
        }
        return sum;
    };
    double best = 1;
    double bestSum = explained(1) * 1.02 + 1e-12;
    for (const SpectralPeak& peak : peaks) {
        for (const double tone : tones) {
            const double ratio = peak.frequency / tone;
            const double sum = explained(ratio);
            if (sum > bestSum) {
                bestSum = sum;
                best = ratio;
            }
        }
    }
    if (bestSum < total / 2) {
        return 0;
    }
    return MedianRatio(peaks, tones, best).value_or(best);
}

} // namespace tessel::verify::judge
