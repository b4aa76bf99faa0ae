#include "ClipFailure.h"

#include "Clip.h"

#include <kestrel/importabi/ResultCodes.h>

namespace importhost {
namespace {

std::string Size(std::int32_t width, std::int32_t height)
{
    return std::to_string(width) + "x" + std::to_string(height);
}

std::string RefusalText(FrameRefusal refusal, const std::string& size)
{
    switch (refusal) {
    case FrameRefusal::FormatCannotBePainted:
        return "the plug-in asked for a frame in a pixel format that cannot be painted";
    case FrameRefusal::SizeOutOfRange:
        return "a frame of " + size + " cannot be made: width and height must be 1 to " +
               std::to_string(kLargestFrameSide);
    case FrameRefusal::TooLarge:
        return "a frame of " + size + " in this pixel format is too large: it would pass 2 GiB";
    case FrameRefusal::OutOfMemory:
        return "no memory for a frame of " + size;
    case FrameRefusal::None:
        break;
    }
    return {};
}

} // namespace

std::string FailureText(const ClipFailure& failure, const ClipDescription& description)
{
    const std::string size = Size(description.width, description.height);
    switch (failure.cause) {
    case FailureCause::FrameRefused:
        return RefusalText(failure.refusal, size);
    case FailureCause::NoFrame:
        return "the plug-in made no frame";
    case FailureCause::ForeignFrame:
        return "the plug-in gave a frame that this host did not make for the request";
    case FailureCause::WrongFrameSize:
        return "the plug-in made a frame of " + Size(failure.frameWidth, failure.frameHeight) +
               ", but it described the clip as " + size;
    case FailureCause::TooManyChannels:
        return std::to_string(description.channelCount) + " audio channels, at most " +
               std::to_string(kMostChannels) + " can be played";
    case FailureCause::PluginFailed:
        break;
    }
    return failure.result == ksResultOutOfMemory
               ? "the plug-in ran out of memory"
               : "the plug-in failed (result " + std::to_string(failure.result) + ")";
}

} // namespace importhost
