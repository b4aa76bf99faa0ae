/// Parts of a clip that are rendered apart, on several machines perhaps, and joined afterwards.
#pragma once

#include "FrameRange.h"

#include <tessel/export/plan/OutputPlan.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tessel::exporting {

/// One of the parts into which frames are divided: part `number` of `count`, counted from 1.
struct PartNumber {
    /// More parts than anybody renders, and few enough that products of two such numbers do not overflow.
    static constexpr std::int64_t kMost = 1'000'000;

    std::int64_t number = 1;
    std::int64_t count = 1;

    /// "2/5"
    [[nodiscard]] std::string Text() const;
    /// @return nothing for a text other than K/N with 1 <= K <= N <= `kMost`
    [[nodiscard]] static std::optional<PartNumber> Parse(std::string_view text);

    friend constexpr bool operator==(const PartNumber&, const PartNumber&) = default;
};

/// Part K of N of F frames begins at frame (K - 1) * F / N and ends before frame K * F / N, both rounded down
/// and counted from the first of the F frames. So every frame is in one part, and parts differ by one frame.
/// @throws RequestError  for more parts than frames
[[nodiscard]] FrameRange FramesOfPart(const FrameRange& whole, const PartNumber& part);

/// The label of a part's file, in its container's comment: enough for a join to refuse what does
/// not belong together.
struct PartLabel {
    PartNumber part;
    FrameRange frames;
    std::string document; ///< SHA-256 of the clip's document
    std::string picture;  ///< as coded, see `CodedPictureText`

    [[nodiscard]] std::string Text() const;
    /// @return nothing for the comments of other files
    [[nodiscard]] static std::optional<PartLabel> Parse(std::string_view text);
};

/// Everything about the coded pictures that parts must have in common.
[[nodiscard]] std::string CodedPictureText(const VideoPlan& plan);

/// Whether parts with these pictures can be joined.
/// @throws RequestError  for a codec whose pictures are coded from their neighbours; names those codecs of the
///                      container that can be joined
void RequireJoinable(const OutputPlan& plan);

} // namespace tessel::exporting
