/// Faults of level and channel in sound.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace tessel::damage {

/// Samples of all channels at one moment, in the host's channel order (L R Ls Rs C LFE where there are six).
using Moment = std::vector<float>;

/// Changes one moment; may change the number of channels. A pure function of its arguments.
/// @param position  in samples from the clip's start, as the file counts them
using ChannelFault = std::function<void(Moment& moment, std::int64_t position)>;

/// Channels count from 0. One that is not there leaves everything as it is. @{
[[nodiscard]] ChannelFault SwapChannels(std::size_t first, std::size_t second);
[[nodiscard]] ChannelFault InvertChannel(std::size_t channel);
[[nodiscard]] ChannelFault SilenceChannel(std::size_t channel);
/// @}
[[nodiscard]] ChannelFault MultiplyByDecibels(double decibels);
/// Cuts samples at a level given in dB of full scale.
[[nodiscard]] ChannelFault ClipAt(double decibels);
/// Adds a constant, of full scale 1.
[[nodiscard]] ChannelFault AddConstant(double level);
/// Adds white noise of an RMS level in dB of full scale, different in each channel and always the same.
[[nodiscard]] ChannelFault AddNoise(double decibels);
/// Bends samples so that a tone of -18 dBFS peak gets so many percent of third harmonic.
[[nodiscard]] ChannelFault BendThirdHarmonic(double percent);
/// Cuts samples down to `bits` bits, towards minus infinity, without dither.
[[nodiscard]] ChannelFault TruncateTo(int bits);
/// Six channels become Lo and Ro (ITU-R BS.775: center and surround at -3 dB, no LFE); two become one.
[[nodiscard]] ChannelFault DownMix();
/// One channel becomes two alike at -3 dB; two become six: center the sum at -3 dB halved, surrounds the fronts
/// at -3 dB, LFE silent.
[[nodiscard]] ChannelFault UpMix();
/// Keeps the first `count` channels, or adds silent ones.
[[nodiscard]] ChannelFault KeepChannels(std::size_t count);

} // namespace tessel::damage
