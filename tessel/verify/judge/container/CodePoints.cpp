#include "CodePoints.h"

#include <fmt/format.h>

#include <span>
#include <string_view>

namespace tessel::verify::judge {
namespace {

struct Row {
    int code;
    std::string_view name;
};

constexpr Row kPrimaries[] = {{1, "BT.709"},
                              {2, "unspecified"},
                              {4, "BT.470 M"},
                              {5, "BT.601 (625 lines)"},
                              {6, "BT.601 (525 lines)"},
                              {7, "SMPTE 240M"},
                              {8, "film"},
                              {9, "BT.2020"},
                              {10, "XYZ"},
                              {11, "P3 theatre"},
                              {12, "P3-D65"},
                              {22, "EBU 3213"}};
constexpr Row kTransfers[] = {{1, "BT.709"},
                              {2, "unspecified"},
                              {4, "gamma 2.2"},
                              {5, "gamma 2.8"},
                              {6, "BT.601"},
                              {7, "SMPTE 240M"},
                              {8, "linear"},
                              {11, "xvYCC"},
                              {13, "sRGB"},
                              {14, "BT.2020 (10 bits)"},
                              {15, "BT.2020 (12 bits)"},
                              {16, "PQ"},
                              {17, "gamma 2.6"},
                              {18, "HLG"}};
constexpr Row kMatrices[] = {{0, "R'G'B'"},
                             {1, "BT.709"},
                             {2, "unspecified"},
                             {4, "FCC"},
                             {5, "BT.601 (625 lines)"},
                             {6, "BT.601 (525 lines)"},
                             {7, "SMPTE 240M"},
                             {8, "YCgCo"},
                             {9, "BT.2020"},
                             {10, "BT.2020 constant luminance"}};

std::string NameIn(std::span<const Row> rows, int code)
{
    for (const Row& row : rows) {
        if (row.code == code) {
            return std::string(row.name);
        }
    }
    return fmt::format("code {}", code);
}

constexpr bool IsBt601Matrix(int code) noexcept
{
    return code == 5 || code == 6;
}

constexpr bool IsBt709Curve(int code) noexcept
{
    return code == 1 || code == 6 || code == 14 || code == 15;
}

} // namespace

std::string PrimariesName(int code)
{
    return NameIn(kPrimaries, code);
}

std::string TransferName(int code)
{
    return NameIn(kTransfers, code);
}

std::string MatrixName(int code)
{
    return NameIn(kMatrices, code);
}

bool IsSameTransfer(int a, int b) noexcept
{
    return a == b || (IsBt709Curve(a) && IsBt709Curve(b));
}

bool IsSameMatrix(int a, int b) noexcept
{
    return a == b || (IsBt601Matrix(a) && IsBt601Matrix(b));
}

} // namespace tessel::verify::judge
