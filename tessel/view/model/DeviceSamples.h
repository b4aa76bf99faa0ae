/// A clip's sound as a sound device takes it.
#pragma once

#include "ViewedClip.h"

#include <tessel/verify/reference/ClipSound.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace tessel::view {

enum class DeviceSampleType : std::uint8_t { Float32, Int16 };

struct DeviceFormat {
    int channels = 2;
    DeviceSampleType type = DeviceSampleType::Float32;

    [[nodiscard]] std::size_t BytesPerFrame() const noexcept
    {
        return static_cast<std::size_t>(channels) * (type == DeviceSampleType::Float32 ? 4 : 2);
    }
};

enum class SoundEnd : std::uint8_t {
    Silence, ///< follows the clip
    Loop,    ///< the clip's first sample follows its last
};

/// Samples one after the other from a place on, interleaved, kept within full scale. A device of as many
/// channels as the clip gets them as they are; for another one they are mixed to its first two channels: 5.1 by
/// ITU-R BS.775-4, table 2, without the low-frequency channel, other layouts in turns left and right. Threads:
/// one object, one thread at a time.
class DeviceSamples {
public:
    /// @param clip      with sound
    /// @param position  of the first sample, counted from the clip's beginning
    DeviceSamples(std::shared_ptr<const ViewedClip> clip, const DeviceFormat& format, std::int64_t position,
                  SoundEnd end);

    /// Fills whole frames of samples; silence where the clip cannot give them.
    /// @return bytes that were written: as many whole frames as `out` holds
    std::size_t Read(std::span<std::byte> out);

private:
    void ReadStretch(std::int64_t count, std::byte* out);

    std::shared_ptr<const ViewedClip> mClip;
    verify::reference::ClipSound mSound;
    DeviceFormat mFormat;
    std::int64_t mPosition;
    std::int64_t mLoop; ///< samples after which the clip begins again; 0: it does not
    verify::reference::Samples mSamples;
};

/// How many samples the clip's frames last.
[[nodiscard]] std::int64_t SamplesOf(const ViewedClip& clip) noexcept;

} // namespace tessel::view
