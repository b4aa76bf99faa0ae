/// Which pixels hold codes or levels that a video signal should not have.
#pragma once

#include "Signal.h"

#include <cstdint>
#include <vector>

namespace tessel::scopes {

/// What is wrong with a pixel; several may be.
enum CodeFault : std::uint8_t {
    /// A code that serial digital interfaces keep for timing (ITU-R BT.656-5, BT.1120-9): 0 and 255 at 8 bits,
    /// 0 to 3 and 1020 to 1023 at 10 bits. Only Y'CbCr samples of integers have such codes.
    kReservedCode = 1,
    /// Y' outside black to white, or chroma outside its range: codes outside 16 to 235 and 16 to 240 at 8 bits.
    kOutsideRange = 2,
    /// R', G' or B' outside -5 % to 105 %, the limits of EBU R 103-2020. Codes inside their ranges may combine
    /// to that.
    kOutsideGamut = 4,
};

struct CodeFaults {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> flags; ///< sums of `CodeFault`, row by row
    /// Pixels with the fault. @{
    std::int64_t reserved = 0;
    std::int64_t outsideRange = 0;
    std::int64_t outsideGamut = 0;
    /// @}
};

/// Looks at every pixel. Threads: [any-thread].
/// @param signal  all rows of the frame, from a `SignalReader`
/// @param format  of the frame
/// @param faults  is overwritten; its memory is used again
void CheckCodes(const Signal& signal, BR::PixelFormat format, CodeFaults& faults);

} // namespace tessel::scopes
