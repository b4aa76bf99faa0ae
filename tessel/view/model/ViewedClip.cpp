#include "ViewedClip.h"

#include <kestrel/importhost/ClipFailure.h>
#include <kestrel/importhost/PathText.h>
#include <tessel/document/settings/IdentSegments.h>
#include <tessel/export/ExportError.h>
#include <tessel/export/plan/ColorTags.h>
#include <tessel/export/plan/PictureGeometry.h>
#include <tessel/scopes/Colorimetry.h>
#include <tessel/verify/reference/ClipSound.h>

#include <fmt/format.h>

#include <utility>

namespace tessel::view {
namespace {

/// @throws exporting::ExportError
document::OpenedClip RequireFrames(document::OpenedClip opened)
{
    if (opened.facts.frameCount < 1) {
        throw exporting::ExportError(
            importhost::DisplayName(opened.clip.File()) +
            ": the clip has no frames, so there is nothing to show; give it a duration");
    }
    return opened;
}

/// "BGRA 4444 32f" of "KsPixelFormat_BGRA_4444_32f".
std::string FormatName(BR::PixelFormat format)
{
    for (const BR::PixelFormatInfo& info : BR::AllPixelFormats()) {
        if (info.format == format) {
            return std::string(info.constant.substr(info.constant.find('_') + 1));
        }
    }
    return "unknown";
}

} // namespace

ViewedClip::ViewedClip(std::shared_ptr<const importhost::Importer> importer, const std::filesystem::path& file)
    : mOpened(RequireFrames(document::OpenClip(std::move(importer), file))), mSource(mOpened),
      mAsked(mSource, 0)
{
    const document::ClipFacts& facts = mAsked.Description();
    if (facts.sampleRate >= 1.0F && facts.channelCount <= importhost::kMostChannels) {
        for (int channel = 0; channel < facts.channelCount; ++channel) {
            mChannelNames.push_back(verify::reference::ChannelName(channel, facts.channelCount));
        }
    }
    if (facts.isTesselDocument) {
        mIdent = document::IdentOf(file).value_or(-1);
    }
}

FrameScale ViewedClip::Scale() const
{
    const exporting::PictureGeometry geometry = exporting::GeometryOf(Facts());
    return {Facts().frameCount, geometry.rateNumerator, geometry.rateDenominator};
}

PictureSize ViewedClip::Size() const
{
    return {Facts().width, Facts().height, Facts().pixelAspect};
}

FirstField ViewedClip::First() const
{
    return Facts().Order() == importhost::FieldOrder::LowerFirst ? FirstField::Lower : FirstField::Upper;
}

exporting::Matrix ViewedClip::Matrix() const
{
    const exporting::PixelKind kind = exporting::KindOf(Facts().frameFormat);
    return kind.family == exporting::ColorFamily::YCbCr
               ? kind.matrix
               : exporting::CodingFor(Facts().colorCodes, exporting::CodeRanges::LimitedAndFull).matrix;
}

std::string ViewedClip::Description() const
{
    const exporting::PixelKind kind = exporting::KindOf(Facts().frameFormat);
    std::string shown;
    if (kind.family == exporting::ColorFamily::YCbCr) {
        shown = fmt::format("{} matrix, limited range", scopes::NameOf(kind.matrix));
    } else {
        shown = kind.linear ? "linear light through the BT.709 curve" : "R'G'B' as it is";
    }
    if (kind.HasAlpha()) {
        shown += ", alpha not applied";
    }
    return fmt::format("{}x{} {}, {}, no display profile", Facts().width, Facts().height,
                       FormatName(Facts().frameFormat), shown);
}

} // namespace tessel::view
