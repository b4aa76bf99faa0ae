# Sourced by the scripts here: what they share.
repository="$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)"
tessel="${TESSEL:-$repository/build/release/bin/tessel}"
frames="${FRAMES:-300}"
rounds="${ROUNDS:-5}"

# need PROGRAM: ends the script, as skipped, where a program is not installed.
need() {
    command -v "$1" >/dev/null || { echo "skipped: $1 is not installed"; exit 0; }
}

# median: of the numbers on standard input, one a line.
median() { sort -g | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

# clip FORMAT-CODE: a 1920x1080 gradient document without a number, of 300 frames at 30 per second.
clip() {
    local color_a='{"mAlphaPart":1,"mRedPart":0.1,"mGreenPart":0.5,"mBluePart":0.9}'
    local color_b='{"mAlphaPart":1,"mRedPart":0.9,"mGreenPart":0.3,"mBluePart":0.2}'
    cat <<JSON
{"mPixelFormat": $1, "mFrameWidth": 1920, "mFrameHeight": 1080,
 "mFramePAR": {"numerator": 1, "denominator": 1}, "mFieldType": 0, "mRenderFormat": 1,
 "mUpperFieldColor": $color_a, "mLowerFieldColor": $color_b,
 "mTopGradiantColorStart": $color_a, "mTopGradiantColorEnd": $color_b,
 "mBottomGradiantColorStart": $color_b, "mBottomGradiantColorEnd": $color_a,
 "mVideoDuration": {"ticks": 2540160000000}, "mVideoFrameRate": {"ticksperframe": 8467200000},
 "mVersion": 1, "mDrawFrameFieldNumber": false}
JSON
}

# code FOUR-BYTES: a host pixel-format code, its bytes read little-endian.
code() { printf '%s' "$1" | od -An -tu4 --endian=little | tr -d ' '; }

# tessel_rate DOCUMENT: frames a second on one thread.
tessel_rate() {
    "$tessel" bench "$1" --json --seconds 1 |
        python3 -c 'import json, sys; print(json.load(sys.stdin)["video"]["framesPerSecond"])'
}

# report NAME OURS THEIRS
report() {
    awk -v name="$1" -v ours="$2" -v theirs="$3" \
        'BEGIN { printf "%-34s tessel %9.0f frames/s, peer %9.0f frames/s: %.2f times\n", name, ours, theirs, ours / theirs }'
}

if [ ! -x "$tessel" ]; then
    echo "skipped: $tessel is not built (cmake --build --preset release)"
    exit 0
fi
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
