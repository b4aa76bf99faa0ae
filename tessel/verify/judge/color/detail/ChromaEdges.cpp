#include "ChromaEdges.h"

#include <tessel/verify/read/Rows.h>

#include <algorithm>
#include <cmath>

namespace tessel::verify::judge {
namespace {

constexpr double kLeastStep = 24;   // codes of chroma from one side to the other
constexpr double kLeastLuma = 16;   // likewise of luma
constexpr double kFlatSide = 0.15;  // of the step: most that a side may change
constexpr int kTransition = 2;      // samples of an edge itself, on either side of its middle
constexpr std::size_t kLines = 160; // rows or columns that are looked at

/// One line of samples of a plane.
struct Line {
    const float* first = nullptr;
    int step = 1;
    int count = 0;

    [[nodiscard]] double At(int index) const noexcept
    {
        return first[static_cast<std::ptrdiff_t>(std::clamp(index, 0, count - 1)) * step];
    }
};

Line LineOf(const std::vector<float>& plane, int width, int height, Axis axis, int index)
{
    if (axis == Axis::Across) {
        return {plane.data() + static_cast<std::ptrdiff_t>(index) * width, 1, width};
    }
    return {plane.data() + index, width, height};
}

/// The lines of one picture that belong together.
struct Lines {
    Line luma;
    Line blue;
    Line red;
    int lumaPerChroma = 1;

