#include "Signal.h"

#include "Colorimetry.h"

#include <tessel/export/ExportError.h>
#include <tessel/export/convert/Components.h>
#include <tessel/export/convert/TransferFunction.h>

#include <array>

namespace tessel::scopes {
namespace {

using exporting::ColorFamily;
using exporting::FrameView;
using exporting::SampleType;

/// What a code of a Y'CbCr component is in the ranges of `Signal`.
struct Scale {
    float offset;
    float factor;
};

Scale ScaleOf(const exporting::SourceInfo& source, int component) noexcept
{
    if (source.type == SampleType::F32) {
        return {0.0F, 1.0F};
    }
    if (source.kind.family == ColorFamily::Rgb) {
        return {0.0F, 1.0F / 255.0F};
    }
    // BT.601-7 and BT.709-6: 219 steps of Y' above 16, 224 steps of chroma about 128, at 8 bits.
    const auto unit = static_cast<float>(1 << (source.bits - 8));
    return component == 0 ? Scale{16.0F * unit, 1.0F / (219.0F * unit)}
                          : Scale{128.0F * unit, 1.0F / (224.0F * unit)};
}

void Load(const exporting::ComponentSource& samples, Scale scale, Plane& plane)
{
    plane.Resize(samples.width, samples.height);
    exporting::LoadFloats(samples, plane.samples.data(), plane.width);
    if (samples.type == SampleType::F32) {
        return; // as it is, also where it is no number: the check of codes wants to see that
    }
    for (float& sample : plane.samples) {
        sample = (sample - scale.offset) * scale.factor;
    }
}

} // namespace

SignalReader::SignalReader(BR::PixelFormat format, std::int32_t width, std::int32_t height,
                           exporting::Matrix matrix, int rowStep)
    : mSource(exporting::SourceInfoOf(format)),
      mMatrix(mSource.kind.family == ColorFamily::YCbCr ? mSource.kind.matrix : matrix), mRowStep(rowStep),
      mHeight((height + rowStep - 1) / rowStep), mReader(mSource, width, mHeight)
{
    if (mSource.kind.family == ColorFamily::YCbCr) {
        mToRgb.emplace(exporting::Conversion{.source = format,
                                             .target = exporting::PictureLayout::Gbrpf32,
                                             .width = width,
                                             .height = mHeight,
                                             .coding = {}});
    }
}

const Signal& SignalReader::Read(const FrameView& frame)
{
    FrameView rows = frame;
    rows.rowBytes *= mRowStep;
    rows.height = (frame.height + mRowStep - 1) / mRowStep;
    if (rows.height != mHeight) {
        throw exporting::ExportError("a frame comes in another size than the first one");
    }
    mReader.Take(rows);
    if (mSource.kind.family == ColorFamily::YCbCr) {
        ReadYCbCr(rows);
    } else {
        ReadRgb();
    }
    return mSignal;
}

void SignalReader::ReadYCbCr(const FrameView& rows)
{
    const std::array<Plane*, 3> own{&mSignal.luma, &mSignal.cb, &mSignal.cr};
    const std::array<Plane*, 3> others{&mSignal.red, &mSignal.green, &mSignal.blue};
    const exporting::Picture picture = mToRgb->Convert(rows);
    for (int component = 0; component < 3; ++component) {
        const auto index = static_cast<std::size_t>(component);
        Load(mReader.Component(component), ScaleOf(mSource, component), *own[index]);
        const exporting::ComponentTarget samples = exporting::ComponentOf(picture, component);
        Load({samples.first, samples.rowBytes, samples.step, samples.width, samples.height, samples.type}, {},
             *others[index]);
    }
}

void SignalReader::ReadRgb()
{
    const std::array<Plane*, 3> own{&mSignal.red, &mSignal.green, &mSignal.blue};
    for (int component = 0; component < 3; ++component) {
        Plane& plane = *own[static_cast<std::size_t>(component)];
        Load(mReader.Component(component), ScaleOf(mSource, component), plane);
        if (mSource.kind.linear) {
            exporting::ApplyBt709Transfer(plane.samples.data(),
                                          static_cast<std::int32_t>(plane.samples.size()));
        }
    }
    const exporting::LumaWeights weights = exporting::WeightsOf(mMatrix);
    const auto red = static_cast<float>(weights.red);
    const auto green = static_cast<float>(weights.Green());
    const auto blue = static_cast<float>(weights.blue);
    const auto toCb = static_cast<float>(1 / (2 * (1 - weights.blue)));
    const auto toCr = static_cast<float>(1 / (2 * (1 - weights.red)));
    for (Plane* plane : {&mSignal.luma, &mSignal.cb, &mSignal.cr}) {
        plane->Resize(mSignal.red.width, mSignal.red.height);
    }
    for (std::size_t i = 0; i < mSignal.red.samples.size(); ++i) {
        const float luma =
            red * mSignal.red.samples[i] + green * mSignal.green.samples[i] + blue * mSignal.blue.samples[i];
        mSignal.luma.samples[i] = luma;
        mSignal.cb.samples[i] = (mSignal.blue.samples[i] - luma) * toCb;
        mSignal.cr.samples[i] = (mSignal.red.samples[i] - luma) * toCr;
    }
}

} // namespace tessel::scopes
