"""Values as documents hold them, for all tests that write documents."""

TICKS_PER_SECOND = 254_016_000_000


def code(text):
    """A four-character code: four bytes, read little-endian."""
    return int.from_bytes(text.encode("ascii"), "little")


def color(red, green, blue, alpha=1.0):
    return {"mAlphaPart": alpha, "mRedPart": red, "mGreenPart": green, "mBluePart": blue}
