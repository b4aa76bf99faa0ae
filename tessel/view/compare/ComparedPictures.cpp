#include "ComparedPictures.h"

#include <tessel/scopes/Colorimetry.h>
#include <tessel/verify/read/Rows.h>
#include <tessel/verify/reference/MovieLayout.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace tessel::view {
namespace {

using exporting::Matrix;
using verify::read::ComponentView;
using verify::read::Picture;

/// Rows of R', G', B' from 0 to 255, not clipped.
using Row = std::array<std::vector<float>, 3>;

struct Coding {
    Matrix matrix = Matrix::Bt709;
    bool fullRange = false;
};

/// Turns rows of a picture into R'G'B'. Chroma samples are repeated, not interpolated.
class RowReader {
public:
    RowReader(const Picture& picture, bool isInterlaced, const Coding& coding)
        : mPicture(picture), mIsInterlaced(isInterlaced), mCoding(coding)
    {
        for (std::vector<float>& part : mLoaded) {
            part.resize(static_cast<std::size_t>(picture.width) + 8);
        }
    }

    void Read(int y, Row& row)
    {
        const auto width = static_cast<std::size_t>(mPicture.width);
        for (std::size_t part = 0; part < 3; ++part) {
            row[part].resize(width);
            Load(part, y);
        }
        if (mPicture.format.isRgb) {
            for (std::size_t part = 0; part < 3; ++part) {
                std::copy_n(mLoaded[part].begin(), width, row[part].begin());
            }
            return;
        }
        const exporting::LumaWeights weights = exporting::WeightsOf(mCoding.matrix);
        const auto fromCr = static_cast<float>(2 * (1 - weights.red));
        const auto fromCb = static_cast<float>(2 * (1 - weights.blue));
        const auto greenCr = static_cast<float>(2 * (1 - weights.red) * weights.red / weights.Green());
        const auto greenCb = static_cast<float>(2 * (1 - weights.blue) * weights.blue / weights.Green());
        const float lumaScale = mCoding.fullRange ? 1.0F : 255.0F / 219.0F;
        const float chromaScale = mCoding.fullRange ? 1.0F : 255.0F / 224.0F;
        const float black = mCoding.fullRange ? 0.0F : 16.0F;
        for (std::size_t x = 0; x < width; ++x) {
            const float luma = (mLoaded[0][x] - black) * lumaScale;
            const float cb = (mLoaded[1][x] - 128.0F) * chromaScale;
            const float cr = (mLoaded[2][x] - 128.0F) * chromaScale;
            row[0][x] = luma + fromCr * cr;
            row[1][x] = luma - greenCb * cb - greenCr * cr;
            row[2][x] = luma + fromCb * cb;
        }
    }

private:
    /// A component at the picture's full width, in 8-bit units.
    void Load(std::size_t part, int y)
    {
        const bool isChroma = part > 0 && !mPicture.format.isRgb;
        const ComponentView& own = mPicture.components[part];
        std::vector<float>& samples = mLoaded[part];
        if (!own) { // a grey picture
            if (isChroma) {
                std::fill(samples.begin(), samples.end(), 128.0F);
            } else {
                samples = mLoaded[0];
            }
            return;
        }
        verify::read::LoadRow(own, std::min(isChroma ? ChromaRow(y) : y, own.height - 1), samples.data());
        const float scale = own.isFloat             ? 255.0F
                            : mPicture.format.isRgb ? 255.0F / (std::exp2(static_cast<float>(own.bits)) - 1.0F)
                                                    : std::exp2(8.0F - static_cast<float>(own.bits));
        const int shift = isChroma ? mPicture.format.chromaShiftX : 0;
        // From the right, so that samples that are still needed are not written over.
        for (int x = mPicture.width - 1; x >= 0; --x) {
            samples[static_cast<std::size_t>(x)] =
                samples[static_cast<std::size_t>(std::min(x >> shift, own.width - 1))] * scale;
        }
    }

    /// In 4:2:0 of fields, each field has chroma rows of its own, in turns.
    [[nodiscard]] int ChromaRow(int y) const noexcept
    {
        const bool isByField = mIsInterlaced && mPicture.format.chromaShiftY == 1;
        return isByField ? (y >> 2 << 1) | (y & 1) : y >> mPicture.format.chromaShiftY;
    }

