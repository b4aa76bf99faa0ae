/// Edges between colours of different chroma: what became of them tells how finely chroma was kept and where it
/// lies.
#pragma once

#include <tessel/verify/read/Movie.h>

#include <cstdint>
#include <vector>

namespace tessel::verify::judge {

/// Luma, Cb and Cr of a picture in 8-bit units; R'G'B' pictures are turned into differences by BT.709.
struct ChromaPicture {
    int width = 0; ///< of luma
    int height = 0;
    int chromaWidth = 0;
    int chromaHeight = 0;
    int shiftX = 0; ///< log2 of luma samples per chroma sample
    int shiftY = 0;
    bool isRgb = false;
    std::vector<float> luma;
    std::vector<float> blue; ///< Cb, 0 for grey
    std::vector<float> red;  ///< Cr, likewise
};
[[nodiscard]] ChromaPicture ChromaOf(const read::Picture& picture);

enum class Axis : std::uint8_t {
    Across, ///< the edge is upright: samples of one row
    Down,   ///< the edge lies: samples of one column
};

/// What stands across one edge, sample by sample of chroma, from the clip's picture and the movie's.
struct EdgeProfile {
    static constexpr int kReach = 6;  ///< samples on either side that are compared
    static constexpr int kMargin = 6; ///< more of them for filters
    static constexpr int kHalf = kReach + kMargin;
    static constexpr int kLength = 2 * kHalf + 1;

    struct Samples {
        float luma[kLength]; ///< where each chroma sample is
        float blue[kLength];
        float red[kLength];
    };
    int place = 0; ///< of the middle sample in its row or column
    Samples was{};
    Samples is{};
};

/// How far the edges of luma itself have moved, in luma samples.
struct LumaShift {
    double sum = 0;
    int edges = 0;

    [[nodiscard]] double Mean() const noexcept { return edges == 0 ? 0 : sum / edges; }
};

/// How chroma changes from row to row where it changes slowly: pictures with every second row alone, each shown
/// twice, change between pairs of rows only.
struct RowSteps {
    double was = 0;     ///< sum of the clip's steps from an even row to the odd one below, in codes
    double is = 0;      ///< of the movie's, in the clip's direction
    double wasNext = 0; ///< likewise from an odd row to the even one below
    double isNext = 0;
};
void TakeRowSteps(const ChromaPicture& was, const ChromaPicture& is, RowSteps& steps);

/// Looks for edges between colours that are flat on both sides and differ in chroma.
/// @param was   the clip's picture in the movie's samples
/// @param is    the movie's; of the same size and layout
/// @param most  profiles are added until there are so many
void FindEdges(const ChromaPicture& was, const ChromaPicture& is, Axis axis, std::size_t most,
               std::vector<EdgeProfile>& profiles, LumaShift& luma);

} // namespace tessel::verify::judge
