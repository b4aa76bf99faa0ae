#include "FailureText.h"

#include "SwatchRules.h"

#include <kestrel/importabi/ResultCodes.h>

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

} // namespace tessel::document
