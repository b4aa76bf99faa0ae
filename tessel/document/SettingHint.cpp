#include "SettingHint.h"

namespace tessel::document {

std::string_view SettingHint(const ClipFacts& clip, Setting setting) noexcept
{
    if (!clip.isTesselDocument) {
        return {};
    }
    switch (setting) {
    case Setting::FrameSize:
        return R"(: "mFrameWidth" and "mFrameHeight" must be 1 or more)";
    case Setting::FrameRate:
        // 254016000000 ticks a second / 25
        return R"(: "ticksperframe" of "mVideoFrameRate" must be a positive number of ticks, )"
               "such as 10160640000 for 25 frames per second";
    case Setting::Duration:
        return R"(: "mVideoDuration" must be at least one frame long)";
    case Setting::SampleRate:
        return R"(: "mSampleRate" must be a whole number from 1 to 16777216)";
    case Setting::ChannelCount:
        return R"(: "mNumChannels" must be 1 or more)";
    }
    return {};
}

} // namespace tessel::document
