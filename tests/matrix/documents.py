"""Random documents from a seed: sizes, formats, rates, fields, colour spaces, pictures and sound."""

import random
from fractions import Fraction

from clips import chart
from render_support import FORMATS, color, document

COUNT = 60
CHART_EVERY = 20  # the chart is 1920×1080 and takes its time

RATES = [Fraction(24000, 1001), Fraction(24), Fraction(25), Fraction(30000, 1001), Fraction(30), Fraction(50),
         Fraction(60000, 1001), Fraction(60)]
SPACES = ["BT601_NTSC", "BT601_PAL", "BT709", "BT709_FULL", "sRGB", "BT2020", "BT2100_PQ", "BT2100_HLG"]
ASPECTS = [(1, 1), (10, 11), (12, 11), (40, 33), (16, 11), (4, 3)]
# DV's own sizes and rates alone carry its formats everywhere.
CODES = [code for code, format_ in FORMATS.items() if format_["storage"] != "dv"]


def random_color(chance, alpha):
    """Sometimes beyond black and white, as the system allows."""
    low, high = (-0.2, 1.3) if chance.random() < 0.2 else (0.0, 1.0)
    return (*(round(chance.uniform(low, high), 3) for _ in range(3)), round(chance.uniform(0.3, 1), 3) if alpha else 1.0)


def random_sound(chance):
    channels = chance.choice([1, 2, 2, 2, 4, 6, 6, 8])
    is_identified = channels in (2, 6) and chance.random() < 0.6
    return {
        "mSampleRate": chance.choice([44100, 48000, 48000, 48000, 48000, 96000]),
        "mNumChannels": channels,
        "mKsAudioChannelType": 3 if channels == 6 else 2,
        "mToneFormat": int(is_identified),
        "mIdentifierFormat": chance.choice([2, 3]) if channels == 6 else chance.choice([0, 1]),
        "mSteadyToneFrequency": chance.choice([400, 440, 997, 1000, 1000, 3000]),
        "mSteadyToneAmplitude": chance.choice([0.125, 0.25, 0.5]),
    }


def random_document(seed):
    """@return a document; the same one for the same seed, whatever the version of Python"""
    chance = random.Random(f"clean {seed}")
    code = CODES[(seed * 7) % len(CODES)]  # each once before any comes again
    if seed % CHART_EVERY == CHART_EVERY - 1:
        return {**chart(frames=2), **random_sound(chance)}
    rate = chance.choice(RATES)
    has_alpha = FORMATS[code]["alpha"] != "none" and chance.random() < 0.5
    # Widths that six pixels do not divide as well, but even ones: subsampled formats need them.
    size = (2 * chance.randrange(48, 250), 2 * chance.randrange(32, 160))
    order = chance.choice([0, 0, 1, 2])
    if order and size[1] % 4:
        size = (size[0], size[1] + 2)  # fields of 4:2:0
    colors = {"upper": random_color(chance, has_alpha), "lower": random_color(chance, has_alpha)}
    root = document(code, size, rate=(rate.numerator, rate.denominator), frames=chance.randrange(1, 50), order=order,
                    pattern=chance.choice(["fields", "gradient", "gradient"]), number=chance.random() < 0.75,
                    aspect=chance.choice(ASPECTS), space=chance.choice(SPACES), **colors, **random_sound(chance))
    for key in ("mTopGradiantColorStart", "mTopGradiantColorEnd", "mBottomGradiantColorStart",
                "mBottomGradiantColorEnd"):
        root[key] = color(*random_color(chance, has_alpha))
    return root