    const Picture& mPicture;
    bool mIsInterlaced;
    Coding mCoding;
    Row mLoaded;
};

std::byte ByteOf(float value) noexcept
{
    // Written so that a NaN is 0.
    return static_cast<std::byte>(value > 0.0F ? static_cast<int>(std::min(value, 255.0F) + 0.5F) : 0);
}

void Store(const Row& row, std::size_t width, std::byte* bgra) noexcept
{
    for (std::size_t x = 0; x < width; ++x) {
        for (std::size_t part = 0; part < 3; ++part) {
            bgra[4 * x + 2 - part] = ByteOf(row[part][x]);
        }
        bgra[4 * x + 3] = std::byte{255};
    }
}

Coding AnnouncedBy(const verify::read::PictureFacts& movie)
{
    const bool isSaid = movie.matrix != 2 && movie.matrix != 0;
    return {isSaid ? static_cast<Matrix>(movie.matrix) : Matrix::Bt709, movie.fullRange.value_or(false)};
}

} // namespace

PictureComparer::PictureComparer(const exporting::SignalSource& clip)
    : mClip(clip), mFacts(verify::reference::FactsOf(clip))
{
}

Picture PictureComparer::ClipPicture(const Picture& picture, const verify::read::PictureFacts& movie,
                                     std::int64_t frame)
{
    if (!mPictures || mIsInterlaced != picture.isInterlaced) {
        const auto layout = verify::reference::LayoutFor(picture.format);
        mIsSampleBySample = layout && picture.width == mFacts.width && picture.height == mFacts.height;
        mIsInterlaced = picture.isInterlaced;
        const auto rows = mIsInterlaced ? exporting::ChromaRows::Field : exporting::ChromaRows::Frame;
        mPictures = std::make_unique<verify::reference::ClipPictures>(
            mClip, mIsSampleBySample ? *layout : exporting::PictureLayout::Rgb48,
            verify::reference::CodingFor(mFacts, movie), rows);
    }
    return mPictures->Render(frame);
}

ComparedPictures PictureComparer::Compare(const Picture& picture, const verify::read::PictureFacts& movie,
                                          std::int64_t frame, int gain)
{
    const Picture clip = ClipPicture(picture, movie, frame);
    ComparedPictures compared;
    compared.isSampleBySample = mIsSampleBySample;
    compared.movie = exporting::AllocatePicture(exporting::PictureLayout::Bgra, picture.width, picture.height);
    compared.difference = exporting::AllocatePicture(exporting::PictureLayout::Bgra, clip.width, clip.height);

    Row row;
    RowReader shown(picture, mIsInterlaced, AnnouncedBy(movie));
    for (int y = 0; y < picture.height; ++y) {
        shown.Read(y, row);
        Store(row, static_cast<std::size_t>(picture.width),
              compared.movie.planes[0] + y * compared.movie.rowBytes[0]);
    }

    // Both through one coding, so that equal samples give equal colours whatever the movie announces. By colour
    // where there are no equal samples: then as the movie announces.
    const exporting::YCbCrCoding own = verify::reference::CodingFor(mFacts, movie);
    const Coding coding = mIsSampleBySample ? Coding{own.matrix, own.fullRange} : AnnouncedBy(movie);
    RowReader clipRows(clip, mIsInterlaced, coding);
    RowReader movieRows(picture, mIsInterlaced, coding);
    const auto width = static_cast<std::size_t>(clip.width);
    Row found;
    Row off;
    double sum = 0;
    for (int y = 0; y < clip.height; ++y) {
        clipRows.Read(y, row);
        movieRows.Read((2 * y + 1) * picture.height / (2 * clip.height), found);
        for (std::size_t part = 0; part < 3; ++part) {
            off[part].resize(width);
            for (std::size_t x = 0; x < width; ++x) {
                const std::size_t at = (2 * x + 1) * static_cast<std::size_t>(picture.width) / (2 * width);
                const float difference = found[part][at] - row[part][x];
                const float magnitude = std::abs(difference);
                sum += static_cast<double>(magnitude);
                compared.mostOff = std::max(compared.mostOff, static_cast<double>(magnitude));
                off[part][x] = 128.0F + static_cast<float>(gain) * difference;
            }
        }
        Store(off, width, compared.difference.planes[0] + y * compared.difference.rowBytes[0]);
    }
    compared.meanOff = sum / (3.0 * static_cast<double>(width) * clip.height);
    return compared;
}

} // namespace tessel::view
