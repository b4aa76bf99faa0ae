#include "SyncJudge.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

namespace tessel::verify::judge {
namespace {

/// Drift is told from so much on.
constexpr double kLeastSeconds = 2;

/// By how many samples the encoders of a codec delay the sound. Most containers can say so, and few programs
/// heed it.
struct CodecDelay {
    std::string_view codec;
    double samples;
};
constexpr std::array kDelays{CodecDelay{"aac", 1024}, CodecDelay{"aac", 2048}, CodecDelay{"aac", 2112},
                             CodecDelay{"ac3", 256},  CodecDelay{"eac3", 256}, CodecDelay{"mp2", 481},
                             CodecDelay{"mp3", 576},  CodecDelay{"mp3", 1105}, CodecDelay{"opus", 312}};

/// The codec's delay that a late sound is late by, in samples; 0: none.
/// @param uncertainty  of `seconds`. A codec's delay is exact to the sample, and times of files are rounded.
double DelayOf(const read::SoundFacts& sound, double seconds, double uncertainty)
{
    constexpr double kRounding = 0.0005; // of files that count milliseconds
    for (const CodecDelay& delay : kDelays) {
        if (sound.codec == delay.codec &&
            std::abs(seconds - delay.samples / sound.sampleRate) < uncertainty + kRounding) {
            return delay.samples;
        }
    }
    return 0;
}

/// By how much the pictures come late: `late` seconds at time `lateAt`, growing by `drift` seconds per second.
struct PictureTime {
    double at = 0;     ///< of the first picture
    double lateAt = 0; ///< where `late` is measured
    double late = 0;
    double drift = 0;
    double driftSigma = 0;
    double span = 0; ///< seconds between the first and the last picture that tell
    bool isByNumber = false;
};

/// Pictures whose frame is known by what they show; else the first one's time.
PictureTime TimeOfPictures(const SyncCase& given)
{
    PictureTime time;
    const bool isFree = given.movie.startsAnywhere;
    time.late = isFree ? given.movie.startSeconds.value_or(0.0) : 0.0;
    const auto method = given.alignment.method;
    if (!given.clip.hasPicture || (method != AlignmentMethod::Number && method != AlignmentMethod::Color)) {
        if (isFree && !given.alignment.pictures.empty()) {
            time.late = given.alignment.pictures.front().seconds.value_or(time.late);
        }
        return time;
    }
    std::vector<double> at;
    std::vector<double> late;
    for (const align::PictureRecord& picture : given.alignment.pictures) {
        if (picture.frame >= 0 && picture.seconds) {
            at.push_back(*picture.seconds);
            late.push_back(*picture.seconds - given.clip.SecondsOf(picture.frame));
        }
    }
    if (at.empty()) {
        return time;
    }
    time.isByNumber = true;
    // Times are rounded to the container's unit: the median of a second tells better than one picture. Of an
    // odd number of pictures it is the one in the middle.
    const std::size_t head = std::min<std::size_t>(at.size() / 8, 15) * 2 + 1;
    std::vector<double> first(late.begin(), late.begin() + static_cast<std::ptrdiff_t>(head));
    std::nth_element(first.begin(), first.begin() + static_cast<std::ptrdiff_t>(head / 2), first.end());
    time.late = first[head / 2];
    time.at = at.front();
    time.lateAt = at[head / 2];
    time.span = at.back() - at.front();
    const auto count = static_cast<double>(at.size());
    double meanAt = 0;
    double meanLate = 0;
    for (std::size_t i = 0; i < at.size(); ++i) {
        meanAt += at[i] / count;
        meanLate += late[i] / count;
    }
    double xx = 0;
    double xy = 0;
    for (std::size_t i = 0; i < at.size(); ++i) {
        xx += (at[i] - meanAt) * (at[i] - meanAt);
        xy += (at[i] - meanAt) * (late[i] - meanLate);
    }
    if (xx > 0) {
        time.drift = xy / xx;
        double rest = 0;
        for (std::size_t i = 0; i < at.size(); ++i) {
            const double off = late[i] - meanLate - time.drift * (at[i] - meanAt);
            rest += off * off;
        }
        // Rounding errs the same way for many pictures: as if only one in ten told something new.
        time.driftSigma = std::sqrt(rest / count / xx * 10);
    }
    return time;
}

/// The unit that times of pictures are rounded to, in seconds; 0 where frames last whole numbers of it.
double RoundingOf(const SyncCase& given)
{
    const double unit = given.movie.picture ? given.movie.picture->timeUnitSeconds : 0;
    if (unit <= 0 || given.clip.rate.numerator <= 0) {
        return unit;
    }
    const double units = 1 / (given.clip.rate.Value() * unit);
    return std::abs(units - std::round(units)) < 1e-6 * units ? 0 : unit;
}

} // namespace

void JudgeSync(const SyncCase& given, Findings& findings)
{
    const SoundEvidence& sound = given.sound;
    if (sound.trouble != SoundTrouble::None) {
        findings.NotVisible(id::kSyncOffset);
        findings.NotVisible(id::kSyncDrift);
        return;
    }
    if (findings.HasFault(id::kOrderReversed)) {
        // Each moment of the sound belongs to another picture by another amount.
        findings.NotVisible(id::kSyncOffset, "pictures in the clip's order");
        findings.NotVisible(id::kSyncDrift, "pictures in the clip's order");
        return;
    }
    const TimeMap& map = sound.map;
    const PictureTime pictures = TimeOfPictures(given);
    const bool hasFrames = given.clip.rate.numerator > 0;
    if (!map.hasEdges) {
        findings.NotVisible(id::kSyncOffset,
                            "a channel identification (a steady tone tells only where it starts)");
    } else {
        // Sound of time t is the clip's of tempo × t + shift, so it is late by what is left.
        const double at = std::max(pictures.at, sound.movie.start);
        // At another rate pictures come later and later; elsewhere, steps of their times are no slope.
        const double since = findings.HasFault(id::kContainerRate) ? at - pictures.lateAt : at - pictures.at;
        double late = (at - map.tempo * at - map.pieces.front().shift) - pictures.late - pictures.drift * since;
        const double unit = pictures.isByNumber ? RoundingOf(given) : 0;
        const double uncertainty = std::min(3 * map.sigma + unit / 2 + 0.5 / sound.movie.rate, 1.0);
        const double frames = hasFrames ? std::abs(late) * given.clip.rate.Value() : 0;
        std::string text =
            fmt::format("the sound is {:.1f} ms {}", std::abs(late) * 1000, late > 0 ? "late" : "early");
        if (hasFrames && given.clip.hasPicture) {
            text += fmt::format(" ({:.2f} frames at {:.6g} per second)", frames, given.clip.rate.Value());
        }
        if (!pictures.isByNumber) {
            text += ", by the movie's times";
        }
        const double tolerance = findings.Limits().Of(id::kSyncOffset) / 1000;
        if (const double delay = DelayOf(*given.movie.sound, late, uncertainty);
            delay > 0 && late > tolerance) {
            findings.Note(fmt::format("{}: the delay of {} ({} samples), which nothing takes away [{}]", text,
                                      given.movie.sound->codec, delay, id::kSyncOffset));
            late = 0;
        }
        static_cast<void>(findings.Judge(id::kSyncOffset, {0, late * 1000, uncertainty * 1000}, text));
        if (frames < 1) {
            // A cadence moves each picture by another part of a frame.
            findings.Because(id::kOrderCadence, id::kSyncOffset);
        }
    }
    const double drift = (1 - map.tempo) - pictures.drift;
    const double sigma = std::hypot(map.tempoSigma, pictures.driftSigma);
    const double seconds = given.sound.mix.seconds;
    // A coarse measure shows no good clock, but a bad one all the same.
    const double limit = findings.Limits().Of(id::kSyncDrift) * 1e-6;
    const bool isCoarse = 3 * sigma > limit && std::abs(drift) <= limit + 3 * sigma;
    // Stretched sound is at another speed than its own pitch says, whatever the pictures are.
    if (map.tempoSigma <= 0 || (!pictures.isByNumber && !map.IsStretched()) || seconds < kLeastSeconds ||
        isCoarse) {
        findings.NotVisible(id::kSyncDrift);
        return;
    }
    static_cast<void>(
        findings.Judge(id::kSyncDrift, {0, drift * 1e6, 3 * sigma * 1e6},
                       fmt::format("the sound {} the picture by {:.2f} ms a second{}",
                                   drift > 0 ? "falls behind" : "runs ahead of", std::abs(drift) * 1000,
                                   map.IsStretched() ? ": it was stretched, and its pitch kept" : "")));
    if (map.IsStretched()) {
        // Pieces that are laid over each other sound like noise and clicks where they meet.
        for (const std::string_view seam :
             {id::kAudioNoise, id::kAudioHarmonics, id::kAudioDropout, id::kAudioGain, id::kAudioDc}) {
            findings.Because(id::kSyncDrift, seam);
        }
    }
}

} // namespace tessel::verify::judge
