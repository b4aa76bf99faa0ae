#include "ClipPictures.h"

#include <tessel/export/convert/SourceFrame.h>
#include <tessel/export/plan/ClipConversion.h>

#include <numeric>

namespace tessel::verify::reference {
namespace {

using exporting::PictureLayout;

read::Picture Viewed(const exporting::Picture& picture)
{
    const exporting::LayoutInfo& info = exporting::InfoOf(picture.layout);
    read::Picture seen;
    seen.width = picture.width;
    seen.height = picture.height;
    seen.format.isRgb = info.family == exporting::ColorFamily::Rgb;
    seen.format.hasAlpha = info.HasAlpha();
    seen.format.isFloat = info.type == exporting::SampleType::F32;
    seen.format.bits = info.bits;
    seen.format.chromaShiftX = info.chromaShiftX;
    seen.format.chromaShiftY = info.chromaShiftY;
    seen.owner = std::make_shared<exporting::Picture>(picture);
    for (int index = 0; index < 4; ++index) {
        const exporting::ComponentTarget samples = exporting::ComponentOf(picture, index);
        if (samples.first == nullptr) {
            continue;
        }
        read::ComponentView& view = seen.components[index];
        view.first = samples.first;
        view.rowBytes = samples.rowBytes;
        view.step = samples.step;
        view.width = samples.width;
        view.height = samples.height;
        view.bits = info.bits;
        view.sampleBytes = info.type == exporting::SampleType::U8    ? 1
                           : info.type == exporting::SampleType::F32 ? 4
                                                                     : 2;
        view.isFloat = info.type == exporting::SampleType::F32;
        view.isBigEndian = info.type == exporting::SampleType::U16be;
    }
    return seen;
}

} // namespace

ClipFacts FactsOf(const exporting::SignalSource& clip)
{
    const importhost::ClipDescription& description = clip.Description();
    ClipFacts facts;
    facts.width = description.width;
    facts.height = description.height;
    if (description.timeScale > 0 && description.sampleSize > 0) {
        const std::int32_t divisor = std::gcd(description.timeScale, description.sampleSize);
        facts.rate = {description.timeScale / divisor, description.sampleSize / divisor};
    }
    facts.frameCount = description.frameCount;
    facts.pixelAspect = {description.pixelAspect.GetNumerator(), description.pixelAspect.GetDenominator()};
    switch (description.Order()) {
    case importhost::FieldOrder::UpperFirst:
        facts.fields = read::FieldOrder::UpperFirst;
        break;
    case importhost::FieldOrder::LowerFirst:
        facts.fields = read::FieldOrder::LowerFirst;
        break;
    default:
        break;
    }
    facts.primaries = description.colorCodes.primaries;
    facts.transfer = description.colorCodes.transfer;
    facts.matrix = description.colorCodes.matrix;
    facts.fullRange = description.colorCodes.fullRange != 0;
    facts.sampleRate = static_cast<int>(description.sampleRate);
    facts.channels = description.channelCount;
    facts.hasPicture =
        description.width > 0 && description.height > 0 && facts.rate.numerator > 0 && facts.frameCount > 0;
    if (facts.hasPicture) {
        const exporting::FrameView frame = clip.RenderFrame(0);
        facts.frameKind = exporting::KindOf(frame.format);
        document::ClipFacts asked = clip.Description();
        asked.frameFormat = frame.format;
        facts.fileKind = exporting::KindToKeep(asked);
        const exporting::SourceInfo source = exporting::SourceInfoOf(frame.format);
        facts.bits = source.type == exporting::SampleType::F32 ? 16 : source.bits;
    }
    return facts;
}

ClipPictures::ClipPictures(const exporting::SignalSource& clip, PictureLayout layout,
                           const exporting::YCbCrCoding& coding, exporting::ChromaRows chromaRows)
    : mClip(clip)
{
    mConversion.target = layout;
    mConversion.coding = coding;
    mConversion.chromaRows = chromaRows;
}

read::Picture ClipPictures::Render(std::int64_t frame)
{
    return Convert(mClip.RenderFrame(frame));
}

read::Picture ClipPictures::RenderRows(std::int64_t frame, int first, int count, int step)
{
    exporting::FrameView view = mClip.RenderFrame(frame);
    view.top += first * view.rowBytes;
    view.rowBytes *= step;
    view.height = count;
    return Convert(view);
}

std::vector<read::Picture> ClipPictures::RenderBands(std::int64_t frame, const Bands& bands)
{
    const exporting::FrameView whole = mClip.RenderFrame(frame);
    std::vector<read::Picture> pictures;
    for (int top = bands.first; top + bands.rows <= whole.height; top += bands.distance) {
        exporting::FrameView band = whole;
        band.top += top * whole.rowBytes;
        band.height = bands.rows;
        pictures.push_back(Convert(band));
    }
    return pictures;
}

ClipPictures::SparseFrame::SparseFrame(ClipPictures& maker, std::int64_t frame)
    : mMaker(maker), mView(maker.mClip.RenderFrame(frame)), mRows(static_cast<std::size_t>(mView.height))
{
}

const read::Picture& ClipPictures::SparseFrame::Row(int y)
{
    std::optional<read::Picture>& row = mRows[static_cast<std::size_t>(y)];
    if (!row) {
        exporting::FrameView view = mView;
        view.top += y * view.rowBytes;
        view.height = 1;
        row = mMaker.Convert(view);
    }
    return *row;
}

read::Picture ClipPictures::Convert(const exporting::FrameView& view)
{
    if (!mConverter || view.format != mConversion.source || view.width != mConversion.width ||
        view.height != mConversion.height) {
        mConversion.source = view.format;
        mConversion.width = view.width;
        mConversion.height = view.height;
        mConverter = std::make_unique<exporting::FrameConverter>(mConversion);
    }
    return Viewed(mConverter->Convert(view));
}

} // namespace tessel::verify::reference
