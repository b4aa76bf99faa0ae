#include "FrameConverter.h"

#include "Components.h"
#include "ExportError.h"
#include "MatrixConversion.h"
#include "TransferFunction.h"
#include "V210Packing.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace tessel::exporting {
namespace {

/// What a frame's samples are, as a layout would say it.
struct SourceInfo {
    PixelKind kind;
    SampleType type = SampleType::U8;
    int bits = 8;
    int chromaShiftX = 0;
    std::array<ComponentPlace, 4> components;
};

SourceInfo SourceInfoOf(BR::PixelFormat format)
{
    SourceInfo info;
    info.kind = KindOf(format);
    const bool isRgb = info.kind.family == ColorFamily::Rgb;
    const auto interleaved = [&](std::uint8_t bytes) {
        // BGRA and VUYA have their first component third; ARGB has alpha first.
        std::array<std::uint8_t, 4> order{2, 1, 0, 3};
        if (isRgb && info.kind.swapped) {
            order = {1, 2, 3, 0};
        }
        for (std::size_t i = 0; i < 4; ++i) {
            info.components[i] = {0, static_cast<std::uint8_t>(order[i] * bytes),
                                  static_cast<std::uint8_t>(4 * bytes)};
        }
        if (!info.kind.HasAlpha()) {
            info.components[3] = {};
        }
    };
    switch (info.kind.storage) {
    case Storage::Interleaved8:
        interleaved(1);
        break;
    case Storage::InterleavedF:
        info.type = SampleType::F32;
        info.bits = 32;
        interleaved(4);
        break;
    case Storage::Pairs422:
        info.chromaShiftX = 1;
        info.components = InfoOf(info.kind.swapped ? PictureLayout::Yuyv : PictureLayout::Uyvy).components;
        break;
    case Storage::V210:
        info.type = SampleType::U16;
        info.bits = 10;
        info.chromaShiftX = 1;
        info.components = InfoOf(PictureLayout::Yuv422p10).components;
        break;
    case Storage::Planar420:
    case Storage::Dv:
        throw ExportError("frames do not come in planar or compressed formats");
    }
    return info;
}

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

/// Components of frames; v210 is unpacked into planes first.
class SourceReader {
public:
    SourceReader(const SourceInfo& info, std::int32_t width, std::int32_t height) : mInfo(info)
    {
        if (info.kind.storage == Storage::V210) {
            mUnpacked = AllocatePicture(PictureLayout::Yuv422p10, width, height);
        }
    }

    /// Makes `frame` the current one.
    void Take(const FrameView& frame) noexcept
    {
        mFrame = &frame;
        if (mInfo.kind.storage != Storage::V210) {
            return;
        }
        for (std::int32_t y = 0; y < frame.height; ++y) {
            const auto row = [&](std::size_t plane) {
                return reinterpret_cast<std::uint16_t*>(mUnpacked.planes[plane] +
                                                        y * mUnpacked.rowBytes[plane]);
            };
            UnpackV210Row(frame.top + y * frame.rowBytes, frame.width, row(0), row(1), row(2));
        }
    }

