#include "MatrixConversion.h"

#include <tessel/export/ExportError.h>

#include <zimg.h>

#include <string>

namespace tessel::exporting {
namespace {

[[noreturn]] void FailWithZimgsWords()
{
    std::array<char, 256> text{};
    zimg_get_last_error(text.data(), text.size());
    throw ExportError("the colour conversion failed: " + std::string(text.data()));
}

void SetColor(zimg_image_format& format, ColorFamily family, Matrix matrix) noexcept
{
    format.color_family = family == ColorFamily::Rgb ? ZIMG_COLOR_RGB : ZIMG_COLOR_YUV;
    format.matrix_coefficients = static_cast<zimg_matrix_coefficients_e>(matrix);
    format.pixel_range = family == ColorFamily::Rgb ? ZIMG_RANGE_FULL : ZIMG_RANGE_LIMITED;
    format.chroma_location = ZIMG_CHROMA_LEFT;
}

} // namespace

struct MatrixConversion::Graph {
    struct Free {
        void operator()(zimg_filter_graph* graph) const noexcept { zimg_filter_graph_free(graph); }
    };
    std::unique_ptr<zimg_filter_graph, Free> handle;
};

MatrixConversion::MatrixConversion(const MatrixInput& input, ColorFamily outputFamily, Matrix outputMatrix)
    : mGraph(std::make_unique<Graph>())
{
    zimg_image_format source;
    zimg_image_format_default(&source, ZIMG_API_VERSION);
    source.width = static_cast<unsigned>(input.width);
    source.height = static_cast<unsigned>(input.height);
    source.subsample_w = input.chromaHalfWidth ? 1 : 0;
    source.depth = static_cast<unsigned>(input.bits);
    source.pixel_type = ZIMG_PIXEL_BYTE;
    if (input.bits == 32) {
        source.pixel_type = ZIMG_PIXEL_FLOAT;
    } else if (input.bits > 8) {
        source.pixel_type = ZIMG_PIXEL_WORD;
    }
    SetColor(source, input.family, input.matrix);

    zimg_image_format target;
    zimg_image_format_default(&target, ZIMG_API_VERSION);
    target.width = source.width;
    target.height = source.height;
    target.pixel_type = ZIMG_PIXEL_FLOAT;
    target.depth = 32;
    SetColor(target, outputFamily, outputMatrix);

    zimg_graph_builder_params params;
    zimg_graph_builder_params_default(&params, ZIMG_API_VERSION);
    params.dither_type = ZIMG_DITHER_NONE;
    mGraph->handle.reset(zimg_filter_graph_build(&source, &target, &params));
    if (!mGraph->handle) {
        FailWithZimgsWords();
    }
    std::size_t scratchSize = 0;
    if (zimg_filter_graph_get_tmp_size(mGraph->handle.get(), &scratchSize) != 0) {
        FailWithZimgsWords();
    }
    mScratch = AlignedBuffer(scratchSize);
}

MatrixConversion::~MatrixConversion() = default;

void MatrixConversion::Run(const InputPlanes& input, const OutputPlanes& output)
{
    zimg_image_buffer_const source{};
    source.version = ZIMG_API_VERSION;
    zimg_image_buffer target{};
    target.version = ZIMG_API_VERSION;
    for (std::size_t plane = 0; plane < 3; ++plane) {
        source.plane[plane].data = input.data[plane];
        source.plane[plane].stride = input.rowBytes[plane];
        source.plane[plane].mask = ZIMG_BUFFER_MAX;
        target.plane[plane].data = output.data[plane];
        target.plane[plane].stride = output.rowBytes;
        target.plane[plane].mask = ZIMG_BUFFER_MAX;
    }
    if (zimg_filter_graph_process(mGraph->handle.get(), &source, &target, mScratch.Bytes(), nullptr, nullptr,
                                  nullptr, nullptr) != 0) {
        FailWithZimgsWords();
    }
}

} // namespace tessel::exporting