    [[nodiscard]] double StepAcross(int place, int reach) const noexcept
    {
        return std::hypot(blue.At(place + reach) - blue.At(place - reach),
                          red.At(place + reach) - red.At(place - reach));
    }
    [[nodiscard]] double OffFrom(int place, int from) const noexcept
    {
        return std::hypot(blue.At(place) - blue.At(from), red.At(place) - red.At(from));
    }
};

Lines LinesOf(const ChromaPicture& picture, Axis axis, int index)
{
    const bool isAcross = axis == Axis::Across;
    const int shift = isAcross ? picture.shiftY : picture.shiftX;
    const int lumaIndex = std::min(index << shift, (isAcross ? picture.height : picture.width) - 1);
    return {LineOf(picture.luma, picture.width, picture.height, axis, lumaIndex),
            LineOf(picture.blue, picture.chromaWidth, picture.chromaHeight, axis, index),
            LineOf(picture.red, picture.chromaWidth, picture.chromaHeight, axis, index),
            1 << (isAcross ? picture.shiftX : picture.shiftY)};
}

/// Whether an edge with flat sides stands between `place` - 1 and `place`, or one sample beside.
bool IsEdge(const Lines& lines, int place, double step) noexcept
{
    constexpr int kReach = EdgeProfile::kReach;
    const int left = place - kReach;
    const int right = place + kReach;
    for (int i = 1; i <= kReach - kTransition; ++i) {
        if (lines.OffFrom(left + i - 1, left) > kFlatSide * step ||
            lines.OffFrom(right - i + 1, right) > kFlatSide * step) {
            return false;
        }
    }
    // The middle is where half of the way is done.
    return lines.OffFrom(place - 1, left) < step / 2 && lines.OffFrom(place, left) >= step / 2;
}

EdgeProfile::Samples SamplesAt(const Lines& lines, int place)
{
    EdgeProfile::Samples samples{};
    for (int i = 0; i < EdgeProfile::kLength; ++i) {
        const int at = place + i - EdgeProfile::kHalf;
        samples.luma[i] = static_cast<float>(lines.luma.At(at * lines.lumaPerChroma));
        samples.blue[i] = static_cast<float>(lines.blue.At(at));
        samples.red[i] = static_cast<float>(lines.red.At(at));
    }
    return samples;
}

/// Where the edge of a line's luma is, in samples from `from`; nothing where there is none.
bool PlaceOfLuma(const Line& line, int from, int to, double& place) noexcept
{
    constexpr int kFlatSamples = 3;
    const double left = line.At(from);
    const double right = line.At(to);
    const double step = right - left;
    if (std::abs(step) < kLeastLuma) {
        return false;
    }
    for (int i = 1; i <= kFlatSamples; ++i) {
        if (std::abs(line.At(from + i) - left) > kFlatSide * std::abs(step) ||
            std::abs(line.At(to - i) - right) > kFlatSide * std::abs(step)) {
            return false;
        }
    }
    place = 0;
    for (int i = from; i <= to; ++i) {
        place += (right - line.At(i)) / step;
    }
    return true;
}

void TakeLuma(const Lines& was, const Lines& is, int place, LumaShift& shift)
{
    const int from = (place - EdgeProfile::kReach) * was.lumaPerChroma;
    const int to = (place + EdgeProfile::kReach) * was.lumaPerChroma;
    double wasAt = 0;
    double isAt = 0;
    if (PlaceOfLuma(was.luma, from, to, wasAt) && PlaceOfLuma(is.luma, from, to, isAt)) {
        shift.sum += isAt - wasAt;
        ++shift.edges;
    }
}

} // namespace

ChromaPicture ChromaOf(const read::Picture& picture)
{
    ChromaPicture chroma;
    chroma.width = picture.width;
    chroma.height = picture.height;
    chroma.isRgb = picture.format.isRgb;
    chroma.shiftX = chroma.isRgb ? 0 : picture.format.chromaShiftX;
    chroma.shiftY = chroma.isRgb ? 0 : picture.format.chromaShiftY;
    const auto load = [&](const read::ComponentView& view, double middle, std::vector<float>& plane) {
        const double unit = view.isFloat ? 1.0 / 255 : (std::exp2(view.bits) - 1) / 255;
        const auto width = static_cast<std::size_t>(view.width);
        plane.resize(width * static_cast<std::size_t>(view.height));
        const auto scale = static_cast<float>(1 / unit);
        const auto shift = static_cast<float>(middle);
        for (int y = 0; y < view.height; ++y) {
            float* const row = plane.data() + static_cast<std::size_t>(y) * width;
            read::LoadRow(view, y, row);
            for (std::size_t x = 0; x < width; ++x) {
                row[x] = row[x] * scale - shift;
            }
        }
    };
    const auto& parts = picture.components;
    load(parts[0], 0, chroma.luma);
    if (!parts[1] || !parts[2]) {
        return chroma; // grey
    }
    chroma.chromaWidth = parts[1].width;
    chroma.chromaHeight = parts[1].height;
    // Where the middle is exactly does not matter to edges.
    const double middle = chroma.isRgb ? 0 : 128;
    load(parts[1], middle, chroma.blue);
    load(parts[2], middle, chroma.red);
    if (chroma.isRgb) {
        for (std::size_t i = 0; i < chroma.luma.size(); ++i) {
            const float r = chroma.luma[i];
            const float g = chroma.blue[i];
            const float b = chroma.red[i];
            const float y = 0.2126F * r + 0.7152F * g + 0.0722F * b;
            chroma.luma[i] = y;
            chroma.blue[i] = (b - y) / 1.8556F;
            chroma.red[i] = (r - y) / 1.5748F;
        }
    }
    return chroma;
}

void TakeRowSteps(const ChromaPicture& was, const ChromaPicture& is, RowSteps& steps)
{
    constexpr double kLeast = 0.1; // codes: what rounding leaves of a slow change
    constexpr double kMost = 12;   // more is an edge
    constexpr int kColumns = 16;
    if (was.chromaWidth == 0 || was.chromaWidth != is.chromaWidth || was.chromaHeight != is.chromaHeight) {
        return;
    }
    for (int row = 0; row + 1 < was.chromaHeight; ++row) {
        for (int column = 0; column < kColumns; ++column) {
            const auto x = static_cast<std::size_t>(column * was.chromaWidth / kColumns);
            const std::size_t here =
                static_cast<std::size_t>(row) * static_cast<std::size_t>(was.chromaWidth) + x;
            const std::size_t below = here + static_cast<std::size_t>(was.chromaWidth);
            const double blue = was.blue[below] - was.blue[here];
            const double red = was.red[below] - was.red[here];
            const double step = std::hypot(blue, red);
            if (step < kLeast || step > kMost) {
                continue;
            }
            const double along =
                ((is.blue[below] - is.blue[here]) * blue + (is.red[below] - is.red[here]) * red) / step;
            (row % 2 == 0 ? steps.was : steps.wasNext) += step;
            (row % 2 == 0 ? steps.is : steps.isNext) += along;
        }
    }
}

void FindEdges(const ChromaPicture& was, const ChromaPicture& is, Axis axis, std::size_t most,
               std::vector<EdgeProfile>& profiles, LumaShift& luma)
{
    if (was.chromaWidth == 0 || was.chromaWidth != is.chromaWidth || was.chromaHeight != is.chromaHeight) {
        return;
    }
    const int lineCount = axis == Axis::Across ? was.chromaHeight : was.chromaWidth;
    const int stride = std::max(1, lineCount / static_cast<int>(kLines));
    for (int index = stride / 2; index < lineCount && profiles.size() < most; index += stride) {
        const Lines wasLines = LinesOf(was, axis, index);
        const Lines isLines = LinesOf(is, axis, index);
        for (int place = EdgeProfile::kReach; place + EdgeProfile::kReach < wasLines.blue.count; ++place) {
            const double step = wasLines.StepAcross(place, EdgeProfile::kReach);
            if (step < kLeastStep || !IsEdge(wasLines, place, step)) {
                continue;
            }
            profiles.push_back({place, SamplesAt(wasLines, place), SamplesAt(isLines, place)});
            TakeLuma(wasLines, isLines, place, luma);
            place += EdgeProfile::kReach;
        }
    }
}

} // namespace tessel::verify::judge