    [[nodiscard]] ComponentSource Component(int index) const noexcept
    {
        if (mInfo.kind.storage == Storage::V210) {
            const ComponentTarget samples = ComponentOf(mUnpacked, index);
            return {samples.first, samples.rowBytes, samples.step, samples.width, samples.height, samples.type};
        }
        const ComponentPlace place = mInfo.components[static_cast<std::size_t>(index)];
        if (place.plane < 0) {
            return {};
        }
        const bool isChroma = index == 1 || index == 2;
        const int shift = isChroma ? mInfo.chromaShiftX : 0;
        return {mFrame->top + place.offset,
                mFrame->rowBytes,
                place.step,
                (mFrame->width + (1 << shift) - 1) >> shift,
                mFrame->height,
                mInfo.type};
    }

private:
    SourceInfo mInfo;
    Picture mUnpacked;
    const FrameView* mFrame = nullptr;
};

/// Pictures in the making: v210 targets are filled as planes and packed at the end.
Picture StartPicture(PictureLayout target, std::int32_t width, std::int32_t height)
{
    return AllocatePicture(target == PictureLayout::V210 ? PictureLayout::Yuv422p10 : target, width, height);
}

Picture FinishPicture(PictureLayout target, Picture picture)
{
    if (target != PictureLayout::V210) {
        const ComponentPlace filler = InfoOf(target).filler;
        if (filler.plane >= 0) {
            FillSamples({picture.planes[0] + filler.offset, picture.rowBytes[0], filler.step, picture.width,
                         picture.height, SampleType::U8},
                        0xFF);
        }
        return picture;
    }
    Picture packed = AllocatePicture(PictureLayout::V210, picture.width, picture.height);
    for (std::int32_t y = 0; y < picture.height; ++y) {
        const auto row = [&](std::size_t plane) {
            return reinterpret_cast<const std::uint16_t*>(picture.planes[plane] + y * picture.rowBytes[plane]);
        };
        PackV210Row(row(0), row(1), row(2), picture.width, packed.planes[0] + y * packed.rowBytes[0]);
    }
    return packed;
}

float HighestCode(int bits) noexcept
{
    return static_cast<float>((1U << bits) - 1U);
}

/// Rounding of a component from the domain that its floats are in to the target's codes.
/// @param sourceBits  integer codes of so many bits, or 32 for normalised values
Rounding RoundingFor(const LayoutInfo& target, int component, int sourceBits, bool fullRange) noexcept
{
    Rounding rounding;
    const bool isFloat = target.type == SampleType::F32;
    const bool isLinearScale = target.family == ColorFamily::Rgb || component == 3;
    if (isLinearScale) {
        rounding.highest = isFloat ? 1.0F : HighestCode(target.bits);
        rounding.scale = rounding.highest / (sourceBits == 32 ? 1.0F : HighestCode(sourceBits));
        return rounding;
    }
    // Codes of 8 bits times this are codes of the target's.
    const auto unit = static_cast<float>(1U << (target.bits - 8));
    // Codes that are kept stay as they are; only those that are made keep clear of the timing codes.
    const bool keepsClear = sourceBits == 32 && !fullRange;
    rounding.lowest = keepsClear ? unit : 0.0F;
    rounding.highest = keepsClear ? 255.0F * unit - 1.0F : HighestCode(target.bits);
    if (sourceBits != 32) {
        rounding.scale = unit / static_cast<float>(1U << (sourceBits - 8));
    } else if (fullRange) {
        rounding.scale = HighestCode(target.bits);
        rounding.offset = component == 0 ? 0.0F : 128.0F * unit;
    } else {
        rounding.scale = (component == 0 ? 219.0F : 224.0F) * unit;
        rounding.offset = (component == 0 ? 16.0F : 128.0F) * unit;
    }
    return rounding;
}

/// Alpha: moved where the sample type is the same, else rescaled; opaque where the source has none.
void WriteAlpha(const SourceInfo& info, const ComponentSource& source, const LayoutInfo& target,
                const ComponentTarget& samples, AlignedBuffer& scratch)
{
    if (!target.HasAlpha()) {
        return;
    }
    if (source.first == nullptr) {
        FillSamples(samples, static_cast<std::uint16_t>((1U << std::min<int>(target.bits, 16)) - 1U));
        return;
    }
    if (source.type == target.type && info.bits == target.bits) {
        MoveSamples(source, samples, 0);
        return;
    }
    const std::size_t count = static_cast<std::size_t>(source.width) * static_cast<std::size_t>(source.height);
    if (scratch.Size() < count * sizeof(float)) {
        scratch = AlignedBuffer(count * sizeof(float));
    }
    LoadFloats(source, scratch.As<float>(), source.width);
    StoreFloats(scratch.As<float>(), source.width, samples, RoundingFor(target, 3, info.bits, false));
}

} // namespace

