/// What the checks of sound work with, and the words and measures that they share.
#pragma once

#include "SoundJudge.h"

#include <string>
#include <vector>

namespace tessel::verify::judge {

/// Of an amplitude's ratio; -200 for next to nothing.
[[nodiscard]] double Decibels(double ratio) noexcept;

/// "L, R and C".
[[nodiscard]] std::string Joined(const std::vector<std::string>& parts);

/// A sound whose tones were found. Threads: [any-thread].
class SoundReport {
public:
    SoundReport(const SoundEvidence& evidence, const read::SoundFacts& facts, Uncarried uncarried,
                Findings& findings)
        : mClip(evidence.clip), mMovie(evidence.movie), mMap(evidence.map), mMix(evidence.mix),
          mClipBits(evidence.clipBits), mFacts(facts), mUncarried(uncarried), mFindings(findings)
    {
    }

protected:
    [[nodiscard]] std::size_t Sources() const { return mClip.channels.size(); }
    [[nodiscard]] std::size_t Channels() const { return mMovie.channels.size(); }
    [[nodiscard]] std::string NameOf(std::size_t channel) const
    {
        return reference::ChannelName(static_cast<int>(channel), static_cast<int>(Channels()));
    }
    [[nodiscard]] std::string SourceName(int source) const
    {
        return reference::ChannelName(source, static_cast<int>(Sources()));
    }
    [[nodiscard]] bool IsLossless() const { return mFacts.codecClass == CodecClass::Lossless; }
    /// The clip's channel is heard in the clip.
    [[nodiscard]] bool IsHeard(std::size_t source) const
    {
        return source < mMix.isHeard.size() && mMix.isHeard[source];
    }

    /// Samples of the clip's sound between two times of the movie: from what `first` would be if nothing had
    /// happened before it.
    [[nodiscard]] Span ClipSpan(double first, double last) const;

    /// Channels whose tops are cut.
    [[nodiscard]] std::vector<std::string> CutChannels() const;

    const SoundTrack& mClip;
    const SoundTrack& mMovie;
    const TimeMap& mMap;
    const MixFit& mMix;
    const std::vector<int>& mClipBits;
    const read::SoundFacts& mFacts;
    Uncarried mUncarried;
    Findings& mFindings;
};

} // namespace tessel::verify::judge
