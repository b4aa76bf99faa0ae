/// Tones of known frequencies in a block of samples.
#pragma once

#include <complex>
#include <memory>
#include <span>
#include <vector>

namespace tessel::verify::judge {

/// What a block consists of: sample n is constant + sum of Re(tone × exp(i × 2 pi f × (n - centre))) +
/// residual, with the centre at (length - 1) / 2.
struct BlockTones {
    std::vector<std::complex<double>> tones; ///< amplitude and phase at the block's centre
    double constant = 0;
    double residual = 0;     ///< RMS of what no tone explains
    double residualPeak = 0; ///< largest sample of it
    double peak = 0;         ///< largest sample of the block
};

/// Fits a constant and tones by least squares. One block of exactly whole or broken periods is as good as
/// another: the fit knows that tones are not orthogonal in a short block.
/// Threads: [any-thread].
class ToneBank {
public:
    /// @param cyclesPerSample  frequencies, each in (0, 0.5). Two that differ by less than 1 / length are
    ///                         hardly told apart, and one below 1 / length is hardly told
    ///                         from a constant
    /// @param length           samples in a block
    ToneBank(const std::vector<double>& cyclesPerSample, int length);
    ~ToneBank();
    ToneBank(ToneBank&&) noexcept;
    ToneBank& operator=(ToneBank&&) noexcept;
    ToneBank(const ToneBank&) = delete;
    ToneBank& operator=(const ToneBank&) = delete;

    [[nodiscard]] int Length() const noexcept;
    /// @param samples  `Length()` of them
    void Analyse(std::span<const float> samples, BlockTones& result) const;

private:
    struct Matrices;
    std::unique_ptr<Matrices> mMatrices;
};

} // namespace tessel::verify::judge
