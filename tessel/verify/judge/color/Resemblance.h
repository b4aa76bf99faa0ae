/// Tells a clip's pictures, whatever was done to them, from pictures of something else.
#pragma once

#include "ColorJudge.h"

namespace tessel::verify::judge {

/// How the frames that the pictures are compared with were found.
enum class FrameSource {
    Numbers, ///< printed numbers were read, which other clips have as well
    Guess    ///< by time or by colours
};

/// Whether the colours are those of something else. They are the clip's where an explanation of the closed list
/// or a change of levels brings them near. Where frames are only guessed, the explanation must also account for
/// what varies in the movie: chroma × 0 brings any colours near to a grey picture and shows nothing of the
/// clip. False without spots. Cost: next to nothing where the codes are nearly right, else that of
/// `JudgeColor`.
[[nodiscard]] bool ShowsOtherColors(const ColorCase& given, FrameSource frames);

} // namespace tessel::verify::judge
