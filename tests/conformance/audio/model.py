"""The sound of a clip, computed a second time and in another language than the plug-in's.

Nothing here is fast or shares a thought with the plug-in's code: whole-number ticks, one C library sine a
sample, one list for each channel. `render` gives a dict of channel -> array of 32-bit floats; a channel that
is not in it stays as the host had it.
"""

from array import array
from itertools import accumulate, repeat
from math import sin, trunc
from struct import pack, unpack

TICKS_PER_SECOND = 254016000000


def as_float(number):
    """`number` rounded to 32 bits."""
    return unpack("<f", pack("<f", number))[0]


TWO_PI = as_float(6.283185307179586)


class Clip:
    """The settings that sound depends on; frequencies and amplitudes as a document's 32-bit floats."""

    def __init__(self, pattern, sample_rate, channel_count, frequency=1000.0, amplitude=0.25):
        self.pattern = pattern
        self.sample_rate = sample_rate
        self.channel_count = channel_count
        self.frequency = as_float(frequency)
        self.amplitude = as_float(amplitude)
        self.sample_ticks = trunc(TICKS_PER_SECOND / as_float(sample_rate))


def sine(clip, time, frequency, level, count):
    """`count` samples of a sine whose phase follows from the sample number at `time`, then adds up."""
    if count == 0:
        return array("f")
    step = frequency / (TICKS_PER_SECOND / clip.sample_ticks)
    cycles = (time // clip.sample_ticks) * step
    start = (cycles - trunc(cycles)) * TWO_PI
    phases = accumulate(repeat(step * TWO_PI, count - 1), initial=start)
    return array("f", [value * level for value in map(sin, phases)])


def silence(count):
    return array("f", bytes(4 * count))


def segments(clip, start, count, cycle, unit, borders):
    """Yields (unit number, time, first sample, sample count) for each stretch between two `borders`, which
    are unit numbers."""
    end_of_request = start + count * clip.sample_ticks
    done = 0
    while done < count:
        time = start + done * clip.sample_ticks
        cycle_start = time // cycle * cycle
        number = (time - cycle_start) // unit
        end = cycle_start + min(border for border in borders if border > number) * unit
        length = max(1, (min(end, end_of_request) - time) // clip.sample_ticks)
        yield number, time, done, length
        done += length


def steady_tone(clip, start, count):
    tone = sine(clip, start, clip.frequency, clip.amplitude, count)
    return {channel: tone for channel in range(clip.channel_count)}


def stereo(clip, start, count, frequency):
    left = array("f")
    quarter = TICKS_PER_SECOND // 4
    for number, time, _, length in segments(clip, start, count, 12 * quarter, quarter, (11, 12)):
        left += silence(length) if number == 11 else sine(clip, time, frequency, 0.125, length)
    return {0: left, 1: sine(clip, start, frequency, 0.125, count)}


def ebu_multichannel(clip, start, count):
    single = {7: 0, 9: 4, 11: 1, 13: 3, 15: 2}
    channels = {channel: array("f") for channel in range(5)}
    half = TICKS_PER_SECOND // 2
    for number, time, _, length in segments(clip, start, count, 24 * half, half, range(25)):
        quiet = silence(length)
        if number in single:
            # The phase is that of the request's first sample, wherever in the request the unit lies.
            tone = sine(clip, start, 1000.0, 0.125, length)
            for channel in channels:
                channels[channel] += tone if channel == single[number] else quiet
        elif number <= 5 or number >= 18:
            tone = sine(clip, time, 1000.0, 0.125, length)
            for channel in channels:
                channels[channel] += tone
        else:
            for channel in channels:
                channels[channel] += quiet
    channels[5] = sine(clip, start, 80.0, 0.125, count)
    return channels


def blits_sound(number):
    """(frequency, level, channels) of one of the 134 units."""
    for first, channel, frequency in ((0, 0, 880.0), (8, 1, 880.0), (16, 4, 1320.0), (24, 5, 88.5),
                                      (32, 2, 660.0), (40, 3, 660.0)):
        if first <= number < first + 6:
            return frequency, 0.125, (channel,)
    if 48 <= number <= 98:
        left_breaks = ((58, 60), (64, 66), (70, 72), (76, 78))
        if any(first <= number <= last for first, last in left_breaks):
            return 1000.0, 0.125, (1,)
        return 1000.0, 0.125, (0, 1)
    if 102 <= number <= 131:
        return 2000.0, 0.0625, (0, 1, 2, 3, 4, 5)
    return 0.0, 0.0, ()


def blits(clip, start, count):
    channels = {channel: array("f") for channel in range(6)}
    tenth = TICKS_PER_SECOND // 10
    for number, time, _, length in segments(clip, start, count, 134 * tenth, tenth, range(135)):
        frequency, level, sounding = blits_sound(number)
        quiet = silence(length)
        tone = sine(clip, time, frequency, level, length) if sounding else quiet
        for channel in channels:
            channels[channel] += tone if channel in sounding else quiet
    return channels


# Pattern -> (tone format, identifier format, seconds to a cycle, unit borders in seconds, model)
PATTERNS = {
    "steady-tone": (0, 0, 1.0, (0.0, 0.5), steady_tone),
    "ebu-stereo-1000": (1, 0, 3.0, (0.0, 2.75), lambda c, s, n: stereo(c, s, n, 1000.0)),
    "ebu-stereo-400": (1, 1, 3.0, (0.0, 2.75), lambda c, s, n: stereo(c, s, n, 400.0)),
    "ebu-multichannel": (1, 2, 12.0, tuple(u / 2 for u in range(24)), ebu_multichannel),
    "blits": (1, 3, 13.4, tuple(u / 10 for u in range(134)), blits),
}


def render(clip, position, count):
    return PATTERNS[clip.pattern][4](clip, position * clip.sample_ticks, count)
