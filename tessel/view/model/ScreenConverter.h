/// From painted frames to R'G'B' of 8 bits for a screen.
#pragma once

#include "DistinctRows.h"

#include <tessel/export/convert/FrameConverter.h>
#include <tessel/export/convert/Picture.h>

#include <cstdint>

namespace tessel::view {

/// By the rules of `exporting::FrameConverter`. Frames that are such pictures already are shared; of others
/// each distinct row is converted once. Threads: one object, one thread at a time.
class ScreenConverter {
public:
    /// @throws exporting::ExportError  for a format that frames never have
    ScreenConverter(BR::PixelFormat format, std::int32_t width, std::int32_t height);

    /// @param rowStep  converts each `rowStep`th row alone, from the first one on; more costs less. Frames that
    /// are
    ///                 shared have all rows.
    /// @return in the layout `Bgra`, or `Bgr0` for frames of that kind: the fourth byte is not to be looked at
    /// @throws exporting::ExportError  for a frame of another format or size
    [[nodiscard]] exporting::Picture Convert(const exporting::FrameView& frame, int rowStep = 1);

private:
    bool mIsShared;
    std::int32_t mWidth;
    std::int32_t mHeight;
    exporting::FrameConverter mConverter; ///< of whole frames where they are shared, else of batches of rows
    DistinctRows mRows;
    RowBatches mBatches;
};

} // namespace tessel::view
