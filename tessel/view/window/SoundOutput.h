/// The clip's sound through the default device.
#pragma once

#include <tessel/view/model/DeviceSamples.h>
#include <tessel/view/model/ViewedClip.h>

#include <memory>
#include <string>

namespace tessel::view {

/// Plays at normal speed alone. The device is looked for when sound is first played: that takes time. Clips of
/// more channels than the device has are mixed down to stereo by ITU-R BS.775. [ui-thread]
class SoundOutput {
public:
    SoundOutput();
    ~SoundOutput();
    SoundOutput(const SoundOutput&) = delete;
    SoundOutput& operator=(const SoundOutput&) = delete;

    /// Plays from a time on.
    void Start(const std::shared_ptr<const ViewedClip>& clip, double seconds, SoundEnd end);
    void Stop();

    /// How many seconds of the clip have been heard; pictures keep in step with it. Negative where nothing
    /// plays.
    [[nodiscard]] double Position() const;

    /// Why nothing is heard, or what is: "no sound device", "sound: stereo mix of 6 channels". Empty before
    /// `Start`.
    [[nodiscard]] const std::string& State() const noexcept { return mState; }

private:
    struct Player;
    std::unique_ptr<Player> mPlayer;
    std::string mState;
};

} // namespace tessel::view
