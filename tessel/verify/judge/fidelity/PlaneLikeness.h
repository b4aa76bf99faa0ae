/// How like one plane of a picture is to the clip's.
#pragma once

#include <tessel/verify/read/Movie.h>

#include <cstdint>

namespace tessel::verify::judge {

inline constexpr double kEqualPsnr = 100; ///< dB, of equal planes; no other value is higher

struct PlaneLikeness {
    double psnr = 0; ///< dB, at most `kEqualPsnr`
    double ssim = 1; ///< mean over windows of 8 × 8 samples, half overlapping
    bool isEqual = false;
    double worstSsim = 1; ///< of the worst window
    int worstX = 0;       ///< its top left sample
    int worstY = 0;
};

/// Adds up what planes, or bands of rows of one plane, have in common. Both components of a band have one size
/// and one number of bits, which all bands share but for the height. Integers are added up exactly. Threads:
/// one object, one thread at a time. Cost: about a nanosecond a sample.
class PlaneComparison {
public:
    /// @param firstRow  of the plane, which the band begins with. Windows do not reach from one band into the
    /// next.
    void Add(const read::ComponentView& expected, const read::ComponentView& found, int firstRow = 0);

    /// Of all bands so far.
    [[nodiscard]] PlaneLikeness Result() const noexcept;

private:
    template <class Sample, class Sum>
    void AddAs(const read::ComponentView& expected, const read::ComponentView& found, int firstRow);

    bool mIsEqual = true;
    double mFullScale = 1;
    double mSquares = 0; ///< of the differences
    double mSamples = 0;
    double mSsim = 0; ///< sum over windows
    double mWindows = 0;
    PlaneLikeness mWorst;
};

/// Of two whole components.
[[nodiscard]] PlaneLikeness Compare(const read::ComponentView& expected, const read::ComponentView& found);

/// What lossy codecs leave in smooth areas, as numbers only. Sums, so that those of several pictures add up.
struct Artefacts {
    double atEdges = 0; ///< changes of the error from column to column, across the edges of 8 × 8 blocks
    double edges = 0;   ///< how many
    double inside = 0;  ///< the same inside blocks
    double insides = 0;
    double steps = 0; ///< columns in which the clip changes from one row to the next
    double lost = 0;  ///< those of them in which the picture does not

    Artefacts& operator+=(const Artefacts& other) noexcept;

    /// As a multiple of the changes inside blocks: 1 where there is no blocking.
    [[nodiscard]] double Blocking() const noexcept;
    /// As a share of the clip's steps: 0 where there is no banding.
    [[nodiscard]] double Banding() const noexcept;
};

/// Looks at every fourth row and column. Components as for `Compare`.
[[nodiscard]] Artefacts MeasureArtefacts(const read::ComponentView& expected, const read::ComponentView& found);

} // namespace tessel::verify::judge
