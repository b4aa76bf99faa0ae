#include "FrameConverter.h"

#include "BufferPool.h"
#include "ChromaFilter.h"
#include "Components.h"
#include "MatrixConversion.h"
#include "PixelOrder.h"
#include "SourceFrame.h"
#include "TargetPicture.h"
#include "TransferFunction.h"
#include "V210Packing.h"

#include <tessel/export/ExportError.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <optional>
#include <utility>

namespace tessel::exporting {
namespace {

/// Whether a frame in memory already is a picture of the layout.
bool IsSameArrangement(const PixelKind& kind, PictureLayout target) noexcept
{
    if (kind.storage == Storage::V210) {
        return target == PictureLayout::V210;
    }
    if (kind.storage == Storage::Pairs422) {
        return target == (kind.swapped ? PictureLayout::Yuyv : PictureLayout::Uyvy);
    }
    if (kind.storage != Storage::Interleaved8 || kind.family != ColorFamily::Rgb) {
        return false;
    }
    if (kind.HasAlpha()) {
        return target == (kind.swapped ? PictureLayout::Argb : PictureLayout::Bgra);
    }
    return target == (kind.swapped ? PictureLayout::Zrgb : PictureLayout::Bgr0);
}

bool NeedsMatrix(const SourceInfo& source, const LayoutInfo& target, const YCbCrCoding& coding) noexcept
{
    if (source.kind.family != target.family) {
        return true;
    }
    return target.family == ColorFamily::YCbCr && source.kind.matrix != coding.matrix;
}

} // namespace

class FrameConverter::Way {
public:
    Way() = default;
    Way(const Way&) = delete;
    Way& operator=(const Way&) = delete;
    virtual ~Way() = default;
    virtual Picture Convert(const FrameView& frame) = 0;
};

/// The frame's memory is the picture.
class FrameConverter::ShareWay final : public Way {
public:
    explicit ShareWay(PictureLayout target) : mTarget(target) {}

    Picture Convert(const FrameView& frame) override
    {
        Picture picture;
        picture.layout = mTarget;
        picture.width = frame.width;
        picture.height = frame.height;
        // Encoders and writers only read; their interfaces do not say so.
        picture.planes[0] = const_cast<std::byte*>(frame.top);
        picture.rowBytes[0] = frame.rowBytes;
        picture.owner = frame.owner;
        return picture;
    }

private:
    PictureLayout mTarget;
};

/// Pixels keep their samples, in another order.
class FrameConverter::ReorderWay final : public Way {
public:
    ReorderWay(const PixelOrder& order, PictureLayout target) : mOrder(order), mTarget(target) {}

    Picture Convert(const FrameView& frame) override
    {
        Picture picture = AllocatePicture(mTarget, frame.width, frame.height, mPool);
        for (std::int32_t y = 0; y < frame.height; ++y) {
            ReorderRow(frame.top + y * frame.rowBytes, frame.width, mOrder,
                       picture.planes[0] + y * picture.rowBytes[0]);
        }
        return picture;
    }

private:
    PixelOrder mOrder;
    PictureLayout mTarget;
    BufferPool mPool;
};

/// Packed samples of 10 bits become planes.
class FrameConverter::UnpackWay final : public Way {
public:
    static bool Serves(const SourceInfo& source, PictureLayout target) noexcept
    {
        return source.kind.storage == Storage::V210 && target == PictureLayout::Yuv422p10;
    }

    Picture Convert(const FrameView& frame) override
    {
        Picture picture = AllocatePicture(PictureLayout::Yuv422p10, frame.width, frame.height, mPool);
        UnpackV210(frame.top, frame.rowBytes, picture);
        return picture;
    }

private:
    BufferPool mPool;
};

/// Samples keep their values, or are widened by a power of two.
class FrameConverter::MoveWay final : public Way {
public:
    MoveWay(const Conversion& conversion, const SourceInfo& source)
        : mTarget(conversion.target), mSource(source), mReader(source, conversion.width, conversion.height)
    {
    }

