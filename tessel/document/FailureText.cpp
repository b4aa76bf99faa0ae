#include "FailureText.h"

#include "SwatchRules.h"

#include <kestrel/importabi/ResultCodes.h>

#include <string_view>

namespace tessel::document {

using importhost::FailureCause;
using importhost::FrameRefusal;

std::optional<std::string> FailureText(const importhost::ClipFailure& failure,
                                       const importhost::ClipDescription& description,
                                       const DocumentFacts& facts)
{
    if (failure.cause == FailureCause::FrameRefused && failure.refusal == FrameRefusal::FormatCannotBePainted) {
        return R"("mPixelFormat": )" + std::to_string(facts.pixelFormatCode) +
               " is no pixel format that can be painted, one of the host's 48 was expected";
    }
    if (failure.cause == FailureCause::FrameRefused && failure.refusal == FrameRefusal::SizeOutOfRange) {
        return "a frame of " + std::to_string(description.width) + "x" + std::to_string(description.height) +
               R"( cannot be made: "mFrameWidth" and "mFrameHeight" must be 1 to )" +
               std::to_string(importhost::kLargestFrameSide);
    }
    if (failure.cause == FailureCause::TooManyChannels) {
        return R"("mNumChannels": )" + importhost::FailureText(failure, description);
    }
    if (failure.cause == FailureCause::PluginFailed && failure.result == ksResultFailed &&
        facts.renderFormat == kRenderSwatches) {
        return BrokenSwatchRule(description, facts);
    }
    return std::nullopt;
}

bool IsFailureReport(const qelcore::logging::Message& message) noexcept
{
    return message.context == "plugin.KsImportModule";
}

std::string FailureText(const importhost::PluginFailure& failure)
{
    // "plugin.KsImportModule  importmod:0x0 Threw an EXCEPTION during  selector:38. what() returned REASON
    // [assertion "false", FILE, line 1329]"
    constexpr std::string_view kBefore = "what() returned ";
    constexpr std::string_view kAfter = " [assertion";
    const std::string_view report = failure.Report();
    const std::size_t before = report.find(kBefore);
    if (before == std::string_view::npos) {
        return failure.what();
    }
    const std::size_t begin = before + kBefore.size();
    return failure.Failure() + ": " + std::string(report.substr(begin, report.rfind(kAfter) - begin));
}

} // namespace tessel::document
