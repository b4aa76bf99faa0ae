#include "PlaneLikeness.h"

#include <tessel/verify/read/Rows.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace tessel::verify::judge {
namespace {

constexpr double kEqualPsnr = 100; // dB
constexpr int kBlock = 4;          // samples; a window is 2 × 2 blocks

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

/// Sums of columns over a few rows, sample by sample, so that compilers make vectors of them.
/// @tparam Sum  holds the squares of `kBlock` samples
template <class Sample, class Sum>
class ColumnSums {
public:
    explicit ColumnSums(int width) : mWidth(static_cast<std::size_t>(width))
    {
        for (std::vector<Sum>* sums : {&mA, &mB, &mAA, &mBB, &mAB}) {
            sums->resize(mWidth);
        }
    }

    void Clear() noexcept
    {
        for (std::vector<Sum>* sums : {&mA, &mB, &mAA, &mBB, &mAB}) {
            std::fill(sums->begin(), sums->end(), Sum{});
        }
    }

    void Add(const Sample* a, const Sample* b) noexcept
    {
        Sum* const sumA = mA.data();
        Sum* const sumB = mB.data();
        Sum* const sumAA = mAA.data();
        Sum* const sumBB = mBB.data();
        Sum* const sumAB = mAB.data();
        for (std::size_t x = 0; x < mWidth; ++x) {
            const auto valueA = static_cast<Sum>(a[x]);
            const auto valueB = static_cast<Sum>(b[x]);
            sumA[x] += valueA;
            sumB[x] += valueB;
            sumAA[x] += valueA * valueA;
            sumBB[x] += valueB * valueB;
            sumAB[x] += valueA * valueB;
        }
    }

    [[nodiscard]] Sums Of(std::size_t first, std::size_t count) const noexcept
    {
        Sums sums;
        for (std::size_t x = first; x < first + count; ++x) {
            sums += {static_cast<double>(mA[x]), static_cast<double>(mB[x]), static_cast<double>(mAA[x]),
                     static_cast<double>(mBB[x]), static_cast<double>(mAB[x])};
        }
        return sums;
    }

private:
    std::size_t mWidth;
    std::vector<Sum> mA;
    std::vector<Sum> mB;
    std::vector<Sum> mAA;
    std::vector<Sum> mBB;
    std::vector<Sum> mAB;
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

template <class Sample, class Sum>
PlaneLikeness CompareAs(const read::ComponentView& expected, const read::ComponentView& found)
{
    const int width = expected.width;
    const int height = expected.height;
    const double fullScale = expected.isFloat ? 1.0 : std::exp2(expected.bits) - 1;
    const std::size_t blocks = static_cast<std::size_t>(width) / kBlock;
    const std::size_t rest = static_cast<std::size_t>(width) % kBlock;
    std::vector<Sample> rowA(static_cast<std::size_t>(width));
    std::vector<Sample> rowB(rowA.size());
    ColumnSums<Sample, Sum> columns(width);
    std::vector<Sums> above(blocks);
    std::vector<Sums> here(blocks);
    PlaneLikeness likeness;
    bool isEqual = true;
    double squares = 0;
    double ssim = 0;
    std::int64_t windows = 0;
    for (int top = 0; top < height; top += kBlock) {
        const int rows = std::min(kBlock, height - top);
        columns.Clear();
        for (int y = top; y < top + rows; ++y) {
            read::LoadRow(expected, y, rowA.data());
            read::LoadRow(found, y, rowB.data());
            isEqual = isEqual && rowA == rowB;
            columns.Add(rowA.data(), rowB.data());
        }
        std::swap(above, here);
        for (std::size_t block = 0; block < blocks; ++block) {
            here[block] = columns.Of(block * kBlock, kBlock);
            squares += here[block].aa + here[block].bb - 2 * here[block].ab;
        }
        const Sums edge = columns.Of(blocks * kBlock, rest);
        squares += edge.aa + edge.bb - 2 * edge.ab;
        if (top == 0 || rows < kBlock) {
            continue;
        }
        for (std::size_t block = 1; block < blocks; ++block) {
            Sums window = above[block - 1];
            window += above[block];
            window += here[block - 1];
            window += here[block];
            const double value = SsimOf(window, fullScale);
            ssim += value;
            ++windows;
            if (value < likeness.worstSsim) {
                likeness.worstSsim = value;
                likeness.worstX = static_cast<int>(block - 1) * kBlock;
                likeness.worstY = top - kBlock;
            }
        }
    }
    likeness.isEqual = isEqual;
    // Sums of floats may come out below what they are.
    const double mean = std::max(squares, 1e-12) / (static_cast<double>(width) * height);
    likeness.psnr =
        likeness.isEqual ? kEqualPsnr : std::min(kEqualPsnr, 10 * std::log10(fullScale * fullScale / mean));
    likeness.ssim = windows > 0 ? ssim / static_cast<double>(windows) : 1;
    return likeness;
}

} // namespace

PlaneLikeness Compare(const read::ComponentView& expected, const read::ComponentView& found)
{
    if (expected.isFloat || found.isFloat) {
        return CompareAs<float, double>(expected, found);
    }
    // The squares of four samples of up to 15 bits fit into 32 bits.
    return std::max(expected.bits, found.bits) <= 15 ? CompareAs<std::uint16_t, std::uint32_t>(expected, found)
                                                     : CompareAs<std::uint16_t, std::uint64_t>(expected, found);
}

Artefacts MeasureArtefacts(const read::ComponentView& expected, const read::ComponentView& found)
{
    constexpr int kEvery = 4;
    constexpr int kCodedBlock = 8;
    double atEdges = 0;
    double inside = 0;
    std::int64_t edges = 0;
    std::int64_t insides = 0;
    std::int64_t steps = 0;
    std::int64_t lost = 0;
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
            const double step =
                std::abs(static_cast<double>(b[x] - a[x]) - static_cast<double>(b[x - 1] - a[x - 1]));
            const bool isEdge = x % kCodedBlock == 0;
            (isEdge ? atEdges : inside) += step;
            ++(isEdge ? edges : insides);
            if (x % kEvery == 0 && a[x] != lastA[x]) {
                ++steps;
                lost += b[x] == lastB[x] ? 1 : 0;
            }
        }
    }
    Artefacts artefacts;
    if (edges > 0 && inside > 0) {
        artefacts.blocking = atEdges / static_cast<double>(edges) / (inside / static_cast<double>(insides));
    }
    artefacts.banding = steps > 0 ? static_cast<double>(lost) / static_cast<double>(steps) : 0;
    return artefacts;
}

} // namespace tessel::verify::judge
