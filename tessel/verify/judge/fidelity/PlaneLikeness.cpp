#include "PlaneLikeness.h"

#include <tessel/verify/read/Rows.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace tessel::verify::judge {
namespace {

constexpr int kBlock = 4; // samples; a window is 2 × 2 blocks

/// Sums over a rectangle of samples of two planes.
struct Sums {
    double a = 0;
    double b = 0;
    double aa = 0;
    double bb = 0;
    double ab = 0;

    Sums& operator+=(const Sums& other) noexcept
    {
        a += other.a;
        b += other.b;
        aa += other.aa;
        bb += other.bb;
        ab += other.ab;
        return *this;
    }
};

/// Rows side by side are taken in strips of so many columns, whose sums stay in the nearest cache.
constexpr std::size_t kStrip = 256;
static_assert(kStrip % kBlock == 0);

/// Sums of the columns of a strip over a few rows, sample by sample, so that compilers make vectors of them.
/// @tparam Sum  holds the squares of `kBlock` samples
template <class Sample, class Sum>
class ColumnSums {
public:
    void Clear() noexcept
    {
        for (std::array<Sum, kStrip>* sums : {&mA, &mB, &mAA, &mBB, &mAB}) {
            sums->fill(Sum{});
        }
    }

    void Add(const Sample* a, const Sample* b, std::size_t count) noexcept
    {
        for (std::size_t x = 0; x < count; ++x) {
            const auto valueA = static_cast<Sum>(a[x]);
            const auto valueB = static_cast<Sum>(b[x]);
            mA[x] += valueA;
            mB[x] += valueB;
            mAA[x] += valueA * valueA;
            mBB[x] += valueB * valueB;
            mAB[x] += valueA * valueB;
        }
    }

    [[nodiscard]] Sums Of(std::size_t first, std::size_t count) const noexcept
    {
        const auto total = [&](const std::array<Sum, kStrip>& sums) {
            Sum sum{};
            for (std::size_t x = first; x < first + count; ++x) {
                sum += sums[x];
            }
            return static_cast<double>(sum);
        };
        return {total(mA), total(mB), total(mAA), total(mBB), total(mAB)};
    }

private:
    alignas(64) std::array<Sum, kStrip> mA{};
    alignas(64) std::array<Sum, kStrip> mB{};
    alignas(64) std::array<Sum, kStrip> mAA{};
    alignas(64) std::array<Sum, kStrip> mBB{};
    alignas(64) std::array<Sum, kStrip> mAB{};
};

/// SSIM of one window (Wang et al. 2004), with its two small constants.
double SsimOf(const Sums& window, double fullScale) noexcept
{
    constexpr double kCount = 4.0 * kBlock * kBlock;
    const double meanA = window.a / kCount;
    const double meanB = window.b / kCount;
    const double varianceA = std::max(0.0, window.aa / kCount - meanA * meanA);
    const double varianceB = std::max(0.0, window.bb / kCount - meanB * meanB);
    const double covariance = window.ab / kCount - meanA * meanB;
    const double c1 = 0.01 * fullScale * 0.01 * fullScale;
    const double c2 = 0.03 * fullScale * 0.03 * fullScale;
    return (2 * meanA * meanB + c1) * (2 * covariance + c2) /
           ((meanA * meanA + meanB * meanB + c1) * (varianceA + varianceB + c2));
}

} // namespace

