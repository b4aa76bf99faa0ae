/// Gathers a movie's sound, and the clip's beside it, as runs of tones.
#pragma once

#include "MixFit.h"
#include "SoundTrack.h"
#include "TimeMap.h"
#include "ToneTracker.h"

#include <tessel/export/SignalSource.h>
#include <tessel/verify/read/Movie.h>
#include <tessel/verify/reference/ClipSound.h>
#include <tessel/verify/report/TellingSound.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessel::verify::judge {

/// Why a sound was not compared.
enum class SoundTrouble {
    None,
    NoClipSound,  ///< the clip has none, or only silence
    UnfitTone,    ///< a tone below 16 Hz, or too near to half the sample rate
    NoMovieSound, ///< nothing was read
    TooShort,     ///< the movie's sound is heard, but for too short a time to tell its tones
    Silent,       ///< the movie's sound is silent throughout
    SomethingElse ///< its tones are not the clip's
};

/// All that judges need of the sound.
struct SoundEvidence {
    SoundTrouble trouble = SoundTrouble::NoMovieSound;
    SoundTrack clip;
    SoundTrack movie;
    TimeMap map;
    MixFit mix;
    std::vector<int> clipBits; ///< by channel: bits that the clip's samples need if they have the movie's depth
};

/// Threads: one object, one thread at a time. Memory: some seconds of sound until the tones are known, at most
/// 32 MB; then a hundred bytes for each beginning and end of a tone.
class SoundSampler {
public:
    /// @param clip         borrowed
    explicit SoundSampler(const exporting::SignalSource& clip);

    void Take(const read::Sound& sound);

    /// @param facts         of the movie
    /// @param leastSamples  smaller losses do not count
    /// Cost: renders all of the clip's sound once.
    [[nodiscard]] SoundEvidence Finish(const read::SoundFacts& facts, double leastSamples);

    /// What shows best how the movie's sound differs: jumps and gaps, then a beginning of a tone in each
    /// channel.
    [[nodiscard]] std::vector<TellingSound> Waveforms(const SoundEvidence& evidence);

private:
    void LearnTones();
    void StartTracking();
    void Track(const reference::Samples& samples);
    [[nodiscard]] SoundTrack TrackOfClip(int sampleBits, std::vector<int>& bits);
    [[nodiscard]] bool IsSomethingElse(const SoundTrack& movie) const;

    std::optional<reference::ClipSound> mClip;
    SoundTrouble mTrouble = SoundTrouble::None;
    std::vector<double> mTones; ///< the clip's, Hz
    double mClipLoudest = 0;
    reference::Samples mProbe;    ///< the movie's beginning, until its tones are known
    std::int64_t mProbeHeard = 0; ///< samples of it that are no silence
    bool mIsTracking = false;
    int mRate = 0;
    double mStart = 0;
    std::int64_t mTaken = 0;
    double mPitch = 1;
    std::unique_ptr<TrackerSetup> mSetup;
    std::vector<ToneTracker> mTrackers;
};

} // namespace tessel::verify::judge
