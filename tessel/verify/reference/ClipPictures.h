/// The clip's own pictures, seen as decoded ones are.
#pragma once

#include <tessel/export/SignalSource.h>
#include <tessel/export/convert/Conversion.h>
#include <tessel/export/convert/FrameConverter.h>
#include <tessel/verify/read/Movie.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace tessel::verify::reference {

/// What a clip is by its description and its frames.
struct ClipFacts {
    int width = 0; ///< pixels
    int height = 0;
    read::Rational rate; ///< frames per second, in lowest terms
    std::int64_t frameCount = 0;
    read::Rational pixelAspect;
    read::FieldOrder fields = read::FieldOrder::Progressive;
    int primaries = 2; ///< H.273
    int transfer = 2;
    int matrix = 2;
    bool fullRange = false;
    int sampleRate = 0;
    int channels = 0;
    exporting::PixelKind frameKind; ///< of the frames as they are painted
    exporting::PixelKind fileKind;  ///< of files that keep the clip's format: planar and DV clips have another
    int bits = 8;                   ///< of their samples; floats count as 16
    bool hasPicture = false;

    [[nodiscard]] double SecondsOf(std::int64_t frame) const noexcept
    {
        return rate.numerator > 0 ? static_cast<double>(frame) / rate.Value() : 0.0;
    }
};

/// Renders frame 0 to learn the format. @throws importhost::HostError where the clip cannot be painted
[[nodiscard]] ClipFacts FactsOf(const exporting::SignalSource& clip);

/// Frames of a clip in one layout. Threads: one object, one thread at a time.
class ClipPictures {
public:
    /// @param clip  borrowed
    ClipPictures(const exporting::SignalSource& clip, exporting::PictureLayout layout,
                 const exporting::YCbCrCoding& coding, exporting::ChromaRows chromaRows);

    /// @param frame  of the clip. @throws importhost::HostError, exporting::ExportError
    [[nodiscard]] read::Picture Render(std::int64_t frame);

    /// Every `step`th row from `first` on, as a picture of `count` rows. Only for layouts whose chroma is as
    /// high as their luma. Cost: painting the frame, and converting these rows.
    [[nodiscard]] read::Picture RenderRows(std::int64_t frame, int first, int count, int step = 1);

    /// Every so many rows a band, as a picture of its own.
    struct Bands {
        int first = 0;    ///< row of the first band; both this and `rows` are multiples of 4, for chroma's sake
        int rows = 16;    ///< of a band
        int distance = 1; ///< from one band's first row to the next one's
    };
    /// The bands that lie wholly inside the frame. Cost: painting the frame, and converting these rows.
    [[nodiscard]] std::vector<read::Picture> RenderBands(std::int64_t frame, const Bands& bands);

    /// A painted frame whose rows are converted one by one, when they are first asked for. Only for layouts
    /// whose chroma is as high as their luma. Borrows the maker, of which nothing else may be asked meanwhile.
    class SparseFrame {
    public:
        SparseFrame(ClipPictures& maker, std::int64_t frame);
        /// Row `y` as a picture of one row. Cost: converting it, at first.
        [[nodiscard]] const read::Picture& Row(int y);

    private:
        ClipPictures& mMaker;
        exporting::FrameView mView;
        std::vector<std::optional<read::Picture>> mRows;
    };

private:
    [[nodiscard]] read::Picture Convert(const exporting::FrameView& view);

    const exporting::SignalSource& mClip;
    exporting::Conversion mConversion;
    std::unique_ptr<exporting::FrameConverter> mConverter;
};

} // namespace tessel::verify::reference
