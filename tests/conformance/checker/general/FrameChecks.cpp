/// Frames of any importer: what is asked of the host, where pixels go, and what they depend on.

#include "Clip.h"

#include <algorithm>
#include <random>

namespace conformance {

namespace {

/// `count` frame times within the clip, chosen at random from the seed.
std::vector<std::int64_t> Times(const Plugin& plugin, const Clip& clip, std::size_t count)
{
    std::mt19937_64 random(plugin.Seed());
    const std::int64_t ticks = std::max<std::int64_t>(clip.TicksPerFrame(), 1);
    std::vector<std::int64_t> times;
    while (times.size() < count) {
        times.push_back(static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(clip.FrameCount())) *
                        ticks);
    }
    return times;
}

void FramesAreAsDescribed(Plugin& plugin)
{
    const Clip clip(plugin);
    clip.RequireVideo();
    (void)RequirePicture(plugin, clip, 0);
    ExpectEqual(static_cast<long long>(Foreign().creations.size()), 1, "frames made for one request");
    const CreateCall& call = Foreign().creations.front();
    ExpectEqual(call.access, ksFrameAccessReadWrite, "the access that the frame was made for");
    ExpectEqual(call.width, clip.Info().frameWidth, "the frame's width, beside the described one");
    ExpectEqual(call.height, clip.Info().frameHeight, "the frame's height, beside the described one");
    ExpectEqual(call.parNumerator, clip.Info().parNumerator, "the frame's pixel aspect numerator");
    ExpectEqual(call.parDenominator, clip.Info().parDenominator, "the frame's pixel aspect denominator");
}

/// The rows hold the same in every memory layout that a host may give.
void RowsAreTheHosts(Plugin& plugin)
{
    const Clip clip(plugin);
    clip.RequireVideo();
    const Picture plain = RequirePicture(plugin, clip, 0);
    for (const bool upwards : {false, true}) {
        for (const std::size_t padding : {std::size_t{0}, std::size_t{4}, std::size_t{52}, std::size_t{4096}}) {
            Foreign().upwards = upwards;
            Foreign().rowPadding = padding;
            Expect(RequirePicture(plugin, clip, 0) == plain,
                   "rows with " + std::to_string(padding) + " bytes of padding" +
                       (upwards ? ", upwards," : "") + " hold another picture");
        }
    }
}

/// A byte is either painted, and then the same whatever was there, or left as it was.
void OldPixelsDoNotShow(Plugin& plugin)
{
    const Clip clip(plugin);
    clip.RequireVideo();
    constexpr std::uint8_t kFillings[] = {0x00, 0x5A, 0xFF};
    std::vector<Picture> pictures;
    for (const std::uint8_t filling : kFillings) {
        Foreign().filling = filling;
        pictures.push_back(RequirePicture(plugin, clip, 0));
    }
    for (std::size_t at = 0; at < pictures[0].bytes.size(); ++at) {
        const std::uint8_t bytes[] = {pictures[0].bytes[at], pictures[1].bytes[at], pictures[2].bytes[at]};
        const bool isPainted = bytes[0] == bytes[1] && bytes[1] == bytes[2];
        if (!isPainted && !std::equal(std::begin(bytes), std::end(bytes), std::begin(kFillings))) {
            throw Violation("byte " + std::to_string(at) +
                            " of the picture depends on what the frame held before");
        }
    }
}

void PicturesDependOnTimeAlone(Plugin& plugin)
{
    const Clip clip(plugin);
    clip.RequireVideo();
    const std::vector<std::int64_t> times = Times(plugin, clip, 12);
    std::vector<Picture> pictures;
    for (const std::int64_t time : times) {
        pictures.push_back(RequirePicture(plugin, clip, time));
    }
    const Clip other(plugin);
    for (std::size_t at = times.size(); at-- > 0;) {
        const std::string when = " at " + std::to_string(times[at]) + " ticks";
        Expect(RequirePicture(plugin, clip, times[at]) == pictures[at], "a second request differs" + when);
        Expect(RequirePicture(plugin, other, times[at]) == pictures[at], "a second instance differs" + when);
    }
}

void PicturesLastAFrame(Plugin& plugin)
{
    const Clip clip(plugin);
    clip.RequireVideo();
    const std::int64_t ticks = clip.TicksPerFrame();
    if (ticks == 0) {
        throw Skipped("a frame of the document's clip has no whole number of ticks");
    }
    for (const std::int64_t time : Times(plugin, clip, 4)) {
        const Picture first = RequirePicture(plugin, clip, time);
        for (const std::int64_t within : {std::int64_t{1}, ticks / 2, ticks - 1}) {
            Expect(RequirePicture(plugin, clip, time + within) == first,
                   "the picture changes within the frame at " + std::to_string(time) + " ticks, " +
                       std::to_string(within) + " ticks after its begin");
        }
    }
}

void AnyTimeIsAnswered(Plugin& plugin)
{
    const Clip clip(plugin);
    clip.RequireVideo();
    const std::int64_t ticks = std::max<std::int64_t>(clip.TicksPerFrame(), 1);
    for (const std::int64_t time :
         {std::int64_t{-1}, -ticks, clip.FrameCount() * ticks, std::int64_t{1} << 60,
          std::int64_t{0x7FFFFFFFFFFFFFFF}, static_cast<std::int64_t>(0x8000000000000000ULL)}) {
        (void)RequestPicture(plugin, clip.Instance(), time);
    }
    (void)RequirePicture(plugin, clip, 0);
}

/// Sends a frame request that the host lets fail.
void ExpectFailure(const Plugin& plugin, const Clip& clip, const std::string& where)
{
    ExpectEqual(RequestPicture(plugin, clip.Instance(), 0).answer, ksResultFailed,
                "the answer to the frame request " + where);
}

void MissingSuitesFail(Plugin& plugin)
{
    const Clip clip(plugin);
    clip.RequireVideo();
    for (const char* refused : {kFrameCreatorSuiteName, kFrameSuiteName}) {
        Foreign().refusedSuites = {refused};
        ExpectFailure(plugin, clip, std::string("without the ") + refused);
    }
    Foreign().refusedSuites.clear();
    (void)RequirePicture(plugin, clip, 0);
}

void RefusedFramesFail(Plugin& plugin)
{
    const Clip clip(plugin);
    clip.RequireVideo();
    (void)RequirePicture(plugin, clip, 0);
    Foreign().createNothing = true;
    ExpectFailure(plugin, clip, "where the host makes no frame");
    Foreign().createNothing = false;
    (void)RequirePicture(plugin, clip, 0);
}

void FailingQueriesFail(Plugin& plugin)
{
    const Clip clip(plugin);
    clip.RequireVideo();
    (void)RequirePicture(plugin, clip, 0);
    for (const auto& [status, what] : {std::pair{&ForeignHostState::pixelsStatus, "pixels"},
                                       {&ForeignHostState::rowBytesStatus, "row step"}}) {
        Foreign().*status = -7;
        ExpectFailure(plugin, clip, std::string("where the host does not give the frame's ") + what);
        Foreign().*status = 0;
    }
    (void)RequirePicture(plugin, clip, 0);
}

} // namespace

std::vector<Check> FrameChecks()
{
    return {
        {"frame.as-described",
         "A frame request creates one frame, of the described size and pixel aspect ratio",
         FramesAreAsDescribed},
        {"frame.rows",
         "Pixels follow the host's row step, also a padded or a negative one, and no other byte is written",
         RowsAreTheHosts},
        {"frame.old-pixels", "No pixel depends on what the frame held before the request", OldPixelsDoNotShow},
        {"frame.pure", "A picture depends on the document and the time only", PicturesDependOnTimeAlone},
        {"frame.steady", "A picture does not change within the duration of its frame", PicturesLastAFrame},
        {"frame.any-time", "Times before the start, after the end and at both ends of 64 bits do no harm",
         AnyTimeIsAnswered},
        {"frame.no-suites", "A frame request answers 5 without its suites, and 0 once the host has them",
         MissingSuitesFail},
        {"frame.refused", "A frame request answers 5 where the host creates no frame", RefusedFramesFail},
        {"frame.failing-query",
         "A frame request answers 5 where the host does not give the frame's pixels or row step",
         FailingQueriesFail},
    };
}

} // namespace conformance
