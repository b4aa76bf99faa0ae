/// The groups of checks that `JudgeContainer` makes. The first three ask for a movie and a clip with pictures,
/// the fourth for ones with sound.
#pragma once

#include "ContainerJudge.h"

namespace tessel::verify::judge {

/// Size, rate, pixel aspect and field order.
void JudgePictureFormat(const ContainerCase& given, Findings& findings);

/// Primaries, transfer function, matrix, range and chroma location.
void JudgeColorTags(const ContainerCase& given, Findings& findings);

/// Depth and alpha.
void JudgePictureSamples(const ContainerCase& given, Findings& findings);

/// Channels, their layout, sample rate and depth.
void JudgeSoundFormat(const ContainerCase& given, Findings& findings);

/// When the movie begins, and how long it lasts.
void JudgeTimes(const ContainerCase& given, Findings& findings);

} // namespace tessel::verify::judge
