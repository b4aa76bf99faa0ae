/// Colour matrices and chroma upsampling, by zimg.
#pragma once

#include "AlignedBuffer.h"
#include "PixelKind.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace tessel::exporting {

/// Planes as they go in: R, G, B or Y', Cb, Cr, rows on multiples of 64 bytes.
struct MatrixInput {
    std::int32_t width = 0;  ///< pixels, 1 or more
    std::int32_t height = 0; ///< pixels, 1 or more
    ColorFamily family = ColorFamily::Rgb;
    Matrix matrix = Matrix::Rgb;
    /// Integer samples are full range for R'G'B' and limited range for Y'CbCr; 32 bits means float.
    int bits = 8;
    bool chromaHalfWidth = false; ///< 4:2:2, chroma co-sited with even columns
};

/// Turns planes of one colour family or matrix into float planes at full resolution: R'G'B' 0..1, or Y'
/// 0..1 with Cb and Cr -0.5..0.5, neither clipped. Threads: one object, one thread at a time.
class MatrixConversion {
public:
    /// @throws ExportError  where zimg refuses, with its words.
    MatrixConversion(const MatrixInput& input, ColorFamily outputFamily, Matrix outputMatrix);
    ~MatrixConversion();
    MatrixConversion(const MatrixConversion&) = delete;
    MatrixConversion& operator=(const MatrixConversion&) = delete;

    struct InputPlanes {
        std::array<const void*, 3> data;
        std::array<std::ptrdiff_t, 3> rowBytes;
    };
    struct OutputPlanes {
        std::array<float*, 3> data;
        std::ptrdiff_t rowBytes; ///< a multiple of 64
    };
    void Run(const InputPlanes& input, const OutputPlanes& output);

private:
    struct Graph;
    std::unique_ptr<Graph> mGraph;
    AlignedBuffer mScratch;
};

} // namespace tessel::exporting
