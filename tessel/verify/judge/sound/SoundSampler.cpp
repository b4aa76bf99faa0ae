#include "SoundSampler.h"

#include "Spectrum.h"

#include <algorithm>
#include <cmath>

namespace tessel::verify::judge {
namespace {

/// The longest identification repeats after 13.4 s.
constexpr double kLearnSeconds = 15;
/// So much sound that is no silence shows which tones there are.
constexpr double kProbeSeconds = 4;
/// Samples of all channels, 32 MB.
constexpr std::size_t kMostProbed = 8U << 20U;
/// A tone counts from 40 dB below the loudest on.
constexpr double kOnLevel = 0.01;
constexpr double kLowest = 16;    ///< Hz
constexpr double kHighest = 0.47; ///< of the sample rate
constexpr double kSilent = 3e-5;  ///< -90 dBFS

/// Clicks and decoders' accidents are no tones.
float Sane(float sample) noexcept
{
    return std::isfinite(sample) ? std::clamp(sample, -64.0F, 64.0F) : 0.0F;
}

} // namespace

SoundSampler::SoundSampler(const exporting::SignalSource& clip)
{
    if (clip.Description().channelCount < 1) {
        mTrouble = SoundTrouble::NoClipSound;
        return;
    }
    mClip.emplace(clip);
    LearnTones();
}

void SoundSampler::LearnTones()
{
    reference::Samples samples;
    mClip->Read(0, std::min(mClip->Length(), static_cast<std::int64_t>(kLearnSeconds * mClip->SampleRate())),
                samples);
    const std::vector<SpectralPeak> peaks = PeaksOf(samples, mClip->SampleRate(), 10);
    for (const SpectralPeak& peak : peaks) {
        if (peak.amplitude > kSilent) {
            mTones.push_back(peak.frequency);
            mClipLoudest = std::max(mClipLoudest, peak.amplitude);
        }
    }
    std::sort(mTones.begin(), mTones.end());
    if (mTones.empty()) {
        mTrouble = SoundTrouble::NoClipSound;
    } else if (mTones.front() < kLowest || mTones.back() > kHighest * mClip->SampleRate()) {
        mTrouble = SoundTrouble::UnfitTone;
    }
}

void SoundSampler::Take(const read::Sound& sound)
{
    if (mTrouble != SoundTrouble::None || sound.channels.empty() || sound.sampleRate <= 0) {
        return;
    }
    if (mRate == 0) {
        mRate = sound.sampleRate;
        mStart = sound.seconds.value_or(0.0);
        mProbe.resize(sound.channels.size());
    }
    reference::Samples samples = sound.channels;
    samples.resize(mProbe.size());
    for (std::vector<float>& channel : samples) {
        channel.resize(sound.channels.front().size());
        std::transform(channel.begin(), channel.end(), channel.begin(), Sane);
    }
    mTaken += static_cast<std::int64_t>(samples.front().size());
    if (mIsTracking) {
        Track(samples);
        return;
    }
    const std::size_t count = samples.front().size();
    for (std::size_t i = 0; i < count; ++i) {
        const bool isHeard =
            std::any_of(samples.begin(), samples.end(), [&](const std::vector<float>& channel) {
                return std::abs(static_cast<double>(channel[i])) > kSilent;
            });
        mProbeHeard += isHeard ? 1 : 0;
    }
    for (std::size_t channel = 0; channel < samples.size(); ++channel) {
        mProbe[channel].insert(mProbe[channel].end(), samples[channel].begin(), samples[channel].end());
    }
    if (static_cast<double>(mProbeHeard) > kProbeSeconds * mRate ||
        mProbe.front().size() * mProbe.size() > kMostProbed) {
        StartTracking();
    }
}

/// What the probe tells: how fast the sound runs, and how loud its tones are.
void SoundSampler::StartTracking()
{
    mIsTracking = true;
    const std::vector<SpectralPeak> peaks = PeaksOf(mProbe, mRate, 10);
    if (peaks.empty() || peaks.front().amplitude < kSilent) {
        mTrouble = peaks.empty() && mProbeHeard > 0 ? SoundTrouble::TooShort : SoundTrouble::Silent;
        return;
    }
    mPitch = PitchRatio(peaks, mTones);
    if (mPitch <= 0 || mTones.front() * mPitch < kLowest) {
        mTrouble = SoundTrouble::SomethingElse;
        return;
    }
    std::vector<double> cycles;
    for (const double tone : mTones) {
        // A tone that this sample rate cannot carry is not there.
        cycles.push_back(std::min(tone * mPitch / mRate, kHighest));
    }
    mSetup = std::make_unique<TrackerSetup>(cycles, kOnLevel * peaks.front().amplitude);
    for (std::size_t channel = 0; channel < mProbe.size(); ++channel) {
        mTrackers.emplace_back(*mSetup);
    }
    Track(mProbe);
    mProbe.assign(mProbe.size(), {});
}

void SoundSampler::Track(const reference::Samples& samples)
{
    for (std::size_t channel = 0; channel < mTrackers.size(); ++channel) {
        mTrackers[channel].Take(samples[channel]);
    }
}

SoundTrack SoundSampler::TrackOfClip(int sampleBits, std::vector<int>& bits)
{
    const int rate = mClip->SampleRate();
    std::vector<double> cycles;
    for (const double tone : mTones) {
        cycles.push_back(tone / rate);
    }
    const TrackerSetup setup(cycles, kOnLevel * mClipLoudest);
    std::vector<ToneTracker> trackers(static_cast<std::size_t>(mClip->Channels()), ToneTracker(setup));
    std::vector<SampleGrid> grids(trackers.size()); // of the samples as the movie's depth has them
    const double steps = sampleBits > 0 && sampleBits <= 24 ? std::exp2(sampleBits - 1) : 0;
    reference::Samples samples;
    for (std::int64_t at = 0; at < mClip->Length(); at += rate) {
        mClip->Read(at, std::min<std::int64_t>(rate, mClip->Length() - at), samples);
        for (std::size_t channel = 0; channel < trackers.size(); ++channel) {
            trackers[channel].Take(samples[channel]);
            if (steps > 0) {
                for (float& sample : samples[channel]) {
                    sample = static_cast<float>(std::nearbyint(static_cast<double>(sample) * steps) / steps);
                }
            }
            grids[channel].Take(samples[channel]);
        }
    }
    SoundTrack track;
    track.rate = rate;
    track.frequencies = mTones;
    for (std::size_t channel = 0; channel < trackers.size(); ++channel) {
        track.channels.push_back(trackers[channel].Finish());
        bits.push_back(grids[channel].UsedBits());
    }
    return track;
}

/// Most of what sounds is neither of the clip's tones nor silence.
bool SoundSampler::IsSomethingElse(const SoundTrack& movie) const
{
    double known = 0;
    double other = 0;
    for (const ChannelTrack& channel : movie.channels) {
        for (const ToneRun& run : channel.runs) {
            if (!run.IsSilent()) {
                (run.isOther ? other : known) += run.end - run.begin;
            }
        }
    }
    return other > known;
}

SoundEvidence SoundSampler::Finish(const read::SoundFacts& facts, double leastSamples)
{
    if (mTrouble == SoundTrouble::None && mRate > 0 && !mIsTracking) {
        StartTracking();
    }
    SoundEvidence evidence;
    evidence.trouble = mTrouble;
    if (mTrouble == SoundTrouble::None && mTrackers.empty()) {
        evidence.trouble = SoundTrouble::NoMovieSound;
    }
    if (evidence.trouble != SoundTrouble::None) {
        return evidence;
    }
    evidence.movie.rate = mRate;
    evidence.movie.start = mStart;
    for (const double tone : mTones) {
        evidence.movie.frequencies.push_back(tone * mPitch);
    }
    for (ToneTracker& tracker : mTrackers) {
        evidence.movie.channels.push_back(tracker.Finish());
    }
    if (IsSomethingElse(evidence.movie)) {
        evidence.trouble = SoundTrouble::SomethingElse;
        return evidence;
    }
    evidence.clip = TrackOfClip(facts.bits, evidence.clipBits);
    evidence.map = MapTime(evidence.clip, evidence.movie, mPitch, leastSamples / evidence.clip.rate);
    evidence.mix = FitMix(evidence.clip, evidence.movie, evidence.map,
                          facts.codecClass == CodecClass::Lossless ? std::nullopt : facts.lfeChannel);
    return evidence;
}

std::vector<TellingSound> SoundSampler::Waveforms(const SoundEvidence& evidence)
{
    constexpr std::size_t kMost = 8;
    std::vector<TellingSound> sounds;
    for (const bool isFault : {true, false}) {
        for (std::size_t channel = 0; channel < evidence.movie.channels.size(); ++channel) {
            for (const Excerpt& excerpt : evidence.movie.channels[channel].excerpts) {
                if (excerpt.isFault != isFault || sounds.size() == kMost) {
                    continue;
                }
                TellingSound sound;
                sound.channel = reference::ChannelName(static_cast<int>(channel),
                                                       static_cast<int>(evidence.movie.channels.size()));
                sound.seconds = evidence.movie.SecondsOf(excerpt.first);
                sound.duration = static_cast<double>(excerpt.samples.size()) / evidence.movie.rate;
                sound.actual = excerpt.samples;
                if (mClip && channel < evidence.clip.channels.size()) {
                    reference::Samples samples;
                    mClip->Read(std::llround(evidence.map.ClipSeconds(sound.seconds) * evidence.clip.rate),
                                std::llround(sound.duration * evidence.map.tempo * evidence.clip.rate),
                                samples);
                    sound.expected = samples[channel];
                }
                sounds.push_back(std::move(sound));
                if (!isFault) {
                    break;
                }
            }
        }
    }
    return sounds;
}

} // namespace tessel::verify::judge
