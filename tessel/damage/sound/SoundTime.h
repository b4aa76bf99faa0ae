/// Faults of time in sound: which moment of the clip each sample of the file carries.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace tessel::damage {

/// A way from positions in the file to positions in the clip, both in samples, possibly fractions; nothing
/// where the file is silent. Composed of steps, of which the one added last is the one nearest to the file.
/// Threads: [thread-safe] once complete.
class SoundTime {
public:
    /// The sound comes later by so many samples (sooner where negative); what lies before the clip is silent.
    void Delay(double samples);
    /// The sound runs faster by `factor`, pitch and all.
    void Speed(double factor);
    /// `count` samples are missing from `position` on.
    void Lose(std::int64_t position, std::int64_t count);
    /// The `count` samples before `position` are heard a second time.
    void Insert(std::int64_t position, std::int64_t count);
    /// `count` samples from `position` on are silent.
    void Silence(std::int64_t position, std::int64_t count);
    /// Two stretches of `count` samples change places.
    void Exchange(std::int64_t first, std::int64_t second, std::int64_t count);

    [[nodiscard]] std::optional<double> ClipPositionOf(std::int64_t filePosition) const;

private:
    using Step = std::function<std::optional<double>(double)>;
    std::vector<Step> mSteps;
};

} // namespace tessel::damage