    static bool Serves(const SourceInfo& source, const LayoutInfo& target) noexcept
    {
        if (source.chromaShiftX != target.chromaShiftX || target.chromaShiftY != 0) {
            return false;
        }
        if (source.type == SampleType::F32 || target.type == SampleType::F32) {
            return source.type == target.type && target.family == ColorFamily::Rgb;
        }
        // Full-range samples do not widen by a power of two.
        return target.family == ColorFamily::Rgb ? source.bits == target.bits : source.bits <= target.bits;
    }

    Picture Convert(const FrameView& frame) override
    {
        mReader.Take(frame);
        Picture picture = StartPicture(mTarget, frame.width, frame.height, mPool);
        const LayoutInfo& info = InfoOf(picture.layout);
        for (int component = 0; component < 3; ++component) {
            MoveSamples(mReader.Component(component), ComponentOf(picture, component),
                        info.bits - mSource.bits);
        }
        WriteAlpha(mSource, mReader.Component(3), info, ComponentOf(picture, 3), mAlpha);
        return FinishPicture(mTarget, std::move(picture), mPool);
    }

private:
    PictureLayout mTarget;
    SourceInfo mSource;
    SourceReader mReader;
    AlignedBuffer mAlpha;
    BufferPool mPool;
};

/// Through float planes: matrix and chroma upsampling by zimg, then chroma subsampling, then one rounding. One
/// stripe of rows after the other, so that the planes stay in the processor's cache.
class FrameConverter::ComputeWay final : public Way {
public:
    ComputeWay(const Conversion& conversion, const SourceInfo& source)
        : mConversion(conversion), mSource(source), mReader(source, conversion.width, conversion.height)
    {
        // zimg only knows whole pairs: an odd last column gets a partner.
        const bool hasHalfPair = source.chromaShiftX == 1 && conversion.width % 2 == 1;
        mMatrixWidth = conversion.width + (hasHalfPair ? 1 : 0);
        mStripeRows = std::min(kStripeRows, conversion.height);
        // Rows of 16 floats are rows on multiples of 64 bytes.
        mRowSamples = (static_cast<std::ptrdiff_t>(mMatrixWidth) + 15) / 16 * 16;
        const auto planeBytes =
            static_cast<std::size_t>(mRowSamples) * static_cast<std::size_t>(mStripeRows) * sizeof(float);
        const LayoutInfo& target = InfoOf(conversion.target);
        const bool upsamples = source.chromaShiftX > target.chromaShiftX;
        mSourceBits = source.bits;
        if (NeedsMatrix(source, target, conversion.coding) || upsamples) {
            const bool toRgb = target.family == ColorFamily::Rgb;
            mMatrix = std::make_unique<MatrixConversion>(
                MatrixInput{mMatrixWidth, mStripeRows, source.kind.family, source.kind.matrix, source.bits,
                            source.chromaShiftX == 1},
                target.family, toRgb ? Matrix::Rgb : conversion.coding.matrix);
            mSourceBits = 32;
            for (AlignedBuffer& plane : mInputs) {
                plane = AlignedBuffer(planeBytes);
            }
        }
        for (AlignedBuffer& plane : mPlanes) {
            plane = AlignedBuffer(planeBytes);
        }
    }

    Picture Convert(const FrameView& frame) override
    {
        mReader.Take(frame);
        Picture picture = StartPicture(mConversion.target, frame.width, frame.height, mPool);
        const LayoutInfo& info = InfoOf(picture.layout);
        for (std::int32_t y = 0; y < frame.height; y += kStripeRows) {
            const Stripe stripe{y, std::min(kStripeRows, frame.height - y)};
            ConvertStripe(stripe, picture);
            WriteAlpha(mSource, RowsOf(mReader.Component(3), stripe), info,
                       RowsOf(ComponentOf(picture, 3), stripe), mAlpha);
        }
        return FinishPicture(mConversion.target, std::move(picture), mPool);
    }

private:
    /// A stripe of fields has as many rows of either field, each with its neighbours that chroma is made from.
    static constexpr std::int32_t kStripeRows = 16;