FrameView ViewOf(const importhost::Frame& frame)
{
    auto owner = std::make_shared<importhost::Frame>(frame);
    return {frame.Format(), frame.Width(), frame.Height(), frame.Row(0), frame.RowBytes(), std::move(owner)};
}

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
        Picture picture = StartPicture(mTarget, frame.width, frame.height);
        const LayoutInfo& info = InfoOf(picture.layout);
        for (int component = 0; component < 3; ++component) {
            MoveSamples(mReader.Component(component), ComponentOf(picture, component),
                        info.bits - mSource.bits);
        }
        WriteAlpha(mSource, mReader.Component(3), info, ComponentOf(picture, 3), mAlpha);
        return FinishPicture(mTarget, std::move(picture));
    }

private:
    PictureLayout mTarget;
    SourceInfo mSource;
    SourceReader mReader;
    AlignedBuffer mAlpha;
};

/// Through float planes: matrix and chroma upsampling by zimg, then chroma subsampling, then one rounding.
class FrameConverter::ComputeWay final : public Way {
public:
    ComputeWay(const Conversion& conversion, const SourceInfo& source)
        : mConversion(conversion), mSource(source), mReader(source, conversion.width, conversion.height)
    {
        // zimg only knows whole pairs: an odd last column gets a partner.
        const bool hasHalfPair = source.chromaShiftX == 1 && conversion.width % 2 == 1;
        mMatrixWidth = conversion.width + (hasHalfPair ? 1 : 0);
        // Rows of 16 floats are rows on multiples of 64 bytes.
        mRowSamples = (static_cast<std::ptrdiff_t>(mMatrixWidth) + 15) / 16 * 16;
        const auto planeBytes =
            static_cast<std::size_t>(mRowSamples) * static_cast<std::size_t>(conversion.height) * sizeof(float);
        const LayoutInfo& target = InfoOf(conversion.target);
        const bool upsamples = source.chromaShiftX > target.chromaShiftX;
        mSourceBits = source.bits;
        if (NeedsMatrix(source, target, conversion.coding) || upsamples) {
            const bool toRgb = target.family == ColorFamily::Rgb;
            mMatrix = std::make_unique<MatrixConversion>(
                MatrixInput{mMatrixWidth, conversion.height, source.kind.family, source.kind.matrix,
                            source.bits, source.chromaShiftX == 1},
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
        Picture picture = StartPicture(mConversion.target, frame.width, frame.height);
        const LayoutInfo& info = InfoOf(picture.layout);
        if (mMatrix) {
            LoadThroughMatrix();
        } else {
            for (int component = 0; component < 3; ++component) {
                Load(component, mPlanes[static_cast<std::size_t>(component)], mRowSamples);
            }
        }
        const int sourceShift = mMatrix ? 0 : mSource.chromaShiftX;
        for (int component = 0; component < 3; ++component) {
            Store(component, info, sourceShift, ComponentOf(picture, component));
        }
        WriteAlpha(mSource, mReader.Component(3), info, ComponentOf(picture, 3), mAlpha);
        return FinishPicture(mConversion.target, std::move(picture));
    }

private:
    /// Loads a component as floats; unusual floats are made usual and linear light becomes R'G'B'.
    void Load(int component, const AlignedBuffer& buffer, std::ptrdiff_t rowSamples) const
    {
        const ComponentSource source = mReader.Component(component);
        LoadFloats(source, buffer.As<float>(), rowSamples);
        if (mSource.type != SampleType::F32) {
            return;
        }
        const bool toFloat = InfoOf(mConversion.target).type == SampleType::F32;
        for (std::int32_t y = 0; y < source.height; ++y) {
            float* row = buffer.As<float>() + y * rowSamples;
            MakeFinite(row, source.width);
            if (mSource.kind.linear && !toFloat) {
                ApplyBt709Transfer(row, source.width);
            }
        }
    }

    void LoadThroughMatrix()
    {
        MatrixConversion::InputPlanes input{};
        for (int component = 0; component < 3; ++component) {
            const auto index = static_cast<std::size_t>(component);
            const AlignedBuffer& buffer = mInputs[index];
            input.data[index] = buffer.Bytes();
            input.rowBytes[index] = mRowSamples * static_cast<std::ptrdiff_t>(sizeof(float));
            if (mSource.type == SampleType::F32) {
                Load(component, buffer, mRowSamples);
            } else {
                const ComponentSource source = mReader.Component(component);
                const int step = source.type == SampleType::U8 ? 1 : 2;
                MoveSamples(
                    source,
                    {buffer.Bytes(), input.rowBytes[index], step, source.width, source.height, source.type}, 0);
            }
        }
        mMatrix->Run(input, {{mPlanes[0].As<float>(), mPlanes[1].As<float>(), mPlanes[2].As<float>()},
                             mRowSamples * static_cast<std::ptrdiff_t>(sizeof(float))});
    }

    static void RepeatLastColumn(const ComponentTarget& samples) noexcept
    {
        const auto sampleBytes = static_cast<std::size_t>(samples.step);
        for (std::int32_t y = 0; y < samples.height; ++y) {
            std::byte* last = samples.first + y * samples.rowBytes + (samples.width - 1) * samples.step;
            std::memcpy(last + sampleBytes, last, sampleBytes);
        }
    }

    /// Subsamples where the target has less chroma, then rounds.
    void Store(int component, const LayoutInfo& target, int sourceShift, const ComponentTarget& samples)
    {
        auto* plane = mPlanes[static_cast<std::size_t>(component)].As<float>();
        std::ptrdiff_t rowSamples = mRowSamples;
        if (component != 0 && (target.chromaShiftX > sourceShift || target.chromaShiftY > 0)) {
            const ComponentSource source = mReader.Component(component);
            FloatPlane chroma{plane, sourceShift == 0 ? mConversion.width : source.width, mConversion.height};
            CloseGaps(chroma, mRowSamples);
            chroma = HalveWidth(chroma, target.chromaShiftX - sourceShift);
            if (target.chromaShiftY > 0) {
                chroma = HalveHeight(chroma, mConversion.chromaRows);
            }
            rowSamples = chroma.width;
        }
        StoreFloats(plane, rowSamples, samples,
                    RoundingFor(target, component, mSourceBits, mConversion.coding.fullRange));
    }

    static void CloseGaps(const FloatPlane& plane, std::ptrdiff_t rowSamples) noexcept
    {
        for (std::int32_t y = 1; y < plane.height; ++y) {
            std::memmove(plane.Row(y), plane.samples + y * rowSamples,
                         static_cast<std::size_t>(plane.width) * sizeof(float));
        }
    }

    Conversion mConversion;
    SourceInfo mSource;
    SourceReader mReader;
    std::int32_t mMatrixWidth = 0;
    std::ptrdiff_t mRowSamples = 0;
    int mSourceBits = 8; ///< of the integer codes that the float planes hold; 32: normalised values
    std::unique_ptr<MatrixConversion> mMatrix;
    std::array<AlignedBuffer, 3> mInputs;
    std::array<AlignedBuffer, 3> mPlanes;
    AlignedBuffer mAlpha;
};

FrameConverter::FrameConverter(const Conversion& conversion)
{
    const SourceInfo source = SourceInfoOf(conversion.source);
    const LayoutInfo& target = InfoOf(conversion.target);
    const bool keepsSamples = !NeedsMatrix(source, target, conversion.coding);
    if (keepsSamples && IsSameArrangement(source.kind, conversion.target)) {
        mWay = std::make_unique<ShareWay>(conversion.target);
    } else if (keepsSamples && MoveWay::Serves(source, target)) {
        mWay = std::make_unique<MoveWay>(conversion, source);
    } else {
        mWay = std::make_unique<ComputeWay>(conversion, source);
    }
}

FrameConverter::~FrameConverter() = default;
FrameConverter::FrameConverter(FrameConverter&&) noexcept = default;
FrameConverter& FrameConverter::operator=(FrameConverter&&) noexcept = default;

Picture FrameConverter::Convert(const FrameView& frame)
{
    return mWay->Convert(frame);
}

} // namespace tessel::exporting
