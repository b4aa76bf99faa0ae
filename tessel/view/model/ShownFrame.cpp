#include "ShownFrame.h"

#include <kestrel/qelmediatypes/TickTime.h>
#include <tessel/document/settings/IdentSegments.h>
#include <tessel/export/AudioBlocks.h>
#include <tessel/scopes/Meters.h>

#include <algorithm>
#include <utility>

namespace tessel::view {

FrameMaker::FrameMaker(std::shared_ptr<const ViewedClip> clip)
    : mClip(std::move(clip)),
      mToScreen(mClip->Facts().frameFormat, mClip->Facts().width, mClip->Facts().height),
      mBatches(mClip->Facts().frameFormat, mClip->Facts().width),
      mReader(mClip->Facts().frameFormat, mClip->Facts().width, RowBatches::kRows, mClip->Matrix())
{
    if (!mClip->ChannelNames().empty()) {
        mSound.emplace(mClip->Source());
    }
}

ShownFrame FrameMaker::Make(std::int64_t frame, const FrameWish& wish)
{
    ShownFrame shown;
    shown.frame = frame;
    shown.wish = wish;
    shown.pixels = mClip->Source().RenderFrame(frame);
    shown.screen = mToScreen.Convert(shown.pixels, wish.screenRowStep);
    if (wish.scopes) {
        shown.scopes = Count(shown.pixels, wish.scopeRowStep);
    }
    if (wish.codeCheck) {
        shown.faults = Check(shown.pixels);
        shown.marks = MarksOf(*shown.faults);
    }
    MeasureSound(shown);
    return shown;
}

std::shared_ptr<const ScopeCounts> FrameMaker::Count(const exporting::FrameView& pixels, int rowStep)
{
    auto counts = std::make_shared<ScopeCounts>();
    counts->matrix = mClip->Matrix();
    counts->rowStep = rowStep;
    mRows.Find(pixels, rowStep);
    mBatches.ForEach(pixels, mRows.Firsts(), [&](const exporting::FrameView& batch, int first, int count) {
        const scopes::Signal& signal = mReader.Read(batch);
        const scopes::RowWeights weights(mRows.Counts().data() + first, static_cast<std::size_t>(count));
        scopes::AddWaveform(signal.luma, counts->waveform, weights);
        scopes::AddWaveform(signal.red, counts->red, weights);
        scopes::AddWaveform(signal.green, counts->green, weights);
        scopes::AddWaveform(signal.blue, counts->blue, weights);
        scopes::AddVectors(signal, counts->vectors, weights);
    });
    scopes::AddUp(counts->waveform, counts->histograms[0]);
    scopes::AddUp(counts->red, counts->histograms[1]);
    scopes::AddUp(counts->green, counts->histograms[2]);
    scopes::AddUp(counts->blue, counts->histograms[3]);
    return counts;
}

std::shared_ptr<const scopes::CodeFaults> FrameMaker::Check(const exporting::FrameView& pixels)
{
    auto faults = std::make_shared<scopes::CodeFaults>();
    const auto width = static_cast<std::size_t>(pixels.width);
    faults->width = pixels.width;
    faults->height = pixels.height;
    faults->flags.resize(width * static_cast<std::size_t>(pixels.height));
    scopes::CodeFaults found;
    std::vector<std::uint8_t> kinds;
    mRows.Find(pixels, 1);
    mBatches.ForEach(pixels, mRows.Firsts(), [&](const exporting::FrameView& batch, int /*first*/, int count) {
        scopes::CheckCodes(mReader.Read(batch), batch.format, found);
        kinds.insert(kinds.end(), found.flags.begin(),
                     found.flags.begin() + static_cast<std::ptrdiff_t>(width) * count);
    });
    for (std::size_t y = 0; y < mRows.Kinds().size(); ++y) {
        const auto kind = static_cast<std::size_t>(mRows.Kinds()[y]);
        std::copy_n(kinds.data() + kind * width, width, faults->flags.data() + y * width);
    }
    for (const std::uint8_t flags : faults->flags) {
        faults->reserved += (flags & scopes::kReservedCode) != 0;
        faults->outsideRange += (flags & scopes::kOutsideRange) != 0;
        faults->outsideGamut += (flags & scopes::kOutsideGamut) != 0;
    }
    return faults;
}

void FrameMaker::MeasureSound(ShownFrame& shown)
{
    if (!mSound) {
        return;
    }
    const document::ClipFacts& facts = mClip->Facts();
    const FrameScale scale = mClip->Scale();
    if (scale.rateNumerator > 0) {
        const auto start = [&](std::int64_t frame) {
            return exporting::FrameStartSample(frame, scale.rateNumerator, scale.rateDenominator,
                                               mSound->SampleRate());
        };
        const std::int64_t first = start(shown.frame);
        mSound->Read(first, start(shown.frame + 1) - first, mSamples);
        for (const std::vector<float>& channel : mSamples) {
            shown.peaksDb.push_back(scopes::PeakDb(channel));
        }
    }
    if (mClip->Ident() >= 0) {
        shown.identSegment =
            document::IdentSegmentAt(mClip->Ident(), qelmediatypes::TickTime(shown.frame, facts.rate).Ticks());
    }
}

} // namespace tessel::view
