#include "FieldModels.h"

#include <cmath>

namespace tessel::verify::judge {
namespace {

constexpr float kChanged = 6; // 8-bit codes between frames, from which motion-adaptive filters interpolate

/// The rows around one sample.
class Around {
public:
    Around(const RowSamples& samples, std::size_t row, std::size_t column) noexcept
        : mAt(samples.Row(row) + column), mColumns(static_cast<std::ptrdiff_t>(samples.columns))
    {
    }

    /// The sample `down` rows lower.
    [[nodiscard]] float operator()(std::ptrdiff_t down) const noexcept { return mAt[down * mColumns]; }

private:
    const float* mAt;
    std::ptrdiff_t mColumns;
};

float Stretched(const Around& now, std::ptrdiff_t own, bool isUpperHalf) noexcept
{
    // Twice as many rows: their middles lie a quarter of a field's row above and below that row's middle.
    return 0.75F * now(own) + 0.25F * now(isUpperHalf ? own - 2 : own + 2);
}

std::array<float, kFieldModels> Predict(const FieldReference& clip, std::size_t row, std::size_t column)
{
    const Around now(clip.now, row, column);
    const float last = clip.last.Row(row)[column];
    const float next = clip.next.Row(row)[column];
    const bool isUpper = row % 2 == 0;
    const float here = now(0);
    const float partner = now(isUpper ? 1 : -1);
    const float between = (now(-1) + now(1)) / 2;
    const float adaptive = std::abs(here - last) > kChanged ? between : here;
    const float adaptiveNext = std::abs(next - here) > kChanged ? between : here;
    const double moved = clip.movedDown;
    const auto whole = static_cast<std::ptrdiff_t>(std::floor(-moved));
    const auto part = static_cast<float>(-moved - static_cast<double>(whole));
    std::array<float, kFieldModels> is{};
    const auto put = [&is](FieldModel model, float value) { is[static_cast<std::size_t>(model)] = value; };
    put(FieldModel::Right, here);
    put(FieldModel::Moved, now(whole) * (1 - part) + (part > 0 ? now(whole + 1) * part : 0.0F));
    put(FieldModel::PairsExchanged, partner);
    put(FieldModel::OneRowDown, now(-1));
    put(FieldModel::OneRowUp, now(1));
    put(FieldModel::PairsMixed, (here + partner) / 2);
    put(FieldModel::RowsMixed, (here + between) / 2);
    put(FieldModel::UpperDoubled, isUpper ? here : partner);
    put(FieldModel::LowerDoubled, isUpper ? partner : here);
    put(FieldModel::UpperBetween, isUpper ? here : between);
    put(FieldModel::LowerBetween, isUpper ? between : here);
    put(FieldModel::UpperAdaptive, isUpper ? here : adaptive);
    put(FieldModel::LowerAdaptive, isUpper ? adaptive : here);
    put(FieldModel::UpperAdaptiveNext, isUpper ? here : adaptiveNext);
    put(FieldModel::LowerAdaptiveNext, isUpper ? adaptiveNext : here);
    put(FieldModel::UpperStretched, Stretched(now, isUpper ? 0 : -1, isUpper));
    put(FieldModel::LowerStretched, Stretched(now, isUpper ? 1 : 0, isUpper));
    put(FieldModel::LowerFromNext, isUpper ? here : next);
    put(FieldModel::UpperFromNext, isUpper ? next : here);
    put(FieldModel::LowerFromLast, isUpper ? here : last);
    put(FieldModel::UpperFromLast, isUpper ? last : here);
    put(FieldModel::MixedWithNext, (here + next) / 2);
    put(FieldModel::MixedWithLast, (here + last) / 2);
    return is;
}

} // namespace

FieldProducts& FieldProducts::operator+=(const FieldProducts& other) noexcept
{
    for (std::size_t a = 0; a < kFieldModels; ++a) {
        for (std::size_t b = 0; b < kFieldModels; ++b) {
            at[a][b] += other.at[a][b];
        }
    }
    samples += other.samples;
    return *this;
}

FieldProducts CompareFields(const FieldReference& clip, const RowSamples& found)
{
    FieldProducts products;
    for (std::size_t row = kFieldMargin; row + kFieldMargin < found.Rows(); ++row) {
        std::array<std::array<float, kFieldModels>, kFieldModels>
            sums{}; // of one row, whose floats are exact enough
        for (std::size_t column = 0; column < found.columns; ++column) {
            std::array<float, kFieldModels> off = Predict(clip, row, column);
            const float value = found.Row(row)[column];
            for (float& prediction : off) {
                prediction = value - prediction;
            }
            for (std::size_t a = 0; a < kFieldModels; ++a) {
                for (std::size_t b = 0; b <= a; ++b) {
                    sums[a][b] += off[a] * off[b];
                }
            }
        }
        for (std::size_t a = 0; a < kFieldModels; ++a) {
            for (std::size_t b = 0; b <= a; ++b) {
                products.at[a][b] += static_cast<double>(sums[a][b]);
            }
        }
        products.samples += static_cast<double>(found.columns);
    }
    for (std::size_t a = 0; a < kFieldModels; ++a) {
        for (std::size_t b = 0; b < a; ++b) {
            products.at[b][a] = products.at[a][b];
        }
    }
    return products;
}

} // namespace tessel::verify::judge