template <class Sample, class Sum>
void PlaneComparison::AddAs(const read::ComponentView& expected, const read::ComponentView& found, int firstRow)
{
    const auto width = static_cast<std::size_t>(expected.width);
    const std::size_t blocks = width / kBlock;
    std::array<std::vector<Sample>, kBlock> rowsA;
    std::array<std::vector<Sample>, kBlock> rowsB;
    for (std::size_t row = 0; row < kBlock; ++row) {
        rowsA[row].resize(width);
        rowsB[row].resize(width);
    }
    ColumnSums<Sample, Sum> columns;
    std::vector<Sums> above(blocks);
    std::vector<Sums> here(blocks);
    for (int top = 0; top < expected.height; top += kBlock) {
        const auto rows = static_cast<std::size_t>(std::min(kBlock, expected.height - top));
        for (std::size_t row = 0; row < rows; ++row) {
            read::LoadRow(expected, top + static_cast<int>(row), rowsA[row].data());
            read::LoadRow(found, top + static_cast<int>(row), rowsB[row].data());
            mIsEqual = mIsEqual && rowsA[row] == rowsB[row];
        }
        std::swap(above, here);
        for (std::size_t strip = 0; strip < width; strip += kStrip) {
            const std::size_t count = std::min(kStrip, width - strip);
            columns.Clear();
            for (std::size_t row = 0; row < rows; ++row) {
                columns.Add(rowsA[row].data() + strip, rowsB[row].data() + strip, count);
            }
            for (std::size_t x = 0; x < count; x += kBlock) {
                const Sums sums = columns.Of(x, std::min<std::size_t>(kBlock, count - x));
                mSquares += sums.aa + sums.bb - 2 * sums.ab;
                if (x + kBlock <= count) {
                    here[(strip + x) / kBlock] = sums;
                }
            }
        }
        if (top == 0 || rows < kBlock) {
            continue;
        }
        for (std::size_t block = 1; block < blocks; ++block) {
            Sums window = above[block - 1];
            window += above[block];
            window += here[block - 1];
            window += here[block];
            const double value = SsimOf(window, mFullScale);
            mSsim += value;
            ++mWindows;
            if (value < mWorst.worstSsim) {
                mWorst.worstSsim = value;
                mWorst.worstX = static_cast<int>(block - 1) * kBlock;
                mWorst.worstY = firstRow + top - kBlock;
            }
        }
    }
    mSamples += static_cast<double>(width) * expected.height;
}

void PlaneComparison::Add(const read::ComponentView& expected, const read::ComponentView& found, int firstRow)
{
    mFullScale = expected.isFloat ? 1.0 : std::exp2(expected.bits) - 1;
    if (expected.isFloat || found.isFloat) {
        AddAs<float, double>(expected, found, firstRow);
    } else if (std::max(expected.bits, found.bits) <= 14) {
        // The squares of sixteen samples of up to 14 bits fit into 32 bits.
        AddAs<std::uint16_t, std::uint32_t>(expected, found, firstRow);
    } else {
        AddAs<std::uint16_t, std::uint64_t>(expected, found, firstRow);
    }
}

PlaneLikeness PlaneComparison::Result() const noexcept
{
    PlaneLikeness likeness = mWorst;
    likeness.isEqual = mIsEqual;
    // Sums of floats may come out below what they are.
    const double mean = std::max(mSquares, 1e-12) / std::max(1.0, mSamples);
    likeness.psnr =
        mIsEqual ? kEqualPsnr : std::min(kEqualPsnr, 10 * std::log10(mFullScale * mFullScale / mean));
    likeness.ssim = mWindows > 0 ? mSsim / mWindows : 1;
    return likeness;
}

PlaneLikeness Compare(const read::ComponentView& expected, const read::ComponentView& found)
{
    PlaneComparison comparison;
    comparison.Add(expected, found);
    return comparison.Result();
}

Artefacts& Artefacts::operator+=(const Artefacts& other) noexcept
{
    atEdges += other.atEdges;
    edges += other.edges;
    inside += other.inside;
    insides += other.insides;
    steps += other.steps;
    lost += other.lost;
    return *this;
}

double Artefacts::Blocking() const noexcept
{
    return edges > 0 && inside > 0 ? atEdges / edges / (inside / insides) : 1;
}

double Artefacts::Banding() const noexcept
{
    return steps > 0 ? lost / steps : 0;
}

Artefacts MeasureArtefacts(const read::ComponentView& expected, const read::ComponentView& found)
{
    constexpr int kEvery = 4;
    constexpr std::size_t kCodedBlock = 8;
    Artefacts artefacts;
    std::vector<float> a(static_cast<std::size_t>(expected.width));
    std::vector<float> b(a.size());
    std::vector<float> lastA(a.size());
    std::vector<float> lastB(a.size());
    for (int y = 1; y < expected.height; y += kEvery) {
        read::LoadRow(expected, y - 1, lastA.data());
        read::LoadRow(found, y - 1, lastB.data());
        read::LoadRow(expected, y, a.data());
        read::LoadRow(found, y, b.data());
        for (std::size_t x = 1; x < a.size(); ++x) {
            const auto change = static_cast<double>(std::abs((b[x] - a[x]) - (b[x - 1] - a[x - 1])));
            if (x % kCodedBlock == 0) {
                artefacts.atEdges += change;
                ++artefacts.edges;
            } else {
                artefacts.inside += change;
                ++artefacts.insides;
            }
            if (x % kEvery == 0 && a[x] != lastA[x]) {
                ++artefacts.steps;
                artefacts.lost += b[x] == lastB[x] ? 1 : 0;
            }
        }
    }
    return artefacts;
}

} // namespace tessel::verify::judge