    /// Far outside every code range, and small enough that no colour matrix overflows.
    static constexpr FiniteRange kForIntegers{.limit = 10000.0F};
    /// The sums of a colour matrix are up to 2.9 times as large as what goes in. The scale, a power of two,
    /// changes no digit; it is taken back as the sums are stored.
    static constexpr FiniteRange kForFloats{.limit = std::numeric_limits<float>::max(), .scale = 0.125F};

    /// Rows of the picture.
    struct Stripe {
        std::int32_t first;
        std::int32_t count;
    };

    void ConvertStripe(const Stripe& stripe, const Picture& picture)
    {
        if (mMatrix) {
            LoadThroughMatrix(stripe);
        } else {
            for (int component = 0; component < 3; ++component) {
                Load(RowsOf(mReader.Component(component), stripe),
                     mPlanes[static_cast<std::size_t>(component)]);
            }
        }
        const int sourceShift = mMatrix ? 0 : mSource.chromaShiftX;
        for (int component = 0; component < 3; ++component) {
            Store(component, stripe, sourceShift, picture);
        }
    }

    template <class Byte>
    static ComponentSamples<Byte> RowsOf(ComponentSamples<Byte> samples, const Stripe& rows) noexcept
    {
        samples.first += rows.first * samples.rowBytes;
        samples.height = rows.count;
        return samples;
    }

    [[nodiscard]] bool KeepsFloats() const noexcept
    {
        return mSource.type == SampleType::F32 && InfoOf(mConversion.target).type == SampleType::F32;
    }

    /// Loads a component as finite floats. For integer targets linear light becomes R'G'B'.
    void Load(const ComponentSource& source, const AlignedBuffer& buffer) const
    {
        LoadFiniteFloats(source, buffer.As<float>(), mRowSamples, KeepsFloats() ? kForFloats : kForIntegers);
        if (!mSource.kind.linear || KeepsFloats()) {
            return;
        }
        for (std::int32_t y = 0; y < source.height; ++y) {
            ApplyBt709Transfer(buffer.As<float>() + y * mRowSamples, source.width);
        }
    }

    void LoadThroughMatrix(const Stripe& stripe)
    {
        MatrixConversion::InputPlanes input{};
        for (int component = 0; component < 3; ++component) {
            const auto index = static_cast<std::size_t>(component);
            const AlignedBuffer& buffer = mInputs[index];
            input.data[index] = buffer.Bytes();
            input.rowBytes[index] = mRowSamples * static_cast<std::ptrdiff_t>(sizeof(float));
            const ComponentSource source = RowsOf(mReader.Component(component), stripe);
            if (mSource.type == SampleType::F32) {
                Load(source, buffer);
            } else {
                const int step = source.type == SampleType::U8 ? 1 : 2;
                MoveSamples(
                    source,
                    {buffer.Bytes(), input.rowBytes[index], step, source.width, source.height, source.type}, 0);
            }
        }
        mMatrix->Run(input, {{mPlanes[0].As<float>(), mPlanes[1].As<float>(), mPlanes[2].As<float>()},
                             mRowSamples * static_cast<std::ptrdiff_t>(sizeof(float))});
    }

