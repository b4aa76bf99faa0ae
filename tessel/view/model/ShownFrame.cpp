#include "ShownFrame.h"

#include <kestrel/qelmediatypes/TickTime.h>
#include <tessel/document/settings/IdentSegments.h>
#include <tessel/export/AudioBlocks.h>
#include <tessel/scopes/Meters.h>

#include <utility>

namespace tessel::view {

FrameMaker::FrameMaker(std::shared_ptr<const ViewedClip> clip)
    : mClip(std::move(clip)), mToScreen({.source = mClip->Facts().frameFormat,
                                         .target = exporting::PictureLayout::Bgra,
                                         .width = mClip->Facts().width,
                                         .height = mClip->Facts().height,
                                         .coding = {}})
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
    shown.screen = mToScreen.Convert(shown.pixels);
    if (wish.scopes) {
        shown.scopes = Count(shown.pixels, wish.scopeRowStep);
    }
    if (wish.codeCheck) {
        if (!mCheckReader) {
            mCheckReader.emplace(shown.pixels.format, shown.pixels.width, shown.pixels.height, mClip->Matrix());
        }
        const auto faults = std::make_shared<scopes::CodeFaults>();
        scopes::CheckCodes(mCheckReader->Read(shown.pixels), shown.pixels.format, *faults);
        shown.faults = faults;
    }
    MeasureSound(shown);
    return shown;
}

std::shared_ptr<const ScopeCounts> FrameMaker::Count(const exporting::FrameView& pixels, int rowStep)
{
    if (!mScopeReader || mScopeRowStep != rowStep) {
        mScopeReader.emplace(pixels.format, pixels.width, pixels.height, mClip->Matrix(), rowStep);
        mScopeRowStep = rowStep;
    }
    const scopes::Signal& signal = mScopeReader->Read(pixels);
    auto counts = std::make_shared<ScopeCounts>();
    counts->matrix = mClip->Matrix();
    counts->rowStep = rowStep;
    scopes::AddWaveform(signal.luma, counts->waveform);
    scopes::AddWaveform(signal.red, counts->red);
    scopes::AddWaveform(signal.green, counts->green);
    scopes::AddWaveform(signal.blue, counts->blue);
    scopes::AddVectors(signal, counts->vectors);
    scopes::AddHistogram(signal.luma, counts->histograms[0]);
    scopes::AddHistogram(signal.red, counts->histograms[1]);
    scopes::AddHistogram(signal.green, counts->histograms[2]);
    scopes::AddHistogram(signal.blue, counts->histograms[3]);
    return counts;
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
