#include "OrderJudge.h"

#include "EditScript.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace tessel::verify::judge {
namespace {

constexpr std::array kOrderChecks{id::kOrderMissing, id::kOrderRepeated,  id::kOrderInserted, id::kOrderSwapped,
                                  id::kOrderFrozen,  id::kOrderReversed,  id::kOrderCadence,  id::kOrderHead,
                                  id::kOrderTail,    id::kOrderUnreadable};

/// The steps of one kind together.
struct Steps {
    std::int64_t frames = 0;
    std::int64_t pictures = 0;
    std::vector<Span> frameSpans;   ///< of the clip
    std::vector<Span> pictureSpans; ///< of the movie
};

Steps Gather(const EditScript& script, std::string_view kind)
{
    Steps steps;
    for (const EditStep& step : script.steps) {
        if (step.kind != kind) {
            continue;
        }
        steps.frames += step.frames;
        steps.pictures += step.pictures;
        if (step.frame >= 0 && step.frames > 0) {
            steps.frameSpans.push_back({step.frame, step.frame + step.frames - 1});
        }
        if (step.pictures > 0) {
            steps.pictureSpans.push_back({step.picture, step.picture + step.pictures - 1});
        }
    }
    return steps;
}

std::string_view Is(std::int64_t count)
{
    return count == 1 ? "is" : "are";
}

std::string Named(std::string_view noun, std::int64_t count, const std::vector<Span>& spans)
{
    return fmt::format("{}{} {}", noun, count == 1 ? "" : "s", TextOf(spans));
}

std::string MessageOf(std::string_view kind, const Steps& steps, const EditScript& script,
                      AlignmentMethod method)
{
    const auto frames = [&] { return Named("frame", steps.frames, steps.frameSpans); };
    const auto pictures = [&] { return Named("picture", steps.pictures, steps.pictureSpans); };
    if (kind == id::kOrderMissing) {
        return fmt::format("{} {} missing", frames(), Is(steps.frames));
    }
    if (kind == id::kOrderRepeated) {
        return fmt::format("{} {} repeated ({})", frames(), Is(steps.frames), pictures());
    }
    if (kind == id::kOrderInserted) {
        return steps.frameSpans.empty()
                   ? fmt::format("{} {} not of the clip", pictures(), Is(steps.pictures))
                   : fmt::format("{} {} put in and {} elsewhere", pictures(), Is(steps.pictures),
                                 steps.pictures == 1 ? "belongs" : "belong");
    }
    if (kind == id::kOrderSwapped) {
        return fmt::format("{} {} swapped", frames(), Is(steps.frames));
    }
    if (kind == id::kOrderFrozen) {
        return fmt::format("the picture freezes in place of {}", frames());
    }
    if (kind == id::kOrderReversed) {
        return fmt::format("{} {} shown backwards", frames(), Is(steps.frames));
    }
    if (kind == id::kOrderCadence) {
        return script.cadence;
    }
    if (kind == id::kOrderHead) {
        return fmt::format("{} {} missing at the start", frames(), Is(steps.frames));
    }
    if (kind == id::kOrderTail) {
        return fmt::format("{} {} missing at the end", frames(), Is(steps.frames));
    }
    const bool isOne = steps.pictures == 1;
    return method == AlignmentMethod::Color
               ? fmt::format("{} {} colours of no frame", pictures(), isOne ? "has" : "have")
               : fmt::format("{} {} no readable number", pictures(), isOne ? "shows" : "show");
}

/// What the unit of the check counts.
double CountOf(std::string_view kind, const Steps& steps)
{
    const CheckInfo* check = FindCheck(kind);
    const bool countsPictures = check->unit == "pictures" || kind == id::kOrderRepeated;
    return static_cast<double>(countsPictures ? steps.pictures : steps.frames);
}

} // namespace

void JudgeOrder(const align::Alignment& alignment, double framesPerPicture, Findings& findings,
                AlignmentReport& report)
{
    report.method = alignment.pictures.empty() ? AlignmentMethod::None : alignment.method;
    report.frames = alignment.frameCount;
    report.pictures = static_cast<std::int64_t>(alignment.pictures.size());
    std::vector<std::int64_t> shown;
    double least = 1;
    for (const align::PictureRecord& picture : alignment.pictures) {
        shown.push_back(picture.frame < alignment.frameCount ? picture.frame : -1);
        if (picture.frame >= 0) {
            ++report.matched;
            least = std::min(least, static_cast<double>(picture.confidence));
        }
    }
    report.confidence = report.matched > 0 ? least : 0;
    if (report.method == AlignmentMethod::None || report.method == AlignmentMethod::Time) {
        for (const std::string_view kind : kOrderChecks) {
            findings.NotVisible(kind);
        }
        return;
    }
    const EditScript script = MakeEditScript(shown, alignment.frameCount, framesPerPicture);
    report.steps = script.steps;
    for (const std::string_view kind : kOrderChecks) {
        const Steps steps = Gather(script, kind);
        if (steps.frames == 0 && steps.pictures == 0) {
            findings.AsExpected(kind);
            continue;
        }
        Finding& finding = findings.Fault(kind, MessageOf(kind, steps, script, alignment.method));
        const bool isCadence = kind == id::kOrderCadence;
        finding.expected = isCadence ? Quantity(1.0) : Quantity(0.0);
        finding.found = isCadence ? Quantity(script.cadenceRatio) : Quantity(CountOf(kind, steps));
        finding.uncertainty = 0;
        finding.unit = isCadence ? "pictures per frame" : finding.unit;
        finding.frames = steps.frameSpans.empty() ? steps.pictureSpans : steps.frameSpans;
    }
}

} // namespace tessel::verify::judge
