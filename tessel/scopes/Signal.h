/// A picture as numbers: what the scopes count.
#pragma once

#include <tessel/export/convert/Conversion.h>
#include <tessel/export/convert/FrameConverter.h>
#include <tessel/export/convert/FrameView.h>
#include <tessel/export/convert/SourceFrame.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace tessel::scopes {

/// One component, row by row.
struct Plane {
    int width = 0;
    int height = 0;
    std::vector<float> samples;

    /// Contents undefined after a change of size.
    void Resize(int columns, int rows)
    {
        width = columns;
        height = rows;
        samples.resize(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows));
    }
    [[nodiscard]] float* Row(int y) noexcept { return samples.data() + static_cast<std::ptrdiff_t>(y) * width; }
    [[nodiscard]] const float* Row(int y) const noexcept
    {
        return samples.data() + static_cast<std::ptrdiff_t>(y) * width;
    }
};

/// Y' and R'G'B' from 0 (black) to 1 (white), Cb and Cr from -0.5 to 0.5. Values beyond that are kept. Chroma
/// planes of a 4:2:2 picture have half the width: they hold the samples of the picture, none in between.
struct Signal {
    Plane luma, cb, cr;
    Plane red, green, blue;
};

/// Reads painted frames of one format and size.
///
/// The components of the frame's own colour family are its samples, only scaled: Y'CbCr codes of 16 to 235 and
/// 16 to 240 (or four times that) to the ranges above, R'G'B' codes of 0 to 255. The other family is computed
/// from them by the matrix of the format or, for R'G'B' frames, by the one that the clip names. Linear light
/// passes the transfer function of BT.709 first, as in a file. Threads: one object, one thread at a time.
class SignalReader {
public:
    /// @param matrix   makes Y'CbCr of R'G'B' frames
    /// @param rowStep  reads each `rowStep`th row alone, from the first one on; 1 or more
    /// @throws exporting::ExportError  for a format that frames never have
    SignalReader(BR::PixelFormat format, std::int32_t width, std::int32_t height, exporting::Matrix matrix,
                 int rowStep = 1);

    /// @return valid until the next call. @throws exporting::ExportError  for a frame of another format or size
    [[nodiscard]] const Signal& Read(const exporting::FrameView& frame);

    /// The matrix between both colour families.
    [[nodiscard]] exporting::Matrix Matrix() const noexcept { return mMatrix; }

private:
    void ReadYCbCr(const exporting::FrameView& rows);
    void ReadRgb();

    exporting::SourceInfo mSource;
    exporting::Matrix mMatrix;
    int mRowStep;
    std::int32_t mHeight;
    exporting::SourceReader mReader;
    std::optional<exporting::FrameConverter> mToRgb; ///< of Y'CbCr frames
    Signal mSignal;
};

} // namespace tessel::scopes
