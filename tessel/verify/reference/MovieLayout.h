/// The clip's pictures as a movie's own samples should hold them.
#pragma once

#include "ClipPictures.h"

#include <tessel/verify/read/MovieFacts.h>

#include <optional>

namespace tessel::verify::reference {

/// The layout whose samples are those of a format, in whatever order; nothing where the conversion has none.
[[nodiscard]] std::optional<exporting::PictureLayout> LayoutFor(const read::SampleFormat& format);

/// How codes of a Y'CbCr movie are made of the clip's colours: as the movie announces, else as the clip does.
[[nodiscard]] exporting::YCbCrCoding CodingFor(const ClipFacts& clip, const read::PictureFacts& movie);

} // namespace tessel::verify::reference
