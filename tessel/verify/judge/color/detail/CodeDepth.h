/// How many bits codes really have.
#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

namespace tessel::verify::judge {

/// Codes of one kind of component, as the clip has them and as they came back, counted.
class CodeCounts {
public:
    /// @param bits  of a code
    explicit CodeCounts(int bits) : mBits(bits) {}

    /// @param isLevelRun  whether the clip's code is that of the sample before, so that a change is dither
    void Take(std::uint32_t expected, std::uint32_t found, bool isLevelRun);

    [[nodiscard]] int Bits() const noexcept { return mBits; }
    [[nodiscard]] bool IsEmpty() const noexcept { return mCounts.empty(); }

    /// The fewest bits whose codes are all that came back; `Bits()` where none are missing.
    [[nodiscard]] int FoundBits() const;
    /// Likewise of the clip's codes.
    [[nodiscard]] int ExpectedBits() const;

    /// How many different codes of the clip, and of what came back.
    [[nodiscard]] int ExpectedCodes() const;
    [[nodiscard]] int FoundCodes() const;

    /// How many different codes of the clip a loss down to `bits` bits changes.
    [[nodiscard]] int CodesChangedBy(int bits) const;

    /// The share of samples that came back as the clip's code cut down to `bits` bits or rounded to them.
    [[nodiscard]] double ShareExplainedBy(int bits) const;

    /// Whether samples of one colour came back with several codes.
    [[nodiscard]] bool IsDithered() const noexcept;

private:
    using Codes = std::unordered_map<std::uint32_t, std::int64_t>;
    [[nodiscard]] Codes CodesOf(bool isFound) const;

    int mBits;
    /// How often the clip's code (upper half of the key) came back as another (lower half).
    std::unordered_map<std::uint64_t, std::int64_t> mCounts;
    std::uint32_t mLastFound = 0;
    std::int64_t mRuns = 0;    ///< neighbours with one code in the clip
    std::int64_t mChanges = 0; ///< of those, with two codes in the movie
};

/// Means of many samples that have one code in the clip, against that code: what is left of lost bits behind a
/// codec that loses detail is a staircase.
struct StairPoint {
    double expected = 0; ///< a code
    double found = 0;    ///< a mean of codes
};

struct StairFit {
    double share = 0;       ///< of the whole staircase: 1 where codes are cut down, 0 where nothing is wrong
    double uncertainty = 1; ///< of `share`
    double explained = 0;   ///< of the squared error
};

/// The staircase that `lost` bits leave, beside a gain and an offset.
/// @return nothing where the codes are too few to tell
[[nodiscard]] std::optional<StairFit> FitStairs(const std::vector<StairPoint>& points, int lost);

} // namespace tessel::verify::judge
