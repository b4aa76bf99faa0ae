/// Names of H.273's codes.
#pragma once

#include <string>

namespace tessel::verify::judge {

/// "BT.709", "unspecified", or "code 99". @{
[[nodiscard]] std::string PrimariesName(int code);
[[nodiscard]] std::string TransferName(int code);
[[nodiscard]] std::string MatrixName(int code);
/// @}

/// Whether two codes stand for the same numbers: BT.601 in its two forms has one matrix, and BT.709, BT.601 and
/// BT.2020 have one transfer function. @{
[[nodiscard]] bool IsSameTransfer(int a, int b) noexcept;
[[nodiscard]] bool IsSameMatrix(int a, int b) noexcept;
/// @}

} // namespace tessel::verify::judge
