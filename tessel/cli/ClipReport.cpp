#include "ClipReport.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/PathText.h>
#include <kestrel/pixmill/PixelFormatCodes.h>
#include <kestrel/qelcore/text/FourCharacterText.h>
#include <kestrel/qelcore/text/PathText.h>
#include <tessel/export/plan/PictureGeometry.h>
#include <tessel/typed/Names.h>

#include <fmt/format.h>

#include <iterator>
#include <utility>

namespace tessel::cli {
namespace {

using document::ClipFacts;
using document::OpenedClip;
using exporting::FieldOrderName;
using importhost::ClipDescription;
using qelcore::serialization::AddToObject;
using qelcore::serialization::Object;
using qelcore::serialization::Value;
using typed::ChannelTypeName;
using typed::PixelAspectName;
using typed::PixelFormatName;

Value Integer(std::int64_t number)
{
    return Value(number);
}

/// What is known of the clip, with a pixel format also where no document names one: frame 0 is asked for it.
ClipFacts FactsOf(const OpenedClip& opened)
{
    ClipFacts facts = opened.facts;
    if (facts.pixelFormatCode == 0) {
        try {
            facts.pixelFormat = opened.clip.RenderFrame(0).Format();
            facts.pixelFormatCode = BR::BEToSDKPixelFormat(facts.pixelFormat);
        } catch (const importhost::HostError&) {
            // A clip whose frames cannot be made is described all the same.
        }
    }
    return facts;
}

bool IsStoredBottomRowFirst(const ClipFacts& facts)
{
    return pixmill::IsBottomRowFirst(PM_QELPixelFormatToPMPixelFormat(facts.pixelFormat));
}

double FramesPerSecond(const ClipDescription& description)
{
    return description.rate.HasFrames()
               ? static_cast<double>(description.timeScale) / static_cast<double>(description.sampleSize)
               : 0.0;
}

double Seconds(const ClipDescription& description)
{
    return description.rate.HasFrames()
               ? static_cast<double>(description.frameCount) * static_cast<double>(description.sampleSize) /
                     static_cast<double>(description.timeScale)
               : 0.0;
}

/// Lines of two columns.
class Table {
public:
    void Add(std::string_view name, std::string_view value)
    {
        fmt::format_to(std::back_inserter(mText), "{:<16}{}\n", name, value);
    }
    [[nodiscard]] std::string Take() { return std::move(mText); }

private:
    std::string mText;
};

std::string RatioText(qelmediatypes::PixelAspectRatio ratio)
{
    std::string text = fmt::format("{}/{}", ratio.GetNumerator(), ratio.GetDenominator());
    if (const auto name = PixelAspectName(ratio); !name.empty()) {
        text += fmt::format(" ({})", name);
    }
    return text;
}

std::string RateText(const ClipDescription& description)
{
    if (!description.rate.HasFrames()) {
        return fmt::format("none ({}/{} is no frame rate)", description.timeScale, description.sampleSize);
    }
    return fmt::format("{}/{} fps ({:.3f}), {} ticks per frame", description.timeScale, description.sampleSize,
                       FramesPerSecond(description), description.rate.ticksPerFrame);
}

std::string FormatText(const ClipFacts& description)
{
    return fmt::format("{} \"{}\"", PixelFormatName(description.pixelFormat),
                       qelcore::text::TextOfFourBytes(description.pixelFormatCode));
}

std::string AudioText(const ClipFacts& facts)
{
    std::string text = fmt::format("{} Hz, {} {}", facts.sampleRate, facts.channelCount,
                                   facts.channelCount == 1 ? "channel" : "channels");
    if (facts.channelType != 0) {
        text += fmt::format(", type {}", facts.channelType);
    }
    if (const auto layout = ChannelTypeName(facts.channelType); !layout.empty()) {
        text += fmt::format(" ({})", layout);
    }
    return text;
}

/// Frame number `frame` as hours, minutes, seconds and frames, counted with the nearest whole rate and without
/// dropping numbers: "01:00:00:00". "-" for a rate without frames.
std::string TimecodeText(std::int64_t frame, std::int32_t timeScale, std::int32_t sampleSize)
{
    if (timeScale <= 0 || sampleSize <= 0 || frame < 0) {
        return "-";
    }
    const std::int64_t nearest = (std::int64_t{timeScale} * 2 + sampleSize) / (std::int64_t{sampleSize} * 2);
    const std::int64_t rate = nearest > 0 ? nearest : 1;
    const std::int64_t seconds = frame / rate;
    return fmt::format("{:02}:{:02}:{:02}:{:02}", seconds / 3600, seconds / 60 % 60, seconds % 60,
                       frame % rate);
}

} // namespace

std::string ReportAsTable(const OpenedClip& opened)
{
    const ClipFacts description = FactsOf(opened);
    const ksSEIColorCodesRec& codes = description.colorCodes;
    Table table;
    table.Add("file", importhost::DisplayName(opened.clip.File()));
    table.Add("frame size", fmt::format("{}x{}", description.width, description.height));
    table.Add("pixel aspect", RatioText(description.pixelAspect));
    table.Add("pixel format", FormatText(description));
    if (IsStoredBottomRowFirst(description)) {
        table.Add("row order",
                  "bottom row first in memory; in field colors and gradient, \"upper\" and \"top\" "
                  "show at the bottom");
    }
    table.Add("field order", FieldOrderName(description.Order()));
    table.Add("frame rate", RateText(description));
    table.Add("duration",
              fmt::format("{} frames, {:.3f} s, {}", description.frameCount, Seconds(description),
                          TimecodeText(description.frameCount, description.timeScale, description.sampleSize)));
    // The record's fields are packed: copies, not references.
    table.Add("color space",
              fmt::format("{} (primaries {}, transfer {}, matrix {}, {} range)", description.colorSpaceName,
                          std::int32_t{codes.primaries}, std::int32_t{codes.transfer},
                          std::int32_t{codes.matrix}, codes.fullRange != 0 ? "full" : "limited"));
    table.Add("color managed", description.supportsColorManagement ? "yes" : "no");
    table.Add("audio", AudioText(description));
    if (!opened.warning.empty()) {
        table.Add("warning", (opened.isDefault ? "shown as the default clip: " : "") +
                                 importhost::OneLine(opened.warning));
    }
    return table.Take();
}

Value ReportAsDocument(const OpenedClip& opened)
{
    const ClipFacts description = FactsOf(opened);

    Object aspect;
    AddToObject(aspect, "numerator", Integer(description.pixelAspect.GetNumerator()));
    AddToObject(aspect, "denominator", Integer(description.pixelAspect.GetDenominator()));
    AddToObject(aspect, "name", Value(PixelAspectName(description.pixelAspect)));

    Object format;
    AddToObject(format, "code", Integer(description.pixelFormatCode));
    AddToObject(format, "fourCharacterCode",
                Value(qelcore::text::TextOfFourBytes(description.pixelFormatCode)));
    AddToObject(format, "name", Value(PixelFormatName(description.pixelFormat)));
    AddToObject(format, "bottomRowFirst", Value(IsStoredBottomRowFirst(description)));

    Object rate;
    AddToObject(rate, "numerator", Integer(description.timeScale));
    AddToObject(rate, "denominator", Integer(description.sampleSize));
    AddToObject(rate, "framesPerSecond", Value(FramesPerSecond(description)));
    AddToObject(rate, "ticksPerFrame",
                Integer(description.rate.HasFrames() ? description.rate.ticksPerFrame : 0));

    Object duration;
    AddToObject(duration, "frames", Integer(description.frameCount));
    AddToObject(duration, "seconds", Value(Seconds(description)));
    AddToObject(duration, "timecode",
                Value(TimecodeText(description.frameCount, description.timeScale, description.sampleSize)));

    Object color;
    AddToObject(color, "name", Value(description.colorSpaceName));
    AddToObject(color, "primaries", Integer(description.colorCodes.primaries));
    AddToObject(color, "transfer", Integer(description.colorCodes.transfer));
    AddToObject(color, "matrix", Integer(description.colorCodes.matrix));
    AddToObject(color, "fullRange", Value(description.colorCodes.fullRange != 0));
    AddToObject(color, "managed", Value(description.supportsColorManagement));

    Object video;
    AddToObject(video, "width", Integer(description.width));
    AddToObject(video, "height", Integer(description.height));
    AddToObject(video, "pixelAspectRatio", Value(std::move(aspect)));
    AddToObject(video, "pixelFormat", Value(std::move(format)));
    AddToObject(video, "fieldOrder", Value(FieldOrderName(description.Order())));
    AddToObject(video, "fieldType", Integer(description.fieldType));
    AddToObject(video, "frameRate", Value(std::move(rate)));
    AddToObject(video, "duration", Value(std::move(duration)));
    AddToObject(video, "colorSpace", Value(std::move(color)));

    Object audio;
    AddToObject(audio, "sampleRate", Value(static_cast<double>(description.sampleRate)));
    AddToObject(audio, "channelCount", Integer(description.channelCount));
    AddToObject(audio, "channelType", Integer(description.channelType));
    AddToObject(audio, "layout", Value(ChannelTypeName(description.channelType)));

    Object report;
    AddToObject(report, "file", Value(qelcore::text::UTF8Text(opened.clip.File())));
    AddToObject(report, "video", Value(std::move(video)));
    AddToObject(report, "audio", Value(std::move(audio)));
    AddToObject(report, "warning", Value(opened.warning));
    return Value(std::move(report));
}

} // namespace tessel::cli