    /// Subsamples where the target has less chroma, then rounds.
    void Store(int component, const Stripe& stripe, int sourceShift, const Picture& picture)
    {
        const LayoutInfo& target = InfoOf(picture.layout);
        const int heightShift = component != 0 ? target.chromaShiftY : 0;
        const ComponentTarget samples =
            RowsOf(ComponentOf(picture, component),
                   {stripe.first >> heightShift, RoundedUp(stripe.count, heightShift)});
        auto* plane = mPlanes[static_cast<std::size_t>(component)].As<float>();
        std::ptrdiff_t rowSamples = mRowSamples;
        if (component != 0 && (target.chromaShiftX > sourceShift || target.chromaShiftY > 0)) {
            const ComponentSource source = mReader.Component(component);
            FloatPlane chroma{plane, sourceShift == 0 ? mConversion.width : source.width, stripe.count};
            CloseGaps(chroma, mRowSamples);
            chroma = HalveWidth(chroma, target.chromaShiftX - sourceShift);
            if (target.chromaShiftY > 0) {
                chroma = HalveHeight(chroma, mConversion.chromaRows);
            }
            rowSamples = chroma.width;
        }
        Rounding rounding = RoundingFor(target, component, mSourceBits, mConversion.coding.fullRange);
        if (KeepsFloats()) {
            rounding.scale /= static_cast<double>(kForFloats.scale);
        }
        StoreFloats(plane, rowSamples, samples, rounding);
    }

    static std::int32_t RoundedUp(std::int32_t count, int shift) noexcept
    {
        return (count + (1 << shift) - 1) >> shift;
    }

    static void CloseGaps(const FloatPlane& plane, std::ptrdiff_t rowSamples) noexcept
    {
        if (rowSamples == plane.width) {
            return;
        }
        for (std::int32_t y = 1; y < plane.height; ++y) {
            std::memmove(plane.Row(y), plane.samples + y * rowSamples,
                         static_cast<std::size_t>(plane.width) * sizeof(float));
        }
    }

    Conversion mConversion;
    SourceInfo mSource;
    SourceReader mReader;
    std::int32_t mMatrixWidth = 0;
    std::int32_t mStripeRows = 0; ///< of the float planes
    std::ptrdiff_t mRowSamples = 0;
    int mSourceBits = 8; ///< of the integer codes that the float planes hold; 32: normalised values
    std::unique_ptr<MatrixConversion> mMatrix;
    std::array<AlignedBuffer, 3> mInputs;
    std::array<AlignedBuffer, 3> mPlanes;
    AlignedBuffer mAlpha;
    BufferPool mPool;
};

FrameConverter::FrameConverter(const Conversion& conversion)
    : mSource(conversion.source), mWidth(conversion.width), mHeight(conversion.height)
{
    const SourceInfo source = SourceInfoOf(conversion.source);
    const LayoutInfo& target = InfoOf(conversion.target);
    const bool keepsSamples = !NeedsMatrix(source, target, conversion.coding);
    if (KeepsBytes(conversion)) {
        mWay = std::make_unique<ShareWay>(conversion.target);
    } else if (const std::optional<PixelOrder> order = PixelOrderFor(source, target); keepsSamples && order) {
        mWay = std::make_unique<ReorderWay>(*order, conversion.target);
    } else if (keepsSamples && UnpackWay::Serves(source, conversion.target)) {
        mWay = std::make_unique<UnpackWay>();
    } else if (keepsSamples && MoveWay::Serves(source, target)) {
        mWay = std::make_unique<MoveWay>(conversion, source);
    } else {
        mWay = std::make_unique<ComputeWay>(conversion, source);
    }
}

bool FrameConverter::KeepsBytes(const Conversion& conversion)
{
    const SourceInfo source = SourceInfoOf(conversion.source);
    return !NeedsMatrix(source, InfoOf(conversion.target), conversion.coding) &&
           IsSameArrangement(source.kind, conversion.target);
}

FrameConverter::~FrameConverter() = default;
FrameConverter::FrameConverter(FrameConverter&&) noexcept = default;
FrameConverter& FrameConverter::operator=(FrameConverter&&) noexcept = default;

Picture FrameConverter::Convert(const FrameView& frame)
{
    if (frame.format != mSource || frame.width != mWidth || frame.height != mHeight) {
        throw ExportError("a frame comes in another pixel format or size than the first one");
    }
    return mWay->Convert(frame);
}

} // namespace tessel::exporting
