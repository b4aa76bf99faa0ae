"""Values as documents hold them, for all tests and benchmarks that write documents."""

TICKS_PER_SECOND = 254_016_000_000


def code(text):
    """A four-character code: four bytes, read little-endian."""
    return int.from_bytes(text.encode("ascii"), "little")


def color(red, green, blue, alpha=1.0):
    return {"mAlphaPart": alpha, "mRedPart": red, "mGreenPart": green, "mBluePart": blue}


def two_colors(pixel_format, size, ticks_per_frame, frames, *, gradient, number, field_type=0):
    """A document of two colours: in the fields of each frame, or as a gradient that moves from one to the other."""
    one, other = color(0.1, 0.5, 0.9), color(0.9, 0.3, 0.2)
    return {
        "mVersion": 1,
        "mPixelFormat": code(pixel_format),
        "mFrameWidth": size[0],
        "mFrameHeight": size[1],
        "mFramePAR": {"numerator": 1, "denominator": 1},
        "mFieldType": field_type,
        "mRenderFormat": int(gradient),
        "mUpperFieldColor": one,
        "mLowerFieldColor": other,
        "mTopGradiantColorStart": one,
        "mTopGradiantColorEnd": other,
        "mBottomGradiantColorStart": other,
        "mBottomGradiantColorEnd": one,
        "mVideoDuration": {"ticks": ticks_per_frame * frames},
        "mVideoFrameRate": {"ticksperframe": ticks_per_frame},
        "mDrawFrameFieldNumber": number,
    }
