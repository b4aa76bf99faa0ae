#include "ToneBank.h"

#include <Eigen/Dense>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tessel::verify::judge {

struct ToneBank::Matrices {
    Eigen::MatrixXd basis;   ///< a row per sample: 1, then cosine and negative sine per tone
    Eigen::MatrixXd inverse; ///< of the basis, by least squares
};

ToneBank::ToneBank(const std::vector<double>& cyclesPerSample, int length)
    : mMatrices(std::make_unique<Matrices>())
{
    const auto columns = static_cast<Eigen::Index>(1 + 2 * cyclesPerSample.size());
    mMatrices->basis.resize(length, columns);
    const double centre = (length - 1) / 2.0;
    for (Eigen::Index n = 0; n < length; ++n) {
        mMatrices->basis(n, 0) = 1;
        for (std::size_t i = 0; i < cyclesPerSample.size(); ++i) {
            const double angle = 2 * std::numbers::pi * cyclesPerSample[i] * (static_cast<double>(n) - centre);
            const auto column = static_cast<Eigen::Index>(1 + 2 * i);
            mMatrices->basis(n, column) = std::cos(angle);
            mMatrices->basis(n, column + 1) = -std::sin(angle);
        }
    }
    mMatrices->inverse = (mMatrices->basis.transpose() * mMatrices->basis)
                             .ldlt()
                             .solve(Eigen::MatrixXd(mMatrices->basis.transpose()));
}

ToneBank::~ToneBank() = default;
ToneBank::ToneBank(ToneBank&&) noexcept = default;
ToneBank& ToneBank::operator=(ToneBank&&) noexcept = default;

int ToneBank::Length() const noexcept
{
    return static_cast<int>(mMatrices->basis.rows());
}

void ToneBank::Analyse(std::span<const float> samples, BlockTones& result) const
{
    const auto tones = static_cast<std::size_t>((mMatrices->basis.cols() - 1) / 2);
    result = BlockTones{};
    result.tones.assign(tones, {0, 0});
    if (std::all_of(samples.begin(), samples.end(), [](float sample) { return sample == 0.0F; })) {
        return; // identifications are mostly silent
    }
    const Eigen::VectorXd values =
        Eigen::Map<const Eigen::VectorXf>(samples.data(), static_cast<Eigen::Index>(samples.size()))
            .cast<double>();
    const Eigen::VectorXd found = mMatrices->inverse * values;
    const Eigen::VectorXd rest = values - mMatrices->basis * found;
    for (std::size_t i = 0; i < tones; ++i) {
        const auto row = static_cast<Eigen::Index>(1 + 2 * i);
        result.tones[i] = {found(row), found(row + 1)};
    }
    result.constant = found(0);
    result.residual = std::sqrt(rest.squaredNorm() / static_cast<double>(samples.size()));
    result.residualPeak = rest.cwiseAbs().maxCoeff();
    result.peak = values.cwiseAbs().maxCoeff();
}

} // namespace tessel::verify::judge
