#!/usr/bin/env python3
"""Compares a plug-in's sound with the model's: compare.py PLUGIN PATTERN [SEED]

Every sample within 1e-6, 99.99 % of them to the last bit, channels outside the pattern untouched.
"""

import os
import random
import sys

import model
from plugin import POISON, OpenClip, Plugin

SAMPLE_RATES = (8000, 44100, 48000, 96000, 192000)
TEN_HOURS = 36000
LONGEST = 300000
# The model spends its time on sines.
RANDOM_SAMPLES = 800000

TOLERANCE = 1e-6
EQUAL_SHARE = 0.9999


class Comparison:
    def __init__(self):
        self.samples = 0
        self.different = 0
        self.largest = 0.0
        self.requests = 0

    def check(self, open_clip, position, count):
        clip = open_clip.clip
        actual = open_clip.render(position, count)
        expected = model.render(clip, position, count)
        self.requests += 1
        for channel, samples in enumerate(actual):
            wanted = expected.get(channel, POISON * count)
            # Channels that must stay untouched are compared, but do not raise the share of equal samples.
            self.samples += count if channel in expected else 0
            if len(samples) != len(wanted):
                sys.exit(f"FAILED: {len(samples)} samples from {position} instead of {len(wanted)}")
            if samples.tobytes() != wanted.tobytes():
                self.check_one_by_one(clip, position, channel, samples, wanted)

    def check_one_by_one(self, clip, position, channel, samples, wanted):
        for k, (ours, theirs) in enumerate(zip(samples, wanted)):
            if ours != theirs:
                self.different += 1
                distance = abs(ours - theirs)
                self.largest = max(self.largest, distance)
                if not distance <= TOLERANCE:
                    sys.exit(f"FAILED {clip.pattern}, {clip.sample_rate} Hz, {clip.channel_count} channels, "
                             f"{clip.frequency} Hz at {clip.amplitude}: request of {len(samples)} samples from "
                             f"{position}, channel {channel}, sample {k} is {ours!r}, not {theirs!r}")


def border_positions(clip):
    """Samples beside the pattern's borders: in the first cycle, the one before time zero, the one ten hours
    in."""
    _, _, cycle, borders, _ = model.PATTERNS[clip.pattern]
    last_cycles = (0, -1, int(TEN_HOURS / cycle))
    for number in last_cycles:
        for border in (*borders, cycle):
            sample = round((number * cycle + border) * clip.sample_rate)
            yield from (sample - 1, sample, sample + 1)


def compare(plugin, pattern, seed):
    source = random.Random(seed)
    comparison = Comparison()
    for sample_rate in SAMPLE_RATES:
        positions = ()
        for channel_count in range(1, 9):
            frequency = source.choice((1000.0, 440.0, 82.40689, 3999.9, 0.5, -1000.0))
            clip = model.Clip(pattern, sample_rate, channel_count, frequency, source.uniform(0.001, 1.0))
            # The borders are divided among the channel counts.
            positions = positions or tuple(border_positions(clip))
            with OpenClip(plugin, clip) as open_clip:
                for position in positions[channel_count - 1::8]:
                    comparison.check(open_clip, position, source.choice((1, 2, 3, 30)))
                left = RANDOM_SAMPLES // 8
                while left > 0:
                    count = min(left, int(10 ** source.uniform(0.0, 4.6)))
                    start = source.choice((0, TEN_HOURS, -20)) * sample_rate
                    comparison.check(open_clip, start + source.randrange(14 * sample_rate), count)
                    left -= count
        with OpenClip(plugin, model.Clip(pattern, sample_rate, 6)) as open_clip:
            comparison.check(open_clip, source.randrange(TEN_HOURS * sample_rate), LONGEST)
            comparison.check(open_clip, 0, 0)
    return comparison


def main():
    if len(sys.argv) not in (3, 4) or sys.argv[2] not in model.PATTERNS:
        sys.exit(f"{__doc__}PATTERN is one of {', '.join(model.PATTERNS)}")
    seed = int(sys.argv[3]) if len(sys.argv) == 4 else int.from_bytes(os.urandom(4), "little")
    print(f"seed {seed}", flush=True)
    comparison = compare(Plugin(sys.argv[1]), sys.argv[2], seed)
    share = 1 - comparison.different / comparison.samples
    print(f"{comparison.requests} requests, {comparison.samples} samples, {comparison.different} of them not equal "
          f"to the last bit, largest distance {comparison.largest:g}")
    if share < EQUAL_SHARE:
        sys.exit(f"FAILED: only {100 * share:.4f} % of the samples are equal to the last bit")


if __name__ == "__main__":
    main()
