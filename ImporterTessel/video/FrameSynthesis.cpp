#include "FrameSynthesis.h"

#include "FrameFormat.h"
#include "FrameView.h"
#include "Gradient.h"
#include "PaintColor.h"
#include "SwatchChart.h"

#include <ImporterTessel/host/FrameSuites.h>
#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/pixmill/PrintNumber.h>

#include <array>
#include <cstring>
#include <limits>
#include <optional>

namespace ImporterTessel {

namespace {

constexpr float kNumberHeight = 0.12F; // of the frame's height
constexpr std::array<float, 2> kNumberPosition{0.05F, 0.05F};

[[nodiscard]] bool IsComplete(const FrameSuites& suites) noexcept
{
    return suites.creator->createFrame != nullptr && suites.frame->getBounds != nullptr &&
           suites.frame->getRowBytes != nullptr && suites.frame->getPixels != nullptr;
}

/// Makes the frame and gives its handle as the creator left it behind the record's pointer.
[[nodiscard]] ksFrameHandle CreateFrame(const FrameSuites& suites, const TesselInfo& info,
                                        std::uint32_t hostCode, ksFrameRec& record)
{
    // Intended: the status is not tested. A creator that failed has left a null handle.
    (void)suites.creator->createFrame(record.frame, ksFrameAccessReadWrite, hostCode, info.mFrameWidth,
                                      info.mFrameHeight, /*reserved5=*/false, /*reserved6=*/0,
                                      info.mFramePAR.GetNumerator(), info.mFramePAR.GetDenominator(),
                                      record.extra16);
    ksFrameHandle frame = nullptr;
    std::memcpy(&frame, record.frame, sizeof frame); // the host's slot may be unaligned
    return frame;
}

[[nodiscard]] std::optional<FrameView> LookInto(const ksFrameSuite1& suite, ksFrameHandle frame,
                                                const TesselInfo& info, std::uint32_t paintCode)
{
    std::array<std::int32_t, 4> bounds{}; // asked for, not used: the settings say how large the frame is
    std::int32_t rowBytes = 0;
    void* pixels = nullptr;
    if (suite.getBounds(frame, bounds.data()) < 0 || suite.getRowBytes(frame, &rowBytes) < 0 ||
        suite.getPixels(frame, ksFrameAccessReadWrite, &pixels) < 0 || pixels == nullptr) {
        return std::nullopt;
    }
    return FrameView{.pixels = static_cast<std::byte*>(pixels),
                     .rowBytes = rowBytes,
                     .paintCode = paintCode,
                     .width = static_cast<std::uint32_t>(info.mFrameWidth),
                     .height = static_cast<std::uint32_t>(info.mFrameHeight)};
}

/// @return false for rows so far apart that twice their distance cannot be told to the image library.
[[nodiscard]] bool PaintFieldColors(const FrameView& view, const TesselInfo& info) noexcept
{
    if (info.mFieldType == kFieldProgressive) {
        PaintRows(view, view.pixels, view.rowBytes, view.height, info.mUpperFieldColor);
        return true;
    }
    const std::int64_t fieldStep = std::int64_t{2} * view.rowBytes;
    if (fieldStep > std::numeric_limits<std::int32_t>::max() ||
        fieldStep < std::numeric_limits<std::int32_t>::min()) {
        return false;
    }
    // Intended: both field orders draw alike, and the last row of an odd height belongs to neither field.
    const std::uint32_t fieldRows = view.height / 2;
    if (fieldRows > 0) {
        const auto step = static_cast<std::int32_t>(fieldStep);
        PaintRows(view, view.Row(0), step, fieldRows, info.mUpperFieldColor);
        PaintRows(view, view.Row(1), step, fieldRows, info.mLowerFieldColor);
    }
    return true;
}

/// The same frame walked from its last row in memory to its first.
[[nodiscard]] FrameView Flipped(const FrameView& view) noexcept
{
    FrameView flipped = view;
    flipped.pixels = view.Row(view.height - 1);
    flipped.rowBytes = -view.rowBytes;
    return flipped;
}

/// Paints what the settings ask for. An unknown render format paints nothing.
///
/// @return the view in which the number is to be printed, or nothing where the picture cannot be made.
[[nodiscard]] std::optional<FrameView> PaintPicture(const FrameView& view, const TesselInfo& info,
                                                    qelmediatypes::TickTime time)
{
    switch (info.mRenderFormat) {
    case kRenderFieldColors:
        if (!PaintFieldColors(view, info)) {
            return std::nullopt;
        }
        return view;
    case kRenderHorizontalGradient:
        PaintGradient(view, RampOfFrame(info, time.ToFrame32(info.mVideoFrameRate),
                                        info.mVideoDuration.ToFrame32(info.mVideoFrameRate)));
        return view;
    case kRenderColorSwatches: {
        if (!IsChartValid(info.mSwatchCoordinates, info.mSwatchColors, view.width, view.height) ||
            view.rowBytes == std::numeric_limits<std::int32_t>::min()) {
            return std::nullopt;
        }
        // The chart's format is stored bottom row first; its coordinates count from the picture's top.
        const FrameView topDown = Flipped(view);
        PaintChart(info.mSwatchCoordinates, info.mSwatchColors, topDown);
        return topDown;
    }
    default:
        return view;
    }
}

void PrintFrameNumber(const FrameView& view, std::int32_t frame) noexcept
{
    // Intended: the status is not tested, as with the fills.
    (void)PM_PrintNum(view.pixels, view.rowBytes, view.paintCode, view.width, view.height, frame, kNumberHeight,
                      kNumberPosition.data(), /*opaque=*/true);
}

} // namespace

std::int32_t SynthesizeFrame(const TesselInfo& info, const ksStdParms* stdParms, ksFrameRec& record)
{
    const FrameSuites* suites = AcquireFrameSuites(stdParms);
    if (suites == nullptr || !IsComplete(*suites) || record.frame == nullptr) {
        return ksResultFailed;
    }
    const FrameFormat format = FrameFormatOf(info.mPixelFormat);
    const ksFrameHandle frame = CreateFrame(*suites, info, format.hostCode, record);
    if (frame == nullptr) {
        return ksResultFailed;
    }
    const std::optional<FrameView> view = LookInto(*suites->frame, frame, info, format.paintCode);
    if (!view) {
        return ksResultFailed;
    }
    const qelmediatypes::TickTime time{record.time};
    const std::optional<FrameView> painted = PaintPicture(*view, info, time);
    if (!painted) {
        return ksResultFailed;
    }
    if (info.mDrawFrameFieldNumber) {
        PrintFrameNumber(*painted, time.ToFrame32(info.mVideoFrameRate));
    }
    return ksResultServed;
}

} // namespace ImporterTessel
