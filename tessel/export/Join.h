/// Parts that were rendered apart, put together without coding them again.
#pragma once

#include "FrameRange.h"
#include "Render.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tessel::exporting {

/// A file whose place in the movie is known.
struct PlacedPart {
    std::filesystem::path path;
    std::optional<std::int64_t> pictures; ///< how many it must hold; none where it does not say it
};

/// Looks into the headers of all parts and puts them in their order. Parts that say which they are may come in
/// any order; others stand as they were given.
/// @param whole     the frames of the movie
/// @param document  SHA-256 of the clip's document
/// @throws ExportError  naming the part that is missing, there twice, of another clip, range or division, or
///                      coded otherwise than the plan says
[[nodiscard]] std::vector<PlacedPart> PlaceParts(const std::vector<std::filesystem::path>& files,
                                                 const OutputPlan& plan, const FrameRange& whole,
                                                 const std::string& document);

/// Copies the pictures of parts into one movie, with the times, tags and sound that `job` and `plan` give it:
/// the file that one render would have written. It appears under its name when it is whole.
/// @param parts  as `PlaceParts` gives them
/// @return bytes written
/// @throws ExportError  for a part that is damaged or has too few or too many pictures; as `Render`
std::int64_t JoinMovie(const SignalSource& source, const RenderJob& job, const OutputPlan& plan,
                       const std::vector<PlacedPart>& parts);

/// Looks for the picture of each frame in sequences, which may be in folders of their own, and copies them into
/// one.
/// @param sequences  paths with a number in their file names; the numbers are those of frames
/// @param job        `job.target` is a path of the same kind; empty: the pictures are only looked for
/// @return bytes of all pictures
/// @throws ExportError  for a frame without a picture, with several, or with one of another codec or size
std::int64_t JoinSequence(const std::vector<std::filesystem::path>& sequences, const RenderJob& job,
                          const OutputPlan& plan);

} // namespace tessel::exporting
