/// What a channel of sound consists of: runs of steady tones and of silence.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tessel::verify::judge {

/// One tone of a run, whose frequency is one of a list that is known beforehand.
struct Tone {
    std::size_t index = 0; ///< of the frequency
    double amplitude = 0;
    double phase = 0; ///< radians of a cosine at the run's `middle`
    double slope = 0; ///< radians per sample by which the phase runs ahead of the known frequency
};

/// A stretch in which nothing changes.
struct ToneRun {
    double begin = 0;        ///< sample at which it begins; of the stream
    double end = 0;          ///< sample behind its last one
    double uncertainty = 0;  ///< of `begin`, samples
    bool isFirst = false;    ///< begins where the stream begins, not where something changes
    bool isLast = false;     ///< ends where the stream ends
    bool isOther = false;    ///< neither silence nor known tones
    double middle = 0;       ///< sample to which the tones' phases belong
    double residual = 0;     ///< RMS of what the tones do not explain
    double slopeSigma = 0;   ///< of the slopes, radians per sample
    std::vector<Tone> tones; ///< empty: silence

    [[nodiscard]] bool IsSilent() const noexcept { return tones.empty() && !isOther; }
    [[nodiscard]] const Tone* ToneOf(std::size_t index) const noexcept
    {
        for (const Tone& tone : tones) {
            if (tone.index == index) {
                return &tone;
            }
        }
        return nullptr;
    }
};

/// Samples inside a run that are not as before and behind them.
struct Gap {
    double first = 0;      ///< sample
    double last = 0;       ///< the last one of them
    bool isSilent = false; ///< else a click
    double size = 0; ///< of the largest sample's error, in amplitudes of the tone; of a click in silence, 0
};

/// What was measured over all steady stretches of one channel. Levels have full scale 1.
struct ChannelStatistics {
    double constant = 0;         ///< mean of the samples without their tones
    double constantSigma = 0;    ///< of that mean
    double noise = 0;            ///< RMS of what neither tones nor their harmonics explain
    double harmonics = 0;        ///< root of the sum of the squares of the harmonics 2 to 5, against the tone
    double harmonicsSigma = 0;   ///< of that
    double toneSamples = 0;      ///< measured with a single tone sounding
    double silentSamples = 0;    ///< measured in silence
    double peak = 0;             ///< largest sample
    std::int64_t flatBlocks = 0; ///< blocks whose tops are flat
    std::int64_t toneBlocks = 0; ///< blocks that were looked at for it
    double flatLevel = 0;        ///< largest level at which tops are flat
    int usedBits = 0;            ///< least bits that hold every sample; 0: all samples are zero, 25: floats
};

/// Samples around a change, kept for eyes.
struct Excerpt {
    double first = 0;     ///< sample
    bool isFault = false; ///< a gap, a click, or a tone that jumps; else a tone that begins or ends
    std::vector<float> samples;
};

struct ChannelTrack {
    std::vector<ToneRun> runs;
    std::vector<Gap> gaps;
    std::vector<Excerpt> excerpts; ///< the first few of both kinds
    ChannelStatistics statistics;
};

} // namespace tessel::verify::judge
